#include "Ui/ListRows.h"

#include "Base/Utf8.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"

#include <QFont>

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

// A text to search for in any letter case. Cells in ASCII are compared by bytes; Qt's comparison costs ten times as
// much. A text with a letter outside of ASCII can't be in such a cell.
class ListRows::Wanted
{
public:
    explicit Wanted(const QString& wanted) : text(wanted), bytes(fromUi(wanted.toLower())), isPlain(isAscii(bytes)) {}

    bool isIn(std::string_view cell) const
    {
        if (!isAscii(cell))
            return toUi(cell).contains(text, Qt::CaseInsensitive);
        return isPlain && std::search(cell.begin(), cell.end(), bytes.begin(), bytes.end(),
                                      [](char c, char w) { return lowerAscii(c) == w; }) != cell.end();
    }

private:
    QString text;
    CString bytes;
    bool isPlain;
};

ListRows::ListRows(QStringList columnTitles, QObject* parent) :
    QAbstractTableModel(parent), titles(std::move(columnTitles))
{}

void ListRows::setRows(int newCount, CellText newCells, RowMark newMarks)
{
    count = newCount;
    cells = std::move(newCells);
    marks = std::move(newMarks);
    arrange({}, nullptr, -1, Qt::AscendingOrder);
}

// Filters first, so that fewer rows are sorted.
void ListRows::arrange(const QString& text, const std::vector<int>* among, int column, Qt::SortOrder order)
{
    beginResetModel();
    if (among) {
        shown = *among;
    } else {
        shown.resize(static_cast<std::size_t>(count));
        std::iota(shown.begin(), shown.end(), 0);
    }
    if (!text.isEmpty())
        std::erase_if(shown, [this, wanted = Wanted(text)](int row) { return !matches(row, wanted); });
    if (column >= 0)
        sortShown(column, order);
    places.assign(static_cast<std::size_t>(count), -1);
    for (std::size_t place = 0; place < shown.size(); ++place)
        places[static_cast<std::size_t>(shown[place])] = static_cast<int>(place);
    endResetModel();
}

bool ListRows::matches(int row, const Wanted& wanted) const
{
    for (int column = 0; column < titles.size(); ++column)
        if (wanted.isIn(cells(row, column)))
            return true;
    return false;
}

// Equal rows keep their own order in both directions. A stable sort by "greater" preserves it; a reversed result would
// not. Cells are folded to lower case once for each row, not for each comparison.
void ListRows::sortShown(int column, Qt::SortOrder order)
{
    using Key = std::pair<CString, int>; // a folded cell and its row
    std::vector<Key> keys;
    keys.reserve(shown.size());
    for (const int row : shown) {
        const CString cell = cells(row, column);
        keys.emplace_back(isAscii(cell) ? lowerAscii(cell) : fromUi(toUi(cell).toCaseFolded()), row);
    }
    if (order == Qt::AscendingOrder)
        std::ranges::stable_sort(keys, std::ranges::less(), &Key::first);
    else
        std::ranges::stable_sort(keys, std::ranges::greater(), &Key::first);
    std::ranges::transform(keys, shown.begin(), &Key::second);
}

// index() returns an invalid index for the place -1 of a row that isn't shown.
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

// The mark stands before the first cell only. A screen reader reads its word with the name. A line feed in a cell would
// make all rows higher and hide the text after it.
QVariant ListRows::data(const QModelIndex& index, int role) const
{
    const int row = rowAt(index.row());
    if (role == Qt::DisplayRole)
        return toUi(shownText(cells(row, index.column())));
    if (index.column() != 0 || !marks)
        return {};
    if (role == Qt::DecorationRole)
        return marks(row).icon;
    if (role == Qt::FontRole && marks(row).isStrong) {
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    if (role == Qt::AccessibleTextRole)
        return toUi(shownText(cells(row, 0))) + ", " + marks(row).word;
    return role == Qt::ToolTipRole ? plainToolTip(marks(row).word) : QVariant();
}

QVariant ListRows::headerData(int section, Qt::Orientation, int role) const
{
    return role == Qt::DisplayRole ? titles[section] : QVariant();
}
