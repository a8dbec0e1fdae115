// The document of one type.
#include "Model/BrokerType.h"
#include "Model/Element.h"
#include "Resources/StringTable.h"

namespace {

std::string_view generated(std::string_view name, CString& room)
{
    static const char* const format = loadText(IDS_AUTOMATIC);
    fillText(room, format, name);
    return room;
}

} // namespace

std::string_view Element::asXML()
{
    static XmlText text; // an import asks for very many types in a row: kept for their room
    static CString description, fieldType;
    const auto describe = [](const Element& element) {
        return element.isDescribedByName ? generated(element.name->text, description)
                                         : std::string_view(element.queryDescription());
    };
    BrokerTypeDescription builder(name->text, describe(*this), path->text, text);
    switch (type) {
    case typeEnum:
        builder.addEnum();
        for (const Element* child : children)
            builder.addConstant(child->name->text, describe(*child));
        break;
    case typeArray:
        if (querySize().empty())
            setSize("5");
        builder.addArray(querySize(), queryComponentType());
        break;
    case typeRow:
        builder.addRow();
        prefetch(children);
        for (const Element* child : children)
            if (child->isField())
                builder.addField(child->queryFieldName(), child->queryFieldDescription(description),
                                 child->queryFieldType(*this, fieldType));
        break;
    case typeTable:
        builder.addTable(queryComponentType());
        break;
    default:
        break;
    }
    return builder.finish();
}

CString Element::queryComponentType() const
{
    return knownType ? knownType->text : path->text + queryBaseName();
}

std::string_view Element::queryFieldDescription(CString& room) const
{
    if (type == typeTable || isDescribedByName)
        return generated(queryFieldName(), room);
    return queryDescription();
}

std::string_view Element::queryFieldType(const Element& record, CString& room) const
{
    switch (type) {
    case typeRow:
        return room.assign(record.path->text).append(queryBaseName());
    case typeTable:
        return room.assign(record.path->text).append(name->text);
    case typeString:
        return "String";
    case typeNumber:
        return "Number";
    case typeDate:
        return "Time";
    default:
        return queryKnownType();
    }
}
