#include "Wizard/Windows/StructurePane.h"

#include "Types/TypeStructure.h"
#include "Wizard/Windows/TypeTreeModel.h"

#include <QHeaderView>
#include <QKeyEvent>

// A double click jumps, so it must not open the row as well.
StructurePane::StructurePane() : tree(new TypeTreeModel(this))
{
    setObjectName("structure");
    setAccessibleName(tr("Structure of the selected type"));
    setModel(tree);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setExpandsOnDoubleClick(false);
    setEditTriggers(NoEditTriggers);
    connect(this, &QTreeView::doubleClicked, this, &StructurePane::jump);
}

// Opens the row of the users only if they are few, because many would hide the fields.
void StructurePane::showType(const TypeStructure* structure, std::uint32_t type)
{
    constexpr std::size_t kFewUsers = 20;
    tree->setType(structure, type);
    setCurrentIndex(tree->index(0, 0));
    if (structure && structure->users(type).size() <= kFewUsers)
        expand(tree->index(tree->rowCount() - 1, 0));
}

// Enter jumps to the type instead of the next page. "*" is ignored: it would expand everything, without end if types
// contain each other.
void StructurePane::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        jump(currentIndex());
    else if (event->key() != Qt::Key_Asterisk)
        QTreeView::keyPressEvent(event);
}

void StructurePane::jump(const QModelIndex& index)
{
    const std::uint32_t target = tree->targetOf(index);
    if (target != TypeStructure::kNone)
        Q_EMIT jumped(target);
    else
        setExpanded(index.siblingAtColumn(0), !isExpanded(index.siblingAtColumn(0)));
}

void StructurePane::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    header()->resizeSection(0, contentsRect().width() * 55 / 100);
}
