#pragma once

#include "Wizard/Run/SourcePreview.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QPushButton;

/// Shows the beginning of a source and, below it, the number of types and losses with each reading. A background thread
/// reads and counts. A large source is only counted when the user asks for it.
class PreviewPane : public QWidget
{
public:
    /// `reading` is the control that chooses the reading; it is placed beside the counts.
    explicit PreviewPane(QWidget* reading);

    /// Shows another source, after a short delay for further typing. Without names, hides the text.
    void showSource(const SourcePreview::Source& source);

    /// Cancels the counting. The shown text and counts stay.
    void stop();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    // Previews `source`; counts a large one, too, if `isWanted`.
    void start(bool isWanted);
    // Shows a text below the preview, with room for at least three lines.
    void setCounts(const QString& words);
    // Receive the results, see SourcePreview.
    void showText(const QString& text, quint64 size, bool isCounted);
    void showCounts(const SourcePreview::Count& literal, const SourcePreview::Count& full);

    SourcePreview::Source source; // the last one shown, also if it is not read yet
    QTimer delay;                 // starts the preview when typing has paused
    QPlainTextEdit* text;
    QLabel* counts;
    QPushButton* countButton; // shown for a large source
    SourcePreview preview;
};
