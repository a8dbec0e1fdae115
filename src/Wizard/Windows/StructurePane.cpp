#include "Wizard/Windows/StructurePane.h"

#include "Types/TypeStructure.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Wizard/Windows/KindMark.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace {

// Returns a content in words, for example "table of array [5] of Line".
QString typeText(const TypeContent& content)
{
    QString text;
    for (const char c : content.repeats)
        text += c == '*'   ? QString("table of ")
                : c == '[' ? QString("array [")
                : c == ']' ? QString("] of ")
                           : QString(c);
    return text + toUi(content.type == TypeStructure::kNone ? std::string_view(content.typeName)
                                                            : shortName(content.typeName));
}

// Returns an empty icon as wide as a mark, so that all names are aligned.
const QIcon& noMark()
{
    static const QIcon icon = [] {
        QPixmap nothing(16, 16);
        nothing.fill(Qt::transparent);
        return QIcon(nothing);
    }();
    return icon;
}

} // namespace

// Computes tool tips when they are shown, because a type can have 100,000 fields.
class StructurePane::Row : public QTreeWidgetItem
{
public:
    QString name;                                // in column 0
    QString type;                                // in column 1
    TextPieces description = "";                 // joined when it is shown
    const QIcon* mark = nullptr;                 // of the type
    std::uint32_t target = TypeStructure::kNone; // the type that a jump shows
    std::uint32_t held = TypeStructure::kNone;   // the type whose parts or users are below
    bool showsUsers = false;

    QVariant data(int column, int role) const override
    {
        if (role == Qt::DisplayRole) // a literal DTD has names of several lines
            return (column == 0 ? name : type).simplified();
        if (role == Qt::DecorationRole && column == 1 && !type.isEmpty())
            return mark ? *mark : noMark();
        CString room;
        if (role == Qt::AccessibleDescriptionRole && !description.empty())
            return toUi(description.joined(room));
        return role == Qt::ToolTipRole ? plainToolTip(toUi(description.joined(room))) : QVariant();
    }
};

// A double click jumps, so it must not open the row as well.
StructurePane::StructurePane()
{
    setObjectName("structure");
    setAccessibleName(tr("Structure of the selected type"));
    setHeaderLabels({tr("Field"), tr("Type")});
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setExpandsOnDoubleClick(false);
    connect(this, &QTreeWidget::itemDoubleClicked, this, &StructurePane::jump);
    connect(this, &QTreeWidget::itemExpanded, this, &StructurePane::fill);
}

// The last row lists the users of the type. It is only opened if they are few, because many would hide the fields.
void StructurePane::showType(const TypeStructure* newStructure, std::uint32_t type)
{
    constexpr std::size_t kFewUsers = 20;
    clear();
    structure = newStructure;
    shown = type;
    if (!structure)
        return;
    const std::size_t users = structure->users(type).size();
    auto* last = new Row;
    last->name = users != 0 ? tr("Used by") : tr("Used by no other type");
    last->held = type;
    last->showsUsers = true;
    if (users != 0)
        last->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    addTopLevelItems(partRows(type, nullptr));
    addTopLevelItem(last);
    setCurrentItem(topLevelItem(0));
    last->setExpanded(users <= kFewUsers);
}

QList<QTreeWidgetItem*> StructurePane::partRows(std::uint32_t type, const Row* above) const
{
    QList<QTreeWidgetItem*> rows;
    for (const TypePart& part : structure->parts(type))
        rows.append(rowFor(part, above));
    return rows;
}

// The mark shows the kind of the type that the document names, for example a table. The text and the jump refer to the
// content of tables and arrays.
StructurePane::Row* StructurePane::rowFor(const TypePart& part, const Row* above) const
{
    auto* row = new Row;
    row->name = part.kind == TypePart::component ? tr("(each)") : toUi(part.name);
    row->description = part.description();
    if (part.kind == TypePart::constant) {
        row->type = tr("constant");
        return row;
    }
    const TypeContent content = structure->contentOf(part);
    row->type = typeText(content);
    row->target = content.type == TypeStructure::kNone ? part.type : content.type;
    if (part.type != TypeStructure::kNone)
        row->mark = &kindMark((*structure)[part.type].queryType()).icon;
    // A type without parts has nothing to open.
    if (content.type != TypeStructure::kNone && structure->partCount(content.type) != 0)
        openTo(*row, content.type, false, above);
    return row;
}

// Users are direct: a table among them is a row of its own, with the users of the table below.
QList<QTreeWidgetItem*> StructurePane::userRows(std::uint32_t type, const Row* above) const
{
    QList<QTreeWidgetItem*> rows;
    for (const std::uint32_t user : structure->users(type)) {
        auto* row = new Row;
        row->name = toUi(shortName(structure->queryFullName(user)));
        row->type = structure->kindOf(user);
        row->mark = &kindMark((*structure)[user].queryType()).icon;
        row->target = user;
        if (!structure->users(user).empty())
            openTo(*row, user, true, above);
        rows.append(row);
    }
    return rows;
}

// There are as many rows above as the user has opened.
void StructurePane::openTo(Row& row, std::uint32_t type, bool showsUsers, const Row* above) const
{
    bool isAgain = type == shown;
    for (; above && !isAgain; above = static_cast<const Row*>(above->parent()))
        isAgain = above->held == type;
    if (isAgain) {
        row.type += tr(" (again)");
        return;
    }
    row.held = type;
    row.showsUsers = showsUsers;
    row.setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
}

// Only once for each row: its rows stay when it is closed.
void StructurePane::fill(QTreeWidgetItem* item) const
{
    auto* row = static_cast<Row*>(item);
    if (row->childCount() == 0)
        row->addChildren(row->showsUsers ? userRows(row->held, row) : partRows(row->held, row));
}

// Enter jumps to the type instead of the next page. "*" is ignored: it would expand everything, without end if types
// contain each other.
void StructurePane::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        jump(currentItem());
    else if (event->key() != Qt::Key_Asterisk)
        QTreeWidget::keyPressEvent(event);
}

void StructurePane::jump(QTreeWidgetItem* item)
{
    const std::uint32_t target = item ? static_cast<Row*>(item)->target : TypeStructure::kNone;
    if (target != TypeStructure::kNone)
        Q_EMIT jumped(target);
    else if (item)
        item->setExpanded(!item->isExpanded());
}

void StructurePane::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    header()->resizeSection(0, contentsRect().width() * 55 / 100);
}
