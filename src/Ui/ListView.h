#pragma once

#include "Ui/ListRows.h"

#include <QTreeView>

#include <optional>
#include <vector>

/// A list of rows with columns under a header, each as wide as it says in per cent of the list, or less where a scroll
/// bar takes from it, until the user makes it otherwise. Cells are asked for when they are seen, so a list of any
/// length is there at once. One row can be selected, unless setSelectionMode() says otherwise; a selected row is
/// selected over its whole width.
///
/// A click on a column's title sorts by it, a second one in reverse, and a third one restores the rows' own order.
/// Ctrl+C copies the first cells, which are the names, of the selected rows, or of all shown rows if none is selected.
/// Row numbers are indices in the order in which rows were set, whatever is shown.
class ListView : public QTreeView
{
    Q_OBJECT

public:
    struct Column
    {
        CString title;
        int percent;
    };
    using CellText = ListRows::CellText;
    using RowMark = ListRows::RowMark;

    ListView(std::vector<Column> columns, const CString& accessibleName);

    /// Shows `count` rows, all in this order. `cells` returns a cell's text; `marks`, if set, returns the icon before a
    /// row's name. Clears the selection.
    void setRows(int count, CellText cells, RowMark marks = {});

    /// Shows only the rows of which a cell contains the text, in any letter case; "" shows all. What is selected and
    /// still shown stays so. In a list of which several rows can be selected, rows that are hidden stay selected, too,
    /// until they are shown again; the user changes only the selection of what is shown.
    void setFilter(const QString& text);

    /// Shows only the rows that are selected now, as far as they pass the filter; false shows the others again.
    void setSelectedOnly(bool only);

    /// How many rows there are, and how many of them are shown.
    int queryCount() const { return rows->queryCount(); }
    int rowCount() const { return rows->rowCount(); }

    CString cell(int row, int column) const { return rows->cell(row, column); }

    /// Returns the first selected row, -1 if there is none.
    int selectedRow() const;

    /// All selected rows, the hidden ones too, by their numbers in order.
    std::vector<int> selectedRows() const;

    /// Selects only this row and makes it current; drops a filter that hides it. Clears the selection if there is no
    /// such row.
    void selectRow(int row);

    /// Gives the columns other widths in per cent of the list, as far as the user has not changed them. A column of 0
    /// is hidden.
    void setShares(const std::vector<int>& percents);

    /// The widths of the columns in pixels; empty until the user has changed one.
    QList<int> queryWidths() const;
    void setWidths(const QList<int>& widths);

Q_SIGNALS:
    /// Emitted if the user changes the selection, or clicks in the list with any button. A click beside the rows clears
    /// the selection.
    void chosen();

    /// Emitted if a filter changes which rows are shown; `filter` is its text.
    void shownRowsChanged(const QString& filter);

    /// Other rows may be selected than before, by whatever cause.
    void selectedRowsChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    void setUpHeader();
    void arrange();
    void shareWidth();
    void copyNames() const;

    ListRows* rows;
    std::vector<Column> columns;
    QString filter;
    std::vector<int> hiddenSelected;       // rows that are selected and not shown
    std::optional<std::vector<int>> among; // the only ones to show; none: all
    bool byUser = true;                    // false while the program itself selects
    bool sharesWidth = true;               // until the user changes the width of a column
};
