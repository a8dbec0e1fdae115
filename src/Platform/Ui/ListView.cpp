#include "Platform/Ui/ListView.h"

#include "Platform/Ui/UiText.h"

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include <algorithm>

class ListView::Model : public QAbstractTableModel
{
public:
    explicit Model(ListView& view) : QAbstractTableModel(&view), list(view) {}

    void setRows(int newCount, CellText newCells)
    {
        beginResetModel();
        count = newCount;
        cells = std::move(newCells);
        endResetModel();
    }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : count; }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(list.columns.size());
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return role == Qt::DisplayRole ? toUi(cells(index.row(), index.column())) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation, int role) const override
    {
        return role == Qt::DisplayRole ? toUi(list.columns[static_cast<std::size_t>(section)].title) : QVariant();
    }

    CellText cells;

private:
    const ListView& list;
    int count = 0;
};

ListView::ListView(std::vector<Column> listColumns, const CString& accessibleName) : columns(std::move(listColumns))
{
    rows = new Model(*this);
    setModel(rows);
    setAccessibleName(toUi(accessibleName));
    setRootIsDecorated(false);
    header()->setStretchLastSection(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
}

void ListView::setRows(int count, CellText cells)
{
    const QScopedValueRollback<bool> own(byUser, false);
    rows->setRows(count, std::move(cells));
}

CString ListView::cell(int row, int column) const
{
    return rows->cells(row, column);
}

int ListView::selectedRow() const
{
    const std::vector<int> selected = selectedRows();
    return selected.empty() ? -1 : selected.front();
}

std::vector<int> ListView::selectedRows() const
{
    std::vector<int> selected;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        selected.push_back(index.row());
    std::sort(selected.begin(), selected.end());
    return selected;
}

void ListView::selectRow(int row)
{
    const QScopedValueRollback<bool> own(byUser, false);
    clearSelection();
    setCurrentIndex(rows->index(row, 0)); // an index that is not valid for a row that there is not
}

void ListView::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    const int width = contentsRect().width();
    int rest = viewport()->width();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int share =
            std::min(rest, width * columns[i].percent / 100); // no wider than a scroll bar leaves room for
        header()->resizeSection(static_cast<int>(i), share);
        rest -= share;
    }
}

void ListView::mousePressEvent(QMouseEvent* event)
{
    if (!indexAt(event->pos()).isValid())
        clearSelection();
    QTreeView::mousePressEvent(event);
}

void ListView::mouseReleaseEvent(QMouseEvent* event)
{
    QTreeView::mouseReleaseEvent(event);
    if (isVisible()) // a double click may have led to another page
        Q_EMIT chosen();
}

void ListView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    if (byUser)
        Q_EMIT chosen();
}
