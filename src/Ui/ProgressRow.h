#pragma once

#include <QWidget>

class QLabel;
class QProgressBar;

/// Says what long work is about and how far it has come, in words and with a bar.
class ProgressRow : public QWidget
{
public:
    ProgressRow();

    /// `part` of the whole, from 0 to 1; below 0 where it isn't known.
    void show(const QString& text, double part);

    /// Without the bar, where one stands elsewhere.
    void setBarVisible(bool visible);

private:
    QLabel* text;
    QProgressBar* bar;
};
