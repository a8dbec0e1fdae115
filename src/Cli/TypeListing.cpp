#include "Cli/TypeListing.h"

#include "Base/Json.h"
#include "Base/Utf8.h"
#include "Cli/Output.h"
#include "Import/MsgBase.h"
#include "Types/IndentedDocument.h"
#include "Types/TypeGraph.h"
#include "Types/TypeStructure.h"

#include <algorithm>
#include <limits>

namespace {

// Appends a member of an object: a comma unless it is the first one, `"name":` and the value.
void addMember(CString& out, std::string_view name, std::string_view value)
{
    out.append(out.ends_with('{') ? "\"" : ",\"").append(name).append("\":");
    appendJson(out, value);
}

// Appends a part's type as the document names it, and the type that its tables and arrays hold.
void addType(CString& out, const TypeStructure& structure, const TypePart& part)
{
    const TypeContent content = structure.contentOf(part);
    addMember(out, "type", content.typeName);
    out.append(content.repeats.empty() ? ",\"repeats\":false" : ",\"repeats\":true");
    addMember(out, "declared", part.typeName);
}

// Appends the members of a field or a constant.
void addPart(CString& out, const TypeStructure& structure, const TypePart& part)
{
    CString room;
    addMember(out, "name", part.name);
    if (part.kind != TypePart::constant)
        addType(out, structure, part);
    addMember(out, "description", part.description().joined(room));
    out += '}';
}

// Appends the component of a table or array, or the list of parts of another type. An array also has a size; it is "5"
// if its source names none, as in the document.
void addContent(CString& out, const TypeStructure& structure, std::uint32_t type)
{
    const Element& element = structure[type];
    const Element::ElementTypes kind = element.queryType();
    const std::span<const TypePart> parts = structure.parts(type);
    if (kind == Element::typeTable || kind == Element::typeArray) {
        if (kind == Element::typeArray)
            addMember(out, "size", element.sizeInDocument());
        // A table or array has exactly one part.
        out += ",\"component\":{";
        addType(out, structure, parts.front());
        out += '}';
        return;
    }
    out += kind == Element::typeEnum ? ",\"constants\":[" : ",\"fields\":[";
    for (const TypePart& part : parts) {
        out += out.ends_with('[') ? "\n    {" : ",\n    {";
        addPart(out, structure, part);
    }
    out += ']';
}

CString nameOf(const Element& type)
{
    return shownText(type.queryPath() + type.queryName());
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

// Walks the types twice if aligned: the width of the names has to be known before the first line.
void writeList(MsgBase& message, bool isAligned, Output& output)
{
    constexpr std::size_t maxColumn = 60;
    std::size_t column = 0;
    message.beginEnum();
    // A few long names don't move the column of all others.
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

// Written type by type, so the list is never whole in memory.
void writeJsonList(MsgBase& message, Output& output)
{
    const TypeStructure structure(message);
    const CString main = message.queryMainTypeName();
    CString out = "{\"version\":1,\"main\":" + (main.empty() ? "null" : jsonText(main)) + ",\"types\":[";
    CString room;
    for (std::uint32_t type = 0; type < structure.size(); ++type) {
        out += out.ends_with('[') ? "\n  {" : ",\n  {";
        addMember(out, "name", structure[type].queryName());
        addMember(out, "folder", structure[type].queryPath());
        addMember(out, "kind", structure.kindOf(type));
        addMember(out, "description", structure[type].queryDescriptionPieces().joined(room));
        addContent(out, structure, type);
        out += '}';
        output.write(out);
        out.clear();
    }
    output.write(out + "]}\n");
}

void writeGraph(MsgBase& message, Output& output)
{
    const TypeStructure structure(message);
    std::vector<std::uint32_t> types; // tables and arrays become arrows
    for (std::uint32_t type = 0; type < structure.size(); ++type)
        if (const auto kind = structure[type].queryType(); kind == Element::typeRow || kind == Element::typeEnum)
            types.push_back(type);
    output.write(TypeGraph(structure, types, std::numeric_limits<std::size_t>::max()).toDot());
}

void writeType(Element& type, bool isIndented, Output& output)
{
    CString document;
    type.asXML(document);
    output.write(isIndented ? indentedDocument(document) + "\n" : document);
}
