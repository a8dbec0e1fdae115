#pragma once

#include "Base/Text.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QStringList>

#include <functional>
#include <vector>

/// The rows of a ListView, in the order in which they are shown. A row's number is its index as it was set; sorting and
/// filtering don't change it. Sorting and filtering reset the model, so no index, and no selection, stays valid.
class ListRows : public QAbstractTableModel
{
public:
    /// Returns the text of a cell. Called for visible cells, and for all when rows are sorted or filtered, so it should
    /// not compute much.
    using CellText = std::function<CString(int row, int column)>;

    /// The icon before a row's first cell, and its name for screen readers.
    struct Mark
    {
        QIcon icon;
        QString word;
        bool isStrong = false; ///< show the first cell in bold
    };
    /// Returns the mark of a row; the reference must stay valid until the rows change.
    using RowMark = std::function<const Mark&(int row)>;

    /// There is a column for each of `titles`. The model has no rows at first.
    ListRows(QStringList titles, QObject* parent);

    /// Sets `count` rows and shows all of them, in their own order. `marks` may be empty. The functions are used until
    /// the next call, so all objects that they refer to must live until then.
    void setRows(int count, CellText cells, RowMark marks);

    /// Shows the rows with `text` in any cell, in any letter case, sorted by a column; -1 keeps their own order.
    /// `among` limits the rows; null means all. Its numbers must be ascending, which is the rows' own order. A sort
    /// reads every cell of its column, a text every cell of all rows.
    void arrange(const QString& text, const std::vector<int>* among, int column, Qt::SortOrder order);

    /// Returns the number of all rows; rowCount() is that of the shown ones.
    int queryCount() const { return count; }

    /// Returns the number of the row at a place.
    int rowAt(int place) const { return shown[static_cast<std::size_t>(place)]; }

    /// Returns the index of a row, an invalid one if it isn't shown.
    QModelIndex indexOf(int row) const;

    /// Returns the text of a cell by the row's number.
    CString cell(int row, int column) const { return cells(row, column); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    class Wanted;
    bool matches(int row, const Wanted& wanted) const;
    void sortShown(int column, Qt::SortOrder order);

    QStringList titles;
    int count = 0;
    CellText cells;
    RowMark marks;
    std::vector<int> shown;  // row numbers by place
    std::vector<int> places; // by row number, -1 for a row that isn't shown
};
