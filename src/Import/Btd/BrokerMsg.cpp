#include "Import/Btd/BrokerMsg.h"

#include "Xml/XMLDoc.h"

#include <algorithm>

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
    return 1;
}

// False for a type without content, which ends the import.
bool BrokerMessage::readType(const IXMLDOMNode& node)
{
    Type type;
    CString description;
    getAttribute(node, "NAME", type.name);
    getAttribute(node, "DESCRIPTION", description);
    type.folder = "\\";
    const std::size_t backslash = type.name.rfind('\\');
    if (backslash != CString::npos && backslash > 0) {
        type.folder = type.name.substr(0, backslash + 1);
        type.name.erase(0, backslash + 1);
    }
    type.element = addElement(type.name, type.folder, type.name, description, Element::typeRow, nullptr);
    IXMLDOMNodeList contents = node.childNodes();
    IXMLDOMNode content = contents.nextNode();
    if (!content) {
        passOver("all from a type without content on", type.name);
        return false;
    }
    for (; content; content = contents.nextNode())
        readContent(content, type);
    return true;
}

// The last content element decides the kind; the fields and constants of all stay.
void BrokerMessage::readContent(const IXMLDOMNode& content, const Type& type)
{
    const auto* const known = std::find_if(std::begin(kContents), std::end(kContents),
                                           [&](const Content& row) { return row.tag == content.nodeName(); });
    if (known == std::end(kContents))
        return passOver(content.nodeName(), type.name);
    type.element->setType(known->kind);
    (this->*known->read)(content, type);
}

void BrokerMessage::passOver(std::string_view what, const CString& typeName)
{
    report.add(SourceReport::declarationPassedOver, {}, CString(what) + ": " + typeName);
}

// The component isn't read: an array has no known type.
void BrokerMessage::readArray(const IXMLDOMNode& content, const Type& type)
{
    CString size;
    getAttribute(content, "SIZE", size);
    type.element->setSize(size);
    if (content.firstChild())
        passOver("component of an array", type.name);
}

// Each constant's key holds the type's name and all constants before it, so no two of an enumeration are the same.
void BrokerMessage::readConstants(const IXMLDOMNode& content, const Type& type)
{
    RunningHash key(type.name);
    CString name, description;
    for (IXMLDOMNode constant = content.firstChild(); constant; constant = constant.nextSibling()) {
        getAttribute(constant, "NAME", name);
        getAttribute(constant, "DESCRIPTION", description);
        key.append(".").append(name);
        model.addElement(key, type.folder, name, description, Element::typeString, type.element);
    }
}

void BrokerMessage::readFields(const IXMLDOMNode& content, const Type& type)
{
    const RunningHash prefix("." + type.name + ".");
    CString name, description, knownType;
    for (IXMLDOMNode field = content.firstChild(); field; field = field.nextSibling()) {
        getAttribute(field, "NAME", name);
        getAttribute(field, "DESCRIPTION", description);
        getAttribute(field, "TYPE", knownType);
        Element* element = model.addElement(RunningHash(prefix).append(name), type.folder, name, description,
                                            Element::typeOther, type.element);
        element->setKnownType(knownType);
    }
}

void BrokerMessage::readTable(const IXMLDOMNode& content, const Type& type)
{
    CString componentType;
    getAttribute(content.firstChild(), "TYPE", componentType);
    type.element->setKnownType(componentType);
}

int BrokerMessage::getAttribute(const IXMLDOMNode& node, std::string_view name, CString& value)
{
    value.clear();
    const IXMLDOMNode attribute = node ? node.attributes().getNamedItem(name) : IXMLDOMNode();
    if (!attribute)
        return 0;
    value = attribute.nodeValue();
    return 1;
}
