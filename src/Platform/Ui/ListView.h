#pragma once

#include "Platform/Text.h"

#include <QTreeView>

#include <functional>
#include <vector>

/// A list of rows with columns under a header, each as wide as it says in per cent of the list, or less where a
/// scroll bar takes from it. Cells are asked for when they are seen, so a list of any length is there at once. One row
/// can be selected, unless setSelectionMode() says otherwise; a selected row is selected over its whole width.
class ListView : public QTreeView
{
    Q_OBJECT

public:
    struct Column
    {
        CString title;
        int percent;
    };
    using CellText = std::function<CString(int row, int column)>;

    ListView(std::vector<Column> columns, const CString& accessibleName);

    /// Shows `count` rows whose cells `cells` answers. No row is selected afterwards.
    void setRows(int count, CellText cells);

    int rowCount() const { return model()->rowCount(); }
    CString cell(int row, int column) const;

    /// The first selected row, -1 when there is none.
    int selectedRow() const;

    /// All selected rows, from the top.
    std::vector<int> selectedRows() const;

    /// Selects that row alone and moves the keyboard's position there. For one that there is not, none is selected.
    void selectRow(int row);

Q_SIGNALS:
    /// The selection has changed, by whatever the user did, or he has clicked in the list, with any button, on a row or
    /// beside (which leaves none selected).
    void chosen();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    class Model;

    Model* rows;
    std::vector<Column> columns;
    bool byUser = true; // false while the program itself selects
};
