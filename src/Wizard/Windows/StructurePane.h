#pragma once

#include <QTreeView>

#include <cstdint>

class TypeStructure;
class TypeTreeModel;

/// The structure of the selected type, as a tree beside the list of types.
class StructurePane : public QTreeView
{
    Q_OBJECT

public:
    StructurePane();

    /// Shows a type, a number in `structure`, which must live until the next call; null shows nothing.
    void showType(const TypeStructure* structure, std::uint32_t type);

Q_SIGNALS:
    /// The user wants to see the type of that number: by Enter on a row that names it, or a double click there.
    void jumped(std::uint32_t type);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void jump(const QModelIndex& index);

    TypeTreeModel* tree;
};
