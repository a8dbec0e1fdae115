#include "Model/BrokerType.h"

// The last tag stays without its end, because only the next addition decides between ">" and "/>". So an empty element
// is one tag, and queryXML() can complete a copy while the builder goes on.

// Begins the content element. Returns 0 if there is one already. `tag` is a literal, so append() knows its length.
template <std::size_t N>
int BrokerTypeDescription::openContent(const char (&tag)[N], State opened)
{
    if (state != stateEmpty)
        return 0;
    state = opened;
    content = tag;
    text.append("><");
    text.append(tag);
    return 1;
}

// Begins an element inside of the content element, and ends the open tag: that of the element before it, else that of
// the content element.
template <std::size_t N>
void BrokerTypeDescription::openItem(const char (&tag)[N], std::string_view name, TextPieces description)
{
    if (hasItems)
        text.append("/>");
    else
        text.append(">");
    hasItems = true;
    text.append(tag);
    text.attribute(" NAME=\"", name);
    if (!description.empty())
        text.attribute(" DESCRIPTION=\"", description);
}

BrokerTypeDescription::BrokerTypeDescription(std::string_view name, TextPieces description, std::string_view path,
                                             XmlText& text) :
    text(text)
{
    text.clear();
    text.append("<BROKERTYPEDESCRIPTION");
    if (path.ends_with('\\'))
        text.attribute(" NAME=\"", {path, name});
    else
        text.attribute(" NAME=\"", {CString(path) + '\\', name});
    if (!description.empty())
        text.attribute(" DESCRIPTION=\"", description);
}

BrokerTypeDescription::BrokerTypeDescription(std::string_view name, std::string_view description,
                                             std::string_view path) :
    BrokerTypeDescription(name, description, path, ownText)
{}

int BrokerTypeDescription::addRow()
{
    return openContent("ROW", stateRow);
}

int BrokerTypeDescription::addField(std::string_view name, TextPieces description, TextPieces type)
{
    if (state != stateRow)
        return 0;
    openItem("<FIELD", name, description);
    text.attribute(" TYPE=\"", type);
    return 1;
}

int BrokerTypeDescription::addEnum()
{
    return openContent("ENUM", stateEnum);
}

int BrokerTypeDescription::addConstant(std::string_view name, TextPieces description)
{
    if (state != stateEnum)
        return 0;
    openItem("<CONSTANT", name, description);
    return 1;
}

int BrokerTypeDescription::addArray(std::string_view size, TextPieces componentType)
{
    if (!openContent("ARRAY", stateArray))
        return 0;
    text.attribute(" SIZE=\"", size);
    addComponent(componentType);
    return 1;
}

int BrokerTypeDescription::addTable(TextPieces componentType)
{
    if (!openContent("TABLE", stateTable))
        return 0;
    addComponent(componentType);
    return 1;
}

void BrokerTypeDescription::queryXML(CString& out) const
{
    out.assign(text.view());
    appendEnd(out);
}

std::string_view BrokerTypeDescription::finish()
{
    appendEnd(text);
    state = stateFinished;
    return text.view();
}

// Appends all end tags to `out`, which holds the document so far.
template <class Text>
void BrokerTypeDescription::appendEnd(Text& out) const
{
    if (state == stateFinished)
        return;
    out.append("/>");
    if (hasItems) {
        out.append("</");
        out.append(content);
        out.append(">");
    }
    if (state != stateEmpty)
        out.append("</BROKERTYPEDESCRIPTION>");
}

void BrokerTypeDescription::addComponent(TextPieces componentType)
{
    text.append("><COMPONENT");
    hasItems = true;
    text.attribute(" TYPE=\"", componentType);
}
