#pragma once

#include <QTreeView>

#include <cstdint>

class TypeStructure;
class TypeTreeModel;

/// The structure of the selected type, as a tree beside the list of types. It refers to the structure and must be
/// emptied before that is freed.
class StructurePane : public QTreeView
{
    Q_OBJECT

public:
    StructurePane();

    /// Shows a type by its number in `structure`, which must live until the next call; null shows nothing.
    void showType(const TypeStructure* structure, std::uint32_t type);

Q_SIGNALS:
    /// Emitted when the user follows a row to another type, by Enter or a double click; `type` is its number.
    void jumped(std::uint32_t type);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Follows a row to its type, or opens or closes it if it leads to none.
    void jump(const QModelIndex& index);

    TypeTreeModel* tree;
};
