#include "Import/Btd/BrokerMsg.h"

#include "Xml/DomBuilder.h"
#include "Xml/XMLDoc.h"

#include <algorithm>
#include <utility>

// The document is read as a stream that hands over each child of the root as a tree, so memory holds one type and the
// model. The tags of the children of the root, of ENUM and of ROW are not checked.
//
// A type without content ends the import. Types after it are reported as losses.
const BrokerMessage::Content BrokerMessage::kContents[] = {
    {"ARRAY", Element::typeArray, &BrokerMessage::readArray},
    {"ENUM", Element::typeEnum, &BrokerMessage::readConstants},
    {"ROW", Element::typeRow, &BrokerMessage::readFields},
    {"TABLE", Element::typeTable, &BrokerMessage::readTable},
};

int BrokerMessage::parse(const CString& source, const CString&, const CString&)
{
    report.addFile(source);
    DomTree tree;
    bool isEmpty = true, isFinished = false;
    DomBuilder builder(tree, [&](const IXMLDOMNode& child) {
        isEmpty = false;
        if (isFinished)
            skipType(child);
        else
            isFinished = !readType(child);
    });
    XmlDocument document;
    if (!document.streamFile(source, builder)) {
        // The types before the error have been declared already.
        clear();
        return fail(document.queryParseError(), document.queryFault());
    }
    mainTypeName = builder.queryRoot().baseName();
    return !isEmpty;
}

// Reports a type after one without content. Such types are not imported.
void BrokerMessage::skipType(const IXMLDOMNode& type)
{
    if (type.baseName().empty()) // no element
        return;
    std::string_view name;
    readAttributes(type, {{"NAME", &name}});
    note(SourceReport::declarationSkipped, type, CString(name) + " after a type without content");
}

// Reads one type. Returns false for a type without content, which ends the import.
bool BrokerMessage::readType(const IXMLDOMNode& node)
{
    Type type;
    std::string_view description;
    readAttributes(node, {{"NAME", &type.name}, {"DESCRIPTION", &description}});
    // If the only backslash is at the start, it belongs to the name.
    type.folder = "\\";
    const std::size_t backslash = type.name.rfind('\\');
    if (backslash != type.name.npos && backslash > 0) {
        type.folder = type.name.substr(0, backslash + 1);
        type.name.remove_prefix(backslash + 1);
    } else if (!type.name.empty()) {
        note(SourceReport::nameChanged, node, CString(type.name) + " is " + type.fullName());
    }
    noteUnnamed(type.name, node, "type in the folder ", type);
    const TypeModel::Declared made = model.addRecord(type.folder, type.name, keepsTwins);
    if (!made.isFirst)
        note(SourceReport::declaredTwice, node, type.name);
    type.element = made.element;
    type.element->setDescription(description);
    IXMLDOMNodeList contents = node.childNodes();
    IXMLDOMNode content = contents.nextNode();
    if (!content)
        return false;
    for (; content; content = contents.nextNode())
        readContent(content, type);
    return true;
}

// Reads a content element. If there are several, the last one decides the kind; the fields and constants of all stay.
void BrokerMessage::readContent(const IXMLDOMNode& content, Type& type)
{
    const auto* const known = std::find_if(std::begin(kContents), std::end(kContents),
                                           [&](const Content& row) { return row.tag == content.nodeName(); });
    if (known == std::end(kContents))
        return note(SourceReport::unknownStatement, content, CString(content.nodeName()) + " in " + type.fullName());
    if (std::exchange(type.hasContent, true))
        note(SourceReport::declaredTwice, content, "content of " + type.fullName());
    type.element->setType(known->kind);
    (this->*known->read)(content, type);
}

// Reads an array. Its component is skipped: an array has no known type, so the component in the document is named after
// the array.
void BrokerMessage::readArray(const IXMLDOMNode& content, const Type& type)
{
    std::string_view size, componentType;
    readAttributes(content, {{"SIZE", &size}});
    if (size.empty())
        note(SourceReport::invalidValue, content, "no SIZE in the array " + type.fullName() + ", which gets 5");
    else if (size.find_first_not_of("0123456789") != size.npos)
        note(SourceReport::invalidValue, content, "SIZE=\"" + CString(size) + "\" of the array " + type.fullName());
    type.element->setSize(CString(size));
    for (IXMLDOMNode component = content.firstChild(); component; component = component.nextSibling()) {
        readAttributes(component, {{"TYPE", &componentType}});
        if (componentType != type.fullName())
            note(SourceReport::declarationSkipped, component, "component of the array " + type.fullName());
    }
}

// Reads the constants of an enumeration. The key of each includes the type's full name and all constants before it, so
// the keys of an enumeration differ from each other and from those of other types. Names may contain dots, so the parts
// of a key are separated by a character that XML can't hold. The key is only hashed, because the texts of all keys
// would take memory quadratic in the length of the enumeration.
void BrokerMessage::readConstants(const IXMLDOMNode& content, const Type& type)
{
    RunningHash key(type.fullName());
    std::string_view name, description;
    for (IXMLDOMNode constant = content.firstChild(); constant; constant = constant.nextSibling()) {
        readAttributes(constant, {{"NAME", &name}, {"DESCRIPTION", &description}});
        noteUnnamed(name, constant, "constant of ", type);
        key.append("\x01").append(name);
        Element* const element =
            keepsTwins ? model.addPart(type.element, model.queryNames().intern(name), Element::typeString)
                       : model.addElement(key, type.folder, name, Element::typeString, type.element).element;
        element->setDescription(description);
    }
}

// Reads the fields of a record. All names are prefetched first, so that the cache misses in their large table overlap.
void BrokerMessage::readFields(const IXMLDOMNode& content, const Type& type)
{
    NamePool& names = model.queryNames();
    std::size_t count = 0;
    for (IXMLDOMNode field = content.firstChild(); field; field = field.nextSibling(), ++count)
        if (const IXMLDOMNode name = field.attributes().getNamedItem("NAME"))
            names.prefetch(keyHash(name.nodeValue()));
    model.reserveFields(type.element, count);
    std::string_view name, description, knownType;
    for (IXMLDOMNode field = content.firstChild(); field; field = field.nextSibling()) {
        readAttributes(field, {{"NAME", &name}, {"DESCRIPTION", &description}, {"TYPE", &knownType}});
        noteUnnamed(name, field, "field of ", type);
        noteUnnamed(knownType, field, "type of a field of ", type);
        const TypeModel::Declared made =
            keepsTwins ? TypeModel::Declared{model.addPart(type.element, names.intern(name), Element::typeOther), true}
                       : model.addField(type.element, names.intern(name), Element::typeOther);
        if (!made.isFirst)
            note(SourceReport::declaredTwice, field, name);
        made.element->setDescription(description);
        made.element->setKnownType(knownType);
    }
}

// Reads a table. The first child is its component, whatever its tag.
void BrokerMessage::readTable(const IXMLDOMNode& content, const Type& type)
{
    std::string_view componentType;
    const IXMLDOMNode component = content.firstChild();
    if (component)
        readAttributes(component, {{"TYPE", &componentType}});
    noteUnnamed(componentType, component ? component : content, "component of the table ", type);
    type.element->setKnownType(componentType);
    for (IXMLDOMNode other = component ? component.nextSibling() : component; other; other = other.nextSibling())
        note(SourceReport::declarationSkipped, other, "second component of the table " + type.fullName());
}

// Sets each variable to the attribute's value, empty if it is missing, and reports all other attributes.
void BrokerMessage::readAttributes(const IXMLDOMNode& node, std::initializer_list<Wanted> wanted)
{
    for (const Wanted& attribute : wanted)
        *attribute.value = {};
    IXMLDOMNamedNodeMap attributes = node.attributes();
    while (const IXMLDOMNode attribute = attributes.nextNode()) {
        const std::string_view name = attribute.nodeName();
        const auto* const known = std::ranges::find(wanted, name, &Wanted::name);
        if (known != wanted.end())
            *known->value = attribute.nodeValue();
        else
            note(SourceReport::unknownAttribute, node, CString(name) + " of " + CString(node.nodeName()));
    }
}

void BrokerMessage::note(SourceReport::Construct construct, const IXMLDOMNode& node, std::string_view name)
{
    report.add(construct, {0, node.place().line, node.place().column}, name);
}

void BrokerMessage::noteUnnamed(std::string_view name, const IXMLDOMNode& node, const char* what, const Type& type)
{
    if (name.empty())
        note(SourceReport::nameMissing, node, what + type.fullName());
}
