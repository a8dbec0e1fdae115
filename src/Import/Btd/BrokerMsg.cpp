#include "Import/Btd/BrokerMsg.h"

#include "Xml/XMLDoc.h"

#include <algorithm>
#include <utility>

const BrokerMessage::Content BrokerMessage::kContents[] = {
    {"ARRAY", Element::typeArray, &BrokerMessage::readArray},
    {"ENUM", Element::typeEnum, &BrokerMessage::readConstants},
    {"ROW", Element::typeRow, &BrokerMessage::readFields},
    {"TABLE", Element::typeTable, &BrokerMessage::readTable},
};

int BrokerMessage::parse(const CString& source, const CString&, const CString&)
{
    XmlDocument document;
    if (!document.setFile(source))
        return fail(document.queryParseError(), document.queryFault());
    const IXMLDOMElement root = document.getElement();
    if (!root)
        return 0;
    report.addFile(source);
    mainTypeName = root.baseName();
    IXMLDOMNodeList types = root.childNodes();
    IXMLDOMNode type = types.nextNode();
    if (!type)
        return 0;
    while (type && readType(type))
        type = types.nextNode();
    CString name;
    while (type && (type = types.nextNode())) {
        if (type.baseName().empty()) // no element
            continue;
        readAttributes(type, {{"NAME", &name}});
        note(SourceReport::declarationPassedOver, type, name + " behind a type without content");
    }
    return 1;
}

// False for a type without content, which ends the import.
bool BrokerMessage::readType(const IXMLDOMNode& node)
{
    Type type;
    CString description;
    readAttributes(node, {{"NAME", &type.name}, {"DESCRIPTION", &description}});
    type.folder = "\\";
    const std::size_t backslash = type.name.rfind('\\');
    if (backslash != CString::npos && backslash > 0) {
        type.folder = type.name.substr(0, backslash + 1);
        type.name.erase(0, backslash + 1);
    }
    noteUnnamed(type.name, node, "type in the folder ", type);
    const RunningHash key = keyOf(RunningHash(type.name));
    noteTwin(key, node, type.name);
    type.element = model.addElement(key, type.folder, type.name, description, Element::typeRow, nullptr);
    IXMLDOMNodeList contents = node.childNodes();
    IXMLDOMNode content = contents.nextNode();
    if (!content)
        return false;
    for (; content; content = contents.nextNode())
        readContent(content, type);
    return true;
}

// The last content element decides the kind; the fields and constants of all stay.
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

// The component isn't read: an array has no known type, so its component is the type of its own name.
void BrokerMessage::readArray(const IXMLDOMNode& content, const Type& type)
{
    CString size, componentType;
    readAttributes(content, {{"SIZE", &size}});
    type.element->setSize(size);
    for (IXMLDOMNode component = content.firstChild(); component; component = component.nextSibling()) {
        readAttributes(component, {{"TYPE", &componentType}});
        if (componentType != type.fullName())
            note(SourceReport::declarationPassedOver, component, "component of the array " + type.fullName());
    }
}

// Each constant's key holds the type's name and all constants before it, so no two of an enumeration are the same.
void BrokerMessage::readConstants(const IXMLDOMNode& content, const Type& type)
{
    RunningHash key(type.name);
    CString name, description;
    for (IXMLDOMNode constant = content.firstChild(); constant; constant = constant.nextSibling()) {
        readAttributes(constant, {{"NAME", &name}, {"DESCRIPTION", &description}});
        noteUnnamed(name, constant, "constant of ", type);
        key.append(".").append(name);
        model.addElement(key, type.folder, name, description, Element::typeString, type.element);
    }
}

void BrokerMessage::readFields(const IXMLDOMNode& content, const Type& type)
{
    const RunningHash prefix("." + type.name + ".");
    CString name, description, knownType;
    for (IXMLDOMNode field = content.firstChild(); field; field = field.nextSibling()) {
        readAttributes(field, {{"NAME", &name}, {"DESCRIPTION", &description}, {"TYPE", &knownType}});
        noteUnnamed(name, field, "field of ", type);
        noteUnnamed(knownType, field, "type of a field of ", type);
        const RunningHash key = keyOf(RunningHash(prefix).append(name));
        noteTwin(key, field, name);
        model.addElement(key, type.folder, name, description, Element::typeOther, type.element)
            ->setKnownType(knownType);
    }
}

void BrokerMessage::readTable(const IXMLDOMNode& content, const Type& type)
{
    CString componentType;
    const IXMLDOMNode component = content.firstChild();
    if (component)
        readAttributes(component, {{"TYPE", &componentType}});
    noteUnnamed(componentType, component ? component : content, "component of the table ", type);
    type.element->setKnownType(componentType);
    for (IXMLDOMNode other = component ? component.nextSibling() : component; other; other = other.nextSibling())
        note(SourceReport::declarationPassedOver, other, "second component of the table " + type.fullName());
}

void BrokerMessage::readAttributes(const IXMLDOMNode& node, std::initializer_list<Wanted> wanted)
{
    for (const Wanted& attribute : wanted)
        attribute.value->clear();
    IXMLDOMNamedNodeMap attributes = node.attributes();
    while (const IXMLDOMNode attribute = attributes.nextNode()) {
        const std::string_view name = attribute.nodeName();
        const auto* const known = std::ranges::find(wanted, name, &Wanted::name);
        if (known != wanted.end())
            known->value->assign(attribute.nodeValue());
        else
            note(SourceReport::unknownAttribute, node, CString(name) + " of " + CString(node.nodeName()));
    }
}

// What tells a usage from all others: of twins, too, if they are to be kept.
RunningHash BrokerMessage::keyOf(RunningHash key)
{
    return keepsTwins ? key.append("\n").append(std::to_string(++keys)) : key;
}

void BrokerMessage::note(SourceReport::Construct construct, const IXMLDOMNode& node, std::string_view name)
{
    report.add(construct, {0, node.place().line, node.place().column}, name);
}

void BrokerMessage::noteUnnamed(const CString& name, const IXMLDOMNode& node, const char* what, const Type& type)
{
    if (name.empty())
        note(SourceReport::nameMissing, node, what + type.fullName());
}

void BrokerMessage::noteTwin(const Fingerprint& key, const IXMLDOMNode& node, std::string_view name)
{
    if (model.findUsage(key))
        note(SourceReport::declaredTwice, node, name);
}
