#pragma once

#include <QTreeWidget>

#include <cstdint>

class TypeStructure;
struct TypePart;

/// The structure of the selected type, as a tree beside the list of types: its fields, constants or component with
/// their types, then the types that use it. Rows are created when the row above them is expanded, because types refer
/// to each other in circles. A type inside itself is marked and can't be expanded. It refers to the structure and must
/// be emptied before that is freed.
class StructurePane : public QTreeWidget
{
    Q_OBJECT

public:
    StructurePane();

    /// Shows a type by its number in `newStructure`, which must live until the next call; null shows nothing.
    void showType(const TypeStructure* newStructure, std::uint32_t type);

Q_SIGNALS:
    /// Emitted when the user follows a row to another type, by Enter or a double click; `type` is its number.
    void jumped(std::uint32_t type);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Row;

    // Return a row for each part of a type, or for each type that uses it. They belong below `above`, or to the shown
    // type if it is null.
    QList<QTreeWidgetItem*> partRows(std::uint32_t type, const Row* above) const;
    QList<QTreeWidgetItem*> userRows(std::uint32_t type, const Row* above) const;
    Row* rowFor(const TypePart& part, const Row* above) const;
    // Makes a row expandable, unless its type is that of a row above.
    void openTo(Row& row, std::uint32_t type, bool showsUsers, const Row* above) const;
    // Creates the rows below an expanded row.
    void fill(QTreeWidgetItem* item) const;
    // Follows a row to its type, or opens or closes it if it leads to none.
    void jump(QTreeWidgetItem* item);

    const TypeStructure* structure = nullptr;
    std::uint32_t shown = 0; // the shown type
};
