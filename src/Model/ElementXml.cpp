// Writes the document of one type. Texts are passed on in pieces, because joining them would cost an allocation for
// each field.
#include "Model/BrokerType.h"
#include "Model/Element.h"
#include "Resources/StringTable.h"

// Returns the generated description of a name, "%s (Automatically created)", in two pieces, because only the name
// differs.
TextPieces Element::generated(std::string_view name)
{
    static const std::string_view suffix = std::string_view(loadText(IDS_AUTOMATIC)).substr(2);
    return {name, suffix};
}

std::string_view Element::asXML()
{
    static XmlText text; // reused, because an import writes very many types in a row
    BrokerTypeDescription builder(name->text, queryDescriptionPieces(), path->text, text);
    switch (type) {
    case typeEnum:
        builder.addEnum();
        for (const Element* child : children)
            builder.addConstant(child->name->text, child->queryDescriptionPieces());
        break;
    case typeArray:
        if (querySize().empty())
            setSize(CString(sizeInDocument()));
        builder.addArray(querySize(), queryComponentType());
        break;
    case typeRow:
        builder.addRow();
        for (const Element* child : children)
            if (child->isField())
                builder.addField(child->queryFieldName(), child->queryFieldDescription(), child->queryFieldType(*this));
        break;
    case typeTable:
        builder.addTable(queryComponentType());
        break;
    default:
        break;
    }
    return builder.finish();
}

TextPieces Element::queryComponentType() const
{
    return knownType ? TextPieces(knownType->text) : TextPieces(path->text, queryBaseName());
}

TextPieces Element::queryDescriptionPieces() const
{
    return isDescribedByName ? generated(name->text) : TextPieces(queryDescription());
}

TextPieces Element::queryFieldDescription() const
{
    return type == typeTable || isDescribedByName ? generated(queryFieldName()) : TextPieces(queryDescription());
}

// The type of a record or table is named in the folder of the record that holds the field, whatever its own folder is.
TextPieces Element::queryFieldType(const Element& record) const
{
    switch (type) {
    case typeRow:
        return {record.path->text, queryBaseName()};
    case typeTable:
        return {record.path->text, name->text};
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
