#include "Wizard/Windows/TypeTreeModel.h"

#include "Types/TypeStructure.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Wizard/Windows/KindMark.h"

#include <vector>

// A row of the tree. Qt's indexes point to nodes, so a node must not move: the children of a node are in one block,
// reserved in full before the first. An allocation for each would be slow for a type with 100,000 fields.
struct TypeTreeModel::Node
{
    enum class Below
    {
        nothing,
        parts,
        users
    };

    Node* parent = nullptr;
    int row = 0;
    QString name;
    QString type;
    TextPieces description = "";                 // joined when it is shown
    std::uint32_t target = TypeStructure::kNone; // the type that a jump shows
    std::uint32_t held = TypeStructure::kNone;   // the type whose parts or users are below
    const QIcon* mark = nullptr;
    Below below = Below::nothing;
    bool isFetched = false;
    std::vector<Node> children; // reserved in full before the first, because they refer to each other

    // Appends a child in the room that was reserved.
    Node& add()
    {
        Node& child = children.emplace_back();
        child.parent = this;
        child.row = static_cast<int>(children.size()) - 1;
        return child;
    }

    // Makes the row expandable to the parts or users of a type, unless that type is an ancestor already. There are as
    // many ancestors as the user has opened rows above.
    void openTo(std::uint32_t opened, Below wanted)
    {
        for (const Node* above = parent; above; above = above->parent)
            if (above->held == opened) {
                type += tr(" (again)");
                return;
            }
        held = opened;
        below = wanted;
    }
};

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

TypeTreeModel::TypeTreeModel(QObject* parent) : QAbstractItemModel(parent), root(std::make_unique<Node>()) {}

TypeTreeModel::~TypeTreeModel() = default;

// The root is not a row. Its children are the parts of the type, and a last row for the users.
void TypeTreeModel::setType(const TypeStructure* newStructure, std::uint32_t type)
{
    beginResetModel();
    structure = newStructure;
    root = std::make_unique<Node>();
    root->isFetched = true;
    if (structure) {
        root->held = type;
        root->children.reserve(structure->partCount(type) + 1);
        addParts(*root);
        addUsersNode(*root);
    }
    endResetModel();
}

// The mark shows the kind of the type that the document names, for example a table. The text and the jump refer to the
// content of tables and arrays.
void TypeTreeModel::addParts(Node& node) const
{
    for (const TypePart& part : structure->parts(node.held)) {
        Node& child = node.add();
        child.name = part.kind == TypePart::component ? tr("(each)") : toUi(part.name);
        child.description = part.description();
        if (part.kind == TypePart::constant) {
            child.type = tr("constant");
            continue;
        }
        const TypeContent content = structure->contentOf(part);
        child.type = typeText(content);
        child.target = content.type == TypeStructure::kNone ? part.type : content.type;
        if (part.type != TypeStructure::kNone)
            child.mark = &kindMark((*structure)[part.type].queryType()).icon;
        // A type without parts has nothing to open.
        if (content.type != TypeStructure::kNone && structure->partCount(content.type) != 0)
            child.openTo(content.type, Node::Below::parts);
    }
}

// Adds the node below the parts that lists the users of the type, and theirs.
void TypeTreeModel::addUsersNode(Node& node) const
{
    Node& users = node.add();
    users.below = structure->users(node.held).empty() ? Node::Below::nothing : Node::Below::users;
    users.name = users.below == Node::Below::users ? tr("Used by") : tr("Used by no other type");
    users.held = node.held;
}

// Users are direct: a table among them is a row of its own, with the users of the table below.
void TypeTreeModel::addUsers(Node& node) const
{
    for (const std::uint32_t user : structure->users(node.held)) {
        Node& child = node.add();
        child.name = toUi(shortName(structure->queryFullName(user)));
        child.type = structure->kindOf(user);
        child.mark = &kindMark((*structure)[user].queryType()).icon;
        child.target = user;
        if (!structure->users(user).empty())
            child.openTo(user, Node::Below::users);
    }
}

TypeTreeModel::Node& TypeTreeModel::nodeOf(const QModelIndex& index) const
{
    return index.isValid() ? *static_cast<Node*>(index.internalPointer()) : *root;
}

std::uint32_t TypeTreeModel::targetOf(const QModelIndex& index) const
{
    return nodeOf(index).target;
}

QModelIndex TypeTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, &nodeOf(parent).children[static_cast<std::size_t>(row)]);
}

QModelIndex TypeTreeModel::parent(const QModelIndex& index) const
{
    const Node* above = nodeOf(index).parent;
    return above == nullptr || above == root.get() ? QModelIndex() : createIndex(above->row, 0, above);
}

// Only the first column has children, as Qt's views expect.
int TypeTreeModel::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : static_cast<int>(nodeOf(parent).children.size());
}

int TypeTreeModel::columnCount(const QModelIndex&) const
{
    return 2;
}

// True before the children are made, so that the row can be opened.
bool TypeTreeModel::hasChildren(const QModelIndex& parent) const
{
    return parent.column() <= 0 && (nodeOf(parent).below != Node::Below::nothing || !nodeOf(parent).children.empty());
}

// Only once for each row: its children stay when it is closed.
bool TypeTreeModel::canFetchMore(const QModelIndex& parent) const
{
    const Node& node = nodeOf(parent);
    return node.below != Node::Below::nothing && !node.isFetched;
}

// The view calls it when a row is opened. The number of children is announced before they are made.
void TypeTreeModel::fetchMore(const QModelIndex& parent)
{
    Node& node = nodeOf(parent);
    const std::size_t count =
        node.below == Node::Below::users ? structure->users(node.held).size() : structure->partCount(node.held);
    beginInsertRows(parent, 0, static_cast<int>(count) - 1);
    node.isFetched = true;
    node.children.reserve(count);
    node.below == Node::Below::users ? addUsers(node) : addParts(node);
    endInsertRows();
}

QVariant TypeTreeModel::data(const QModelIndex& index, int role) const
{
    const Node& node = nodeOf(index);
    if (role == Qt::DisplayRole) // a literal DTD has names of several lines
        return (index.column() == 0 ? node.name : node.type).simplified();
    if (role == Qt::DecorationRole && index.column() == 1 && !node.type.isEmpty())
        return node.mark ? *node.mark : noMark();
    CString room;
    if (role == Qt::AccessibleDescriptionRole && !node.description.empty())
        return toUi(node.description.joined(room));
    return role == Qt::ToolTipRole ? plainToolTip(toUi(node.description.joined(room))) : QVariant();
}

QVariant TypeTreeModel::headerData(int section, Qt::Orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    return section == 0 ? tr("Field") : tr("Type");
}
