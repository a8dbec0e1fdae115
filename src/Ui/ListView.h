#pragma once

#include "Ui/ListRows.h"

#include <QTreeView>

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
    /// still shown stays so.
    void setFilter(const QString& text);

    /// How many rows there are, and how many of them are shown.
    int queryCount() const { return rows->queryCount(); }
    int rowCount() const { return rows->rowCount(); }

    CString cell(int row, int column) const { return rows->cell(row, column); }

    /// The first selected row, -1 when there is none.
    int selectedRow() const;

    /// All selected rows, by their numbers.
    std::vector<int> selectedRows() const;

    /// Selects that row alone and moves the keyboard's position there; a filter that hides it is dropped. For a row
    /// that there is not, none is selected.
    void selectRow(int row);

    /// The widths of the columns in pixels; empty until the user has changed one.
    QList<int> queryWidths() const;
    void setWidths(const QList<int>& widths);

Q_SIGNALS:
    /// The selection has changed, by whatever the user did, or he has clicked in the list, with any button, on a row or
    /// beside (which leaves none selected).
    void chosen();

    /// Other rows are shown than before; `filter` is the text that they contain.
    void shownRowsChanged(const QString& filter);

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
    bool byUser = true;      // false while the program itself selects
    bool sharesWidth = true; // until the user changes the width of a column
};
