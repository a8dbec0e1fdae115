#pragma once

#include <QAbstractItemModel>

#include <cstdint>
#include <memory>

class TypeStructure;

/// The structure of one type as a tree of two columns: its fields, constants or component with their types, then the
/// types that use it. Children are created when a row is expanded. A type inside itself is marked and can't be
/// expanded. Types refer to each other in circles, so a tree of all rows would have no end.
class TypeTreeModel : public QAbstractItemModel
{
public:
    explicit TypeTreeModel(QObject* parent);
    ~TypeTreeModel() override;

    /// Shows a type by its number in `newStructure`, which must live until the next call; null shows nothing. Drops all
    /// rows.
    void setType(const TypeStructure* newStructure, std::uint32_t type);

    /// Returns the number of the type that a row leads to, TypeStructure::kNone if none.
    std::uint32_t targetOf(const QModelIndex& index) const;

    // Qt's interface of a tree. Column 0 has the name of a part, column 1 its type in words.
    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    // A row; QModelIndex::internalPointer() points to it.
    struct Node;

    // Returns the node of an index; the root for an invalid one.
    Node& nodeOf(const QModelIndex& index) const;
    // Add children to a node, which has reserved room for them.
    void addParts(Node& node) const;
    void addUsers(Node& node) const;
    void addUsersNode(Node& node) const;

    const TypeStructure* structure = nullptr;
    std::unique_ptr<Node> root; // not a row itself; never null
};
