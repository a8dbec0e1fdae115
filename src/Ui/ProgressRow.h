#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;
struct Progress;

/// Shows the progress of long work as text and as a bar.
class ProgressRow : public QWidget
{
public:
    ProgressRow();

    /// Shows the text, and the finished part of the progress as the bar, which is a busy indicator if the total is
    /// unknown. A screen reader reads the text only when the row appears, not with each change.
    void show(const QString& text, const Progress& progress);

    /// Hides the bar, if the page shows one of its own.
    void setBarVisible(bool visible);

private:
    QLabel* text;
    QProgressBar* bar;
};
