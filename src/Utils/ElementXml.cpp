// The document of one type.
#include "Resources/StringTable.h"
#include "Utils/BrokerType.h"
#include "Utils/Element.h"

namespace {

// The texts in hand, kept for their room.
struct Scratch
{
    XmlText text;
    CString description;
    CString type;

    std::string_view generated(std::string_view name)
    {
        static const char* const format = loadText(IDS_AUTOMATIC);
        fillText(description, format, name);
        return description;
    }

    std::string_view fullName(std::string_view path, std::string_view name)
    {
        type.assign(path).append(name);
        return type;
    }
};

} // namespace

void Element::asXML(CString& out)
{
    static thread_local Scratch scratch; // an import asks for very many types in a row
    const auto describe = [](const Element& element) {
        return element.isDescribedByName ? scratch.generated(element.name)
                                         : std::string_view(element.queryDescription());
    };
    BrokerTypeDescription builder(name, describe(*this), *path, scratch.text);
    switch (type) {
    case typeEnum:
        builder.addEnum();
        for (const Element* child : children)
            builder.addConstant(child->name, describe(*child));
        break;
    case typeArray:
        if (querySize().empty())
            setSize("5");
        builder.addArray(querySize(), componentType());
        break;
    case typeRow:
        builder.addRow();
        prefetch(children);
        for (const Element* child : children) {
            if (child->type == typeTable)
                builder.addField(child->queryBaseName(), scratch.generated(child->queryBaseName()),
                                 scratch.fullName(*path, child->name));
            else if (child->type == typeRow)
                builder.addField(child->name, describe(*child), scratch.fullName(*path, child->queryBaseName()));
            else if (child->type != typeEnum && child->type != typeArray)
                builder.addField(child->name, describe(*child), child->fieldType());
        }
        break;
    case typeTable:
        builder.addTable(componentType());
        break;
    default:
        break;
    }
    builder.queryXML(out);
}

CString Element::componentType() const
{
    return knownType.empty() ? *path + queryBaseName() : knownType;
}

std::string_view Element::fieldType() const
{
    switch (type) {
    case typeString:
        return "String";
    case typeNumber:
        return "Number";
    case typeDate:
        return "Time";
    default:
        return knownType;
    }
}
