#include "Xml/XmlText.h"

#include "Xml/XmlEscape.h"

void XmlText::grow(std::size_t more)
{
    // Twice the size, so that appending takes linear time in total.
    const std::size_t newCapacity = (size + more) * 2;
    auto larger = std::make_unique_for_overwrite<char[]>(newCapacity);
    if (size > 0)
        std::memcpy(larger.get(), buffer.get(), size);
    buffer = std::move(larger);
    capacity = newCapacity;
}

void XmlText::appendEscaped(std::string_view value)
{
    CString escaped;
    appendXmlValue(escaped, isXmlText(value) ? value : std::string_view(toXmlText(value)));
    append(std::string_view(escaped));
}
