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
/// A click on a column's title sorts by it, a second one the other way round, a third one gives the rows back their own
/// order. Ctrl+C copies names, the first cells: those of the selected rows, else of all that are shown. Rows are told
/// by their numbers in the order in which they were set, wherever they are shown.
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

    /// Shows `count` rows whose cells `cells` answers, all of them and in this order. `marks`, where there is one,
    /// answers what stands before a row's name. No row is selected afterwards.
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

    /// The first selected row, -1 when there is none.
    int selectedRow() const;

    /// All selected rows, the hidden ones too, by their numbers in order.
    std::vector<int> selectedRows() const;

    /// Selects that row alone and moves the keyboard's position there; a filter that hides it is dropped. For a row
    /// that there is not, none is selected.
    void selectRow(int row);

    /// Gives the columns other widths in per cent of the list, as far as the user has not changed them. A column of 0
    /// is hidden.
    void setShares(const std::vector<int>& percents);

    /// The widths of the columns in pixels; empty until the user has changed one.
    QList<int> queryWidths() const;
    void setWidths(const QList<int>& widths);

Q_SIGNALS:
    /// The selection has changed, by whatever the user did, or he has clicked in the list, with any button, on a row or
    /// beside (which leaves none selected).
    void chosen();

    /// Other rows are shown than before; `filter` is the text that they contain.
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
