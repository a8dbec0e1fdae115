#include "Xml/XmlPlace.h"

#include "Base/Utf8.h"

#include <algorithm>
#include <cstring>

XmlPlace placeOfLastTag(std::string_view read, XmlPlace end, bool isWhole)
{
    // memrchr() is much faster than rfind(). A well-formed tag contains no second "<", not even in an attribute value
    // (XML 1.0, section 3.1).
    const auto* const found = static_cast<const char*>(::memrchr(read.data(), '<', read.size()));
    if (!found)
        return end;
    const auto begin = static_cast<std::size_t>(found - read.data());
    const std::string_view tag = read.substr(begin);
    if (tag.size() < end.column) // the usual case: it fits on one line
        return {end.line, end.column - static_cast<std::uint32_t>(countCharacters(tag))};
    const std::uint32_t line = end.line - static_cast<std::uint32_t>(std::ranges::count(tag, '\n'));
    const std::string_view before = read.substr(0, begin);
    const std::size_t lineEnd = before.rfind('\n');
    if (lineEnd == before.npos && !isWhole)
        return {line, 0};
    return {line, static_cast<std::uint32_t>(countCharacters(before.substr(lineEnd + 1))) + 1};
}
