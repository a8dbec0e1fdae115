#include "Platform/Xml/XmlText.h"

#include "Platform/Xml/XmlEscape.h"

void XmlText::appendValue(std::string_view value)
{
    CString escaped;
    appendXmlValue(escaped, isXmlText(value) ? value : std::string_view(toXmlText(value)));
    append(std::string_view(escaped));
}
