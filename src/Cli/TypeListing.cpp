#include "Cli/TypeListing.h"

#include "Base/Json.h"
#include "Cli/Output.h"
#include "Import/MsgBase.h"
#include "Types/TypeGraph.h"
#include "Types/TypeStructure.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

CString member(const char* name, const CString& value)
{
    return CString("\"") + name + "\":" + jsonText(value);
}

// The type as its document names it, and what that comes to behind tables and arrays.
CString typeMembers(const TypeStructure& structure, const CString& typeName)
{
    const TypeContent content = structure.contentOf(typeName);
    return member("type", content.typeName) + ",\"repeats\":" + (content.repeats.empty() ? "false" : "true") + "," +
           member("declared", typeName);
}

CString jsonOf(const TypeStructure& structure, const TypePart& part)
{
    if (part.kind == TypePart::constant)
        return "{" + member("name", part.name) + "," + member("description", part.description) + "}";
    return "{" + member("name", part.name) + "," + typeMembers(structure, part.typeName) + "," +
           member("description", part.description) + "}";
}

// An array has a size, "5" if its source names none; a table has none.
CString sizeOf(const Element& type)
{
    if (type.queryType() != Element::typeArray)
        return {};
    return "," + member("size", type.querySize().empty() ? "5" : type.querySize());
}

// What a type is made of: a table's component stands for itself, parts of others are a list.
CString contentOf(const TypeStructure& structure, std::uint32_t type)
{
    const std::vector<TypePart> parts = structure.parts(type);
    if (parts.size() == 1 && parts[0].kind == TypePart::component)
        return sizeOf(structure[type]) + ",\"component\":{" + typeMembers(structure, parts[0].typeName) + "}";
    CString list;
    for (const TypePart& part : parts)
        list += (list.empty() ? "\n    " : ",\n    ") + jsonOf(structure, part);
    const bool isEnumeration = structure[type].queryType() == Element::typeEnum;
    return CString(isEnumeration ? ",\"constants\":[" : ",\"fields\":[") + list + "]";
}

CString nameOf(const Element& type)
{
    return shownText(type.queryPath() + type.queryName());
}

std::size_t countCharacters(std::string_view text)
{
    const auto isStart = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    return static_cast<std::size_t>(std::ranges::count_if(text, isStart));
}

// The document has no text, and no '<' in an attribute, so that "><" only stands between two tags.
CString indented(std::string_view document)
{
    CString out;
    std::size_t depth = 0;
    while (!document.empty()) {
        const std::string_view tag = document.substr(0, document.find("><") + 1);
        const std::string_view line = tag.empty() ? document : tag;
        const bool isEnd = line.starts_with("</");
        depth -= isEnd;
        out += CString(2 * depth, ' ').append(line) + "\n";
        depth += !isEnd && !line.ends_with("/>");
        document.remove_prefix(line.size());
    }
    return out;
}

} // namespace

bool holdsTypes(MsgBase& message)
{
    message.beginEnum();
    while (const Element* type = message.enumNext())
        if (!type->queryName().empty())
            return true;
    return false;
}

void writeList(MsgBase& message, bool isAligned, Output& output)
{
    constexpr std::size_t maxColumn = 60;
    std::size_t column = 0;
    message.beginEnum();
    while (const Element* type = isAligned ? message.enumNext() : nullptr)
        column = std::max(column, std::min(countCharacters(nameOf(*type)), maxColumn));
    message.beginEnum();
    while (const Element* type = message.enumNext()) {
        const CString name = nameOf(*type);
        const std::size_t width = isAligned ? countCharacters(name) : 0;
        output.write(name + (isAligned ? CString(width < column ? column - width + 2 : 2, ' ') : CString("\t")) +
                     shownText(type->queryDescription()) + "\n");
    }
}

void writeJsonList(MsgBase& message, Output& output)
{
    const TypeStructure structure(message);
    const CString main = message.queryMainTypeName();
    output.write("{\"version\":1,\"main\":" + (main.empty() ? "null" : jsonText(main)) + ",\"types\":[");
    for (std::uint32_t type = 0; type < structure.size(); ++type)
        output.write(CString(type == 0 ? "\n  {" : ",\n  {") + member("name", structure[type].queryName()) + "," +
                     member("folder", structure[type].queryPath()) + "," + member("kind", structure.kindOf(type)) +
                     "," + member("description", structure[type].queryDescription()) + contentOf(structure, type) +
                     "}");
    output.write("]}\n");
}

void writeGraph(MsgBase& message, Output& output)
{
    const TypeStructure structure(message);
    std::vector<std::uint32_t> types; // tables and arrays are the arrows' business
    for (std::uint32_t type = 0; type < structure.size(); ++type)
        if (const auto kind = structure[type].queryType(); kind == Element::typeRow || kind == Element::typeEnum)
            types.push_back(type);
    output.write(TypeGraph(structure, types, std::numeric_limits<std::size_t>::max()).toDot());
}

void writeType(Element& type, bool isIndented, Output& output)
{
    CString document;
    type.asXML(document);
    output.write(isIndented ? indented(document) : document);
}
