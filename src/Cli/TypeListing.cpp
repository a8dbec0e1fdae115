#include "Cli/TypeListing.h"

#include "Base/Json.h"
#include "Cli/Output.h"
#include "Import/MsgBase.h"
#include "Types/TypeGraph.h"
#include "Types/TypeStructure.h"

#include <limits>
#include <numeric>

namespace {

CString member(const char* name, const CString& value)
{
    return CString("\"") + name + "\":" + jsonText(value);
}

CString typeMembers(const TypeStructure& structure, const CString& typeName)
{
    const TypeContent content = structure.contentOf(typeName);
    return member("type", content.typeName) + ",\"repeats\":" + (content.repeats.empty() ? "false" : "true");
}

CString jsonOf(const TypeStructure& structure, const TypePart& part)
{
    if (part.kind == TypePart::constant)
        return "{" + member("name", part.name) + "," + member("description", part.description) + "}";
    return "{" + member("name", part.name) + "," + typeMembers(structure, part.typeName) + "," +
           member("description", part.description) + "}";
}

// What a type is made of: a table's component stands for itself, parts of others are a list.
CString contentOf(const TypeStructure& structure, std::uint32_t type)
{
    const std::vector<TypePart> parts = structure.parts(type);
    if (parts.size() == 1 && parts[0].kind == TypePart::component)
        return ",\"component\":{" + typeMembers(structure, parts[0].typeName) + "}";
    CString list;
    for (const TypePart& part : parts)
        list += (list.empty() ? "\n    " : ",\n    ") + jsonOf(structure, part);
    const bool isEnumeration = structure[type].queryType() == Element::typeEnum;
    return CString(isEnumeration ? ",\"constants\":[" : ",\"fields\":[") + list + "]";
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

void writeList(MsgBase& message, Output& output)
{
    message.beginEnum();
    while (const Element* type = message.enumNext())
        output.write(type->queryPath() + type->queryName() + "\t" + type->queryDescription() + "\n");
}

void writeJsonList(MsgBase& message, Output& output)
{
    const TypeStructure structure(message);
    output.write("[");
    for (std::uint32_t type = 0; type < structure.size(); ++type)
        output.write(CString(type == 0 ? "\n  {" : ",\n  {") + member("name", structure[type].queryName()) + "," +
                     member("folder", structure[type].queryPath()) + "," + member("kind", structure.kindOf(type)) +
                     "," + member("description", structure[type].queryDescription()) + contentOf(structure, type) +
                     "}");
    output.write("]\n");
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
