#include "Utils/BrokerType.h"

#include "Platform/XmlEscape.h"

#include <utility>

namespace {

constexpr std::string_view kRoot = "BROKERTYPEDESCRIPTION";

} // namespace

BrokerTypeDescription::BrokerTypeDescription(std::string_view name, std::string_view description, std::string_view path,
                                             CString storage) :
    text(std::move(storage))
{
    CString fullName(path);
    if (!path.ends_with('\\'))
        fullName += '\\';
    fullName += name;
    text.assign("<").append(kRoot);
    appendXmlAttribute(text, "NAME", fullName);
    if (!description.empty())
        appendXmlAttribute(text, "DESCRIPTION", description);
}

int BrokerTypeDescription::addRow()
{
    return openContent("ROW", stateRow);
}

int BrokerTypeDescription::addField(std::string_view name, std::string_view description, std::string_view type)
{
    if (state != stateRow)
        return 0;
    openItem("<FIELD", name, description);
    appendXmlAttribute(text, "TYPE", type);
    return 1;
}

int BrokerTypeDescription::addEnum()
{
    return openContent("ENUM", stateEnum);
}

int BrokerTypeDescription::addConstant(std::string_view name, std::string_view description)
{
    if (state != stateEnum)
        return 0;
    openItem("<CONSTANT", name, description);
    return 1;
}

int BrokerTypeDescription::addArray(std::string_view size, std::string_view componentType)
{
    if (!openContent("ARRAY", stateArray))
        return 0;
    appendXmlAttribute(text, "SIZE", size);
    addComponent(componentType);
    return 1;
}

int BrokerTypeDescription::addTable(std::string_view componentType)
{
    if (!openContent("TABLE", stateTable))
        return 0;
    addComponent(componentType);
    return 1;
}

void BrokerTypeDescription::queryXML(CString& out) const
{
    out = text;
    appendEnd(out);
}

CString BrokerTypeDescription::takeXML() &&
{
    appendEnd(text);
    return std::move(text);
}

int BrokerTypeDescription::openContent(std::string_view tag, State opened)
{
    if (state != stateEmpty)
        return 0;
    state = opened;
    content = tag;
    text.append("><").append(tag);
    return 1;
}

void BrokerTypeDescription::openItem(std::string_view tag, std::string_view name, std::string_view description)
{
    text.append(hasItems ? "/>" : ">").append(tag);
    hasItems = true;
    appendXmlAttribute(text, "NAME", name);
    if (!description.empty())
        appendXmlAttribute(text, "DESCRIPTION", description);
}

void BrokerTypeDescription::addComponent(std::string_view componentType)
{
    text.append("><COMPONENT");
    hasItems = true;
    appendXmlAttribute(text, "TYPE", componentType);
}

void BrokerTypeDescription::appendEnd(CString& out) const
{
    out.append("/>");
    if (hasItems)
        out.append("</").append(content).append(">");
    if (state != stateEmpty)
        out.append("</").append(kRoot).append(">");
}
