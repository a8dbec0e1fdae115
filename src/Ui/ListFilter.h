#pragma once

#include <QWidget>

class ListView;
class QLabel;
class QLineEdit;

/// A field that filters a list, with the number of rows shown. Ctrl+F moves to the field, Return and Down from the
/// field to the list. Esc clears the field. The list's own changes of the filter are shown in the field.
class ListFilter : public QWidget
{
public:
    /// `noun` names a row, in the singular; its plural must end in s. `list` must outlive the object.
    ListFilter(ListView& list, const QString& noun);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Shows the filter and the number of rows that pass it.
    void showCount(const QString& filter);

    ListView& list;
    QString noun;
    QLineEdit* field;
    QLabel* count; // of shown rows and, if there are others, of all
};
