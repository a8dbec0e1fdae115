#pragma once

#include <QImage>
#include <QStringList>
#include <QWidget>

class QLabel;

/// The band at the top of interior pages: title and subtitle on the header picture. Its height fits the longest
/// subtitle at the current width, so that the page below doesn't move between pages.
class HeaderBand : public QWidget
{
public:
    /// `pictureId` is the number of the header picture, see picture(). The band takes its width from `parent`.
    HeaderBand(int pictureId, QWidget* parent);

    /// Adds a page's subtitle to those that determine the height. The band takes that height at the next setTexts().
    void addSubtitle(const QString& subtitle);

    /// Shows the texts of a page, and fits the height.
    void setTexts(const QString& title, const QString& subtitle);

    /// Returns the height in pixels at a width, which may differ from the band's own.
    int heightAt(int width) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    // Return the left end and the width of the subtitle in pixels, for a width and height of the band.
    int indent() const;
    int textWidth(int width, int height) const;
    void layOut();
    void paintFade(QPainter& painter) const;

    int pictureId;
    QImage header; // in the tones of the palette
    QLabel* titleLabel;
    QLabel* subtitleLabel;
    QStringList subtitles; // of all pages
};
