#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

/// Shows the progress of long work as text and as a bar.
class ProgressRow : public QWidget
{
public:
    ProgressRow();

    /// Shows the finished part, from 0 to 1; negative if unknown.
    void show(const QString& text, double part);

    /// Hides the bar, if the page shows one of its own.
    void setBarVisible(bool visible);

private:
    QLabel* text;
    QProgressBar* bar;
};
