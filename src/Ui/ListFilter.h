#pragma once

#include <QWidget>

class ListView;
class QLabel;
class QLineEdit;

/// The field that filters a list, and how many of its rows are shown. Ctrl+F leads to the field from anywhere beside
/// it, Return and the Down key from there to the list, and Esc empties it.
class ListFilter : public QWidget
{
public:
    /// `noun` is what a row is; its plural ends in s.
    ListFilter(ListView& list, const QString& noun);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showCount(const QString& filter);

    ListView& list;
    QString noun;
    QLineEdit* field;
    QLabel* count;
};
