#pragma once

#include <QImage>
#include <QStringList>
#include <QWidget>

class QLabel;

/// The band at the top of interior pages: title and subtitle on the header picture. It is as high as the longest of
/// the subtitles needs at its width, so that the page below keeps its place from page to page.
class HeaderBand : public QWidget
{
public:
    HeaderBand(int pictureId, QWidget* parent);

    /// Takes a page's subtitle into account for the height.
    void addSubtitle(const QString& subtitle);

    void setTexts(const QString& title, const QString& subtitle);

    /// The height that it will have at that width.
    int heightAt(int width) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    int indent() const;
    int textWidth(int width, int height) const;
    void layOut();
    void paintVeil(QPainter& painter) const;

    int pictureId;
    QImage header;
    QLabel* titleLabel;
    QLabel* subtitleLabel;
    QStringList subtitles;
};
