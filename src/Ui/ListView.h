#pragma once

#include "Ui/ListRows.h"

#include <QTreeView>

#include <optional>
#include <vector>

/// A list of rows with columns under a header. A column's width is its share of the list in per cent, less if a scroll
/// bar needs room, until the user changes it. Cells are only requested when they become visible, so lists of any length
/// appear at once. One row can be selected, unless setSelectionMode() allows several. Selection covers the whole row.
///
/// A click on a column's title sorts by it, a second one in reverse, and a third one restores the rows' own order.
/// Ctrl+C copies the first cells, which are the names, of the selected rows, or of all shown rows if none is selected.
/// Row numbers are indices in the order in which rows were set, whatever is shown.
class ListView : public QTreeView
{
    Q_OBJECT

public:
    /// A column: its title in the header, and its share of the list's width.
    struct Column
    {
        CString title;
        int percent;
    };
    using CellText = ListRows::CellText;
    using RowMark = ListRows::RowMark;

    /// `accessibleName` is the name for screen readers.
    ListView(std::vector<Column> columns, const CString& accessibleName);

    /// Shows `count` rows, all in this order. `cells` returns a cell's text; `marks`, if set, returns the icon before a
    /// row's name. Clears the selection. Removes filter and sorting. See ListRows::setRows() for what the functions may
    /// refer to.
    void setRows(int count, CellText cells, RowMark marks = {});

    /// Shows only the rows with the text in any cell, in any letter case; "" shows all. Shown rows keep their
    /// selection. In a list that allows several selected rows, hidden rows stay selected too, and the user only changes
    /// the selection of shown rows.
    void setFilter(const QString& text);

    /// With `only`, shows only the rows that are selected now and pass the filter; else shows the others again.
    void setSelectedOnly(bool only);

    /// Return the number of all rows, and of shown rows.
    int queryCount() const { return rows->queryCount(); }
    int rowCount() const { return rows->rowCount(); }

    /// Returns the text of a cell by the row's number, whether the row is shown or not.
    CString cell(int row, int column) const { return rows->cell(row, column); }

    /// Returns the first selected row, -1 if there is none. The first in ascending order of numbers, not of places.
    int selectedRow() const;

    /// Returns the numbers of all selected rows, hidden ones included, in ascending order.
    std::vector<int> selectedRows() const;

    /// Selects only this row and makes it current; drops a filter that hides it. Clears the selection if there is no
    /// such row.
    void selectRow(int row);

    /// Sets the columns' widths in per cent of the list, unless the user has changed them. 0 hides a column.
    void setShares(const std::vector<int>& percents);

    /// Returns the widths of the columns in pixels; empty until the user has changed one. setWidths() takes such a
    /// list, one width for each column.
    QList<int> queryWidths() const;
    void setWidths(const QList<int>& widths);

    /// Returns the least height, so that in a small window the list shrinks before its page scrolls.
    QSize sizeHint() const override { return {QTreeView::sizeHint().width(), minimumSizeHint().height()}; }

Q_SIGNALS:
    /// Emitted if the user changes the selection, or clicks in the list with any button. A click beside the rows clears
    /// the selection.
    void chosen();

    /// Emitted at a double click beside the rows; doubleClicked() is that on a row.
    void doubleClickedBeside();

    /// Emitted if a filter changes which rows are shown; `filter` is its text.
    void shownRowsChanged(const QString& filter);

    /// Emitted if the selection may have changed, for any reason. Handlers ask for selectedRow() or selectedRows().
    void selectedRowsChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    void setUpHeader();
    void arrange();
    // Gives each column its share.
    void shareWidth();
    void copyNames() const;

    ListRows* rows;
    std::vector<Column> columns;
    QString filter;
    std::vector<int> hiddenSelected;       // rows that are selected but not shown
    std::optional<std::vector<int>> among; // rows that setSelectedOnly() shows; nothing if it shows all
    bool byUser = true;                    // false while the program itself selects
    bool sharesWidth = true;               // false once the user has changed a width
};
