// The document of one type.
#include "Resources/StringTable.h"
#include "Utils/BrokerType.h"
#include "Utils/Element.h"

void Element::asXML(CString& out)
{
    BrokerTypeDescription builder(name, description, path);
    switch (type) {
    case typeEnum:
        builder.addEnum();
        for (const Element* child : children)
            builder.addConstant(child->name, child->description);
        break;
    case typeArray:
        if (size.empty())
            size = "5";
        builder.addArray(size, componentType());
        break;
    case typeRow:
        builder.addRow();
        for (const Element* child : children)
            addFieldTo(builder, *child);
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
    return knownType.empty() ? path + baseName : knownType;
}

void Element::addFieldTo(BrokerTypeDescription& builder, const Element& child) const
{
    switch (child.type) {
    case typeRow:
        builder.addField(child.name, child.description, path + child.baseName);
        break;
    case typeTable:
        builder.addField(child.baseName, fillText(loadText(IDS_AUTOMATIC), child.baseName), path + child.name);
        break;
    case typeString:
        builder.addField(child.name, child.description, "String");
        break;
    case typeNumber:
        builder.addField(child.name, child.description, "Number");
        break;
    case typeDate:
        builder.addField(child.name, child.description, "Time");
        break;
    case typeOther:
        builder.addField(child.name, child.description, child.knownType);
        break;
    case typeEnum:
    case typeArray:
        break; // no field
    }
}
