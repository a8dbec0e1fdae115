#pragma once

#include "Wizard/Run/SourcePreview.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QPushButton;

/// Shows how a source begins and, below that, how many types and losses each reading of it gives. Both are looked up in
/// the background.
class PreviewPane : public QWidget
{
public:
    /// `reading` is the control that chooses the reading; it stands beside the counts.
    explicit PreviewPane(QWidget* reading);

    /// Shows another source, after a moment in which the user may go on typing. Without a name none is shown.
    void showSource(const SourcePreview::Source& source);

    /// Drops what is being counted.
    void stop();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void start(bool isWanted);
    void setCounts(const QString& words);
    void showText(const QString& text, quint64 size, bool isCounted);
    void showCounts(const SourcePreview::Count& literal, const SourcePreview::Count& full);

    SourcePreview::Source source;
    QTimer delay;
    QPlainTextEdit* text;
    QLabel* counts;
    QPushButton* countButton;
    SourcePreview preview;
};
