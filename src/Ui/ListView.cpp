#include "Ui/ListView.h"

#include "Ui/UiText.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>

#include <algorithm>
#include <iterator>

// The view translates between row numbers, which callers know, and Qt's indexes, which are places in the model.
// Filtering and sorting reset the model and with it selection and current row, so arrange() keeps both by row numbers
// and sets them again. Selected rows that a filter hides are kept in `hiddenSelected`, because Qt's selection can only
// hold rows of the model.
namespace {

QStringList titlesOf(const std::vector<ListView::Column>& columns)
{
    QStringList titles;
    for (const ListView::Column& column : columns)
        titles.append(toUi(column.title));
    return titles;
}

// Returns a selection of whole rows, with neighbours merged into ranges: adding a range costs a comparison with all
// others. Rows that aren't shown are left out.
QItemSelection selectionOf(const ListRows& rows, const std::vector<int>& numbers)
{
    std::vector<int> places;
    for (const int number : numbers)
        if (const QModelIndex index = rows.indexOf(number); index.isValid())
            places.push_back(index.row());
    std::sort(places.begin(), places.end());
    QItemSelection selection;
    const int last = rows.columnCount() - 1;
    for (auto from = places.begin(), to = from; from != places.end(); from = to) {
        while (to != places.end() && *to - *from == to - from)
            ++to;
        selection.select(rows.index(*from, 0), rows.index(*std::prev(to), last));
    }
    return selection;
}

} // namespace

// Uniform row heights spare Qt the measuring of all rows.
ListView::ListView(std::vector<Column> listColumns, const CString& accessibleName) :
    rows(new ListRows(titlesOf(listColumns), this)), columns(std::move(listColumns))
{
    setModel(rows);
    setAccessibleName(toUi(accessibleName));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setUpHeader();
    auto* copy = new QAction("&Copy names", this);
    copy->setShortcut(QKeySequence::Copy);
    // Only with the focus in this list, because other controls of a page copy, too.
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &ListView::copyNames);
    addAction(copy);
    // Pages put their own actions before it.
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

// The sort indicator's -1 means the rows' own order.
void ListView::setUpHeader()
{
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(true);
    header()->setSortIndicatorClearable(true);
    header()->setSortIndicator(-1, Qt::AscendingOrder);
    header()->setSortIndicatorShown(true);
    connect(header(), &QHeaderView::sortIndicatorChanged, this, &ListView::arrange);
    connect(header(), &QHeaderView::sectionResized, this, [this] { sharesWidth = false; });
}

void ListView::setRows(int count, CellText cells, RowMark marks)
{
    const QScopedValueRollback<bool> own(byUser, false);
    filter.clear();
    among.reset();
    hiddenSelected.clear();
    {
        const QSignalBlocker quiet(header()); // the rows are put in order below
        header()->setSortIndicator(-1, Qt::AscendingOrder);
    }
    rows->setRows(count, std::move(cells), std::move(marks));
    Q_EMIT shownRowsChanged(filter);
    Q_EMIT selectedRowsChanged();
}

// An equal text changes nothing, which also ends the exchange with a field that shows the filter.
void ListView::setFilter(const QString& text)
{
    if (text == filter)
        return;
    filter = text;
    arrange();
    Q_EMIT shownRowsChanged(filter);
}

// The rows are fixed by the call: one that is deselected afterwards stays shown.
void ListView::setSelectedOnly(bool only)
{
    if (only == among.has_value())
        return;
    among.reset();
    if (only)
        among = selectedRows();
    arrange();
    Q_EMIT shownRowsChanged(filter);
}

// Puts the rows into the model anew, and keeps the selection. `byUser` is false meanwhile, so that no step counts as
// the user's choice. A selection that the filter has removed does count, because pages show the selection.
void ListView::arrange()
{
    const std::vector<int> selected = selectedRows();
    const int current = currentIndex().isValid() ? rows->rowAt(currentIndex().row()) : -1;
    {
        const QScopedValueRollback<bool> own(byUser, false);
        rows->arrange(filter, among ? &*among : nullptr, header()->sortIndicatorSection(),
                      header()->sortIndicatorOrder());
        hiddenSelected.clear();
        if (selectionMode() != SingleSelection)
            std::copy_if(selected.begin(), selected.end(), std::back_inserter(hiddenSelected),
                         [this](int row) { return !rows->indexOf(row).isValid(); });
        // Doesn't change the selection, which is restored next.
        selectionModel()->setCurrentIndex(rows->indexOf(current), QItemSelectionModel::NoUpdate);
        selectionModel()->select(selectionOf(*rows, selected), QItemSelectionModel::Select);
        scrollTo(currentIndex());
    }
    if (selectedRows() != selected) { // the model's reset has deselected rows without a signal
        Q_EMIT selectedRowsChanged();
        Q_EMIT chosen();
    }
}

int ListView::selectedRow() const
{
    const std::vector<int> selected = selectedRows();
    return selected.empty() ? -1 : selected.front();
}

std::vector<int> ListView::selectedRows() const
{
    std::vector<int> selected = hiddenSelected;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        selected.push_back(rows->rowAt(index.row()));
    std::sort(selected.begin(), selected.end());
    return selected;
}

void ListView::selectRow(int row)
{
    const QScopedValueRollback<bool> own(byUser, false);
    hiddenSelected.clear();
    clearSelection();
    if (row >= 0 && row < queryCount() && !rows->indexOf(row).isValid()) {
        setSelectedOnly(false);
        setFilter({});
    }
    setCurrentIndex(rows->indexOf(row)); // invalid if there is no such row
}

void ListView::copyNames() const
{
    QModelIndexList copied = selectionModel()->selectedRows();
    if (copied.isEmpty())
        for (int place = 0; place < rowCount(); ++place)
            copied.append(rows->index(place, 0));
    std::sort(copied.begin(), copied.end());
    QStringList names;
    for (const QModelIndex& index : copied)
        names.append(toUi(rows->cell(rows->rowAt(index.row()), 0))); // as it is, with control characters
    QGuiApplication::clipboard()->setText(names.join('\n'));
}

void ListView::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    if (sharesWidth)
        shareWidth();
}

// The last columns get the remaining width, so no horizontal scroll bar appears.
void ListView::shareWidth()
{
    const int width = contentsRect().width();
    int rest = viewport()->width();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const int share = std::min(rest, width * columns[i].percent / 100); // a scroll bar may need room
        header()->resizeSection(static_cast<int>(i), share);
        rest -= share;
    }
    sharesWidth = true; // the steps above have cleared it, as a change by the user does
}

void ListView::setShares(const std::vector<int>& percents)
{
    const bool isShared = sharesWidth;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].percent = percents[i];
        setColumnHidden(static_cast<int>(i), percents[i] == 0); // handled like a change by the user
    }
    sharesWidth = isShared;
    if (sharesWidth)
        shareWidth();
}

QList<int> ListView::queryWidths() const
{
    QList<int> widths;
    for (int column = 0; !sharesWidth && column < header()->count(); ++column)
        widths.append(columnWidth(column));
    return widths;
}

void ListView::setWidths(const QList<int>& widths)
{
    for (int column = 0; column < header()->count(); ++column)
        setColumnWidth(column, widths[column]);
    sharesWidth = false;
}

// If a row is current but not selected, the first cursor key selects it, because in a list of one row no key could move
// to it.
void ListView::keyPressEvent(QKeyEvent* event)
{
    static constexpr int keys[] = {Qt::Key_Up,  Qt::Key_Down,   Qt::Key_Home,
                                   Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown};
    const bool moves = std::find(std::begin(keys), std::end(keys), event->key()) != std::end(keys);
    if (moves && (event->modifiers() & ~Qt::KeypadModifier) == 0 && !selectionModel()->hasSelection() &&
        currentIndex().isValid()) {
        setCurrentIndex(currentIndex());
        if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)
            return;
    }
    QTreeView::keyPressEvent(event);
}

// Clears the selection at a click beside the rows. Qt 6.8 keeps it in a list with a single selection; Qt 6.4 does not.
void ListView::mousePressEvent(QMouseEvent* event)
{
    if (!indexAt(event->pos()).isValid())
        clearSelection();
    QTreeView::mousePressEvent(event);
}

// Only the left button counts, because a double click leads to the next page. Qt emits no signal beside the rows.
void ListView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    QTreeView::mouseDoubleClickEvent(event);
    if (!indexAt(event->pos()).isValid())
        Q_EMIT doubleClickedBeside();
}

// A click counts even if it selects nothing new: the importer page then shows the importer's own path again.
void ListView::mouseReleaseEvent(QMouseEvent* event)
{
    QTreeView::mouseReleaseEvent(event);
    if (isVisible()) // a double click may have changed the page
        Q_EMIT chosen();
}

void ListView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    Q_EMIT selectedRowsChanged();
    if (byUser)
        Q_EMIT chosen();
}
