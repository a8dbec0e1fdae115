#include "Ui/ListRows.h"

#include "Ui/PlainText.h"
#include "Ui/UiText.h"

#include <algorithm>
#include <numeric>

ListRows::ListRows(QStringList columnTitles, QObject* parent) :
    QAbstractTableModel(parent), titles(std::move(columnTitles))
{}

void ListRows::setRows(int newCount, CellText newCells, RowMark newMarks)
{
    count = newCount;
    cells = std::move(newCells);
    marks = std::move(newMarks);
    arrange({}, -1, Qt::AscendingOrder);
}

void ListRows::arrange(const QString& text, int column, Qt::SortOrder order)
{
    beginResetModel();
    shown.resize(static_cast<std::size_t>(count));
    std::iota(shown.begin(), shown.end(), 0);
    if (!text.isEmpty())
        std::erase_if(shown, [&](int row) { return !contains(row, text); });
    if (column >= 0)
        sortShown(column, order);
    places.assign(static_cast<std::size_t>(count), -1);
    for (std::size_t place = 0; place < shown.size(); ++place)
        places[static_cast<std::size_t>(shown[place])] = static_cast<int>(place);
    endResetModel();
}

bool ListRows::contains(int row, const QString& text) const
{
    for (int column = 0; column < titles.size(); ++column)
        if (toUi(cells(row, column)).contains(text, Qt::CaseInsensitive))
            return true;
    return false;
}

// Rows that are equal keep their own order, both ways.
void ListRows::sortShown(int column, Qt::SortOrder order)
{
    std::vector<QString> keys(static_cast<std::size_t>(count));
    for (const int row : shown)
        keys[static_cast<std::size_t>(row)] = toUi(cells(row, column)).toCaseFolded();
    std::stable_sort(shown.begin(), shown.end(), [&](int left, int right) {
        if (order == Qt::DescendingOrder)
            std::swap(left, right);
        return keys[static_cast<std::size_t>(left)] < keys[static_cast<std::size_t>(right)];
    });
}

QModelIndex ListRows::indexOf(int row) const
{
    const bool isRow = row >= 0 && row < count;
    return isRow ? index(places[static_cast<std::size_t>(row)], 0) : QModelIndex();
}

int ListRows::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(shown.size());
}

int ListRows::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(titles.size());
}

QVariant ListRows::data(const QModelIndex& index, int role) const
{
    const int row = rowAt(index.row());
    if (role == Qt::DisplayRole)
        return toUi(cells(row, index.column()));
    if (index.column() != 0 || !marks)
        return {};
    if (role == Qt::DecorationRole)
        return marks(row).icon;
    if (role == Qt::AccessibleTextRole)
        return toUi(cells(row, 0)) + ", " + marks(row).word;
    return role == Qt::ToolTipRole ? plainToolTip(marks(row).word) : QVariant();
}

QVariant ListRows::headerData(int section, Qt::Orientation, int role) const
{
    return role == Qt::DisplayRole ? titles[section] : QVariant();
}
