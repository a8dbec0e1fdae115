#pragma once

#include "Formats/MsgBase.h"
#include "support/Boxes.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <set>

/// Writes a schema document around `declarations` and answers its path.
inline CString writeSchema(const TempDir& dir, const CString& name, const CString& declarations)
{
    return dir.write(name,
                     "<xsd:schema xmlns:xsd='http://www.w3.org/2001/XMLSchema'>" + declarations + "</xsd:schema>");
}

/// How a field shows in modelOf(): its kind; for one of a named type "=" and that type, short when it is of this
/// folder.
inline CString kindOf(const Element& field)
{
    static const char* const kKinds[] = {"enum", "array", "row", "table", "String", "Number", "Time"};
    if (field.queryType() != Element::typeOther)
        return kKinds[field.queryType()];
    const CString& type = field.queryKnownType();
    return "=" + (type.starts_with(field.queryPath()) ? type.substr(field.queryPath().size()) : type);
}

/// The records of an import with their fields, sorted by name: "Order{number:Number t_line:table} line{sku:String}".
inline CString modelOf(MsgBase& message)
{
    std::multiset<CString> records;
    message.beginEnum();
    while (const Element* type = message.enumNext()) {
        if (type->queryType() != Element::typeRow)
            continue;
        CString fields;
        for (const Element* field : type->queryChildren())
            fields += (fields.empty() ? "" : " ") + field->queryName() + ":" + kindOf(*field);
        records.insert(type->queryName() + "{" + fields + "}");
    }
    CString model;
    for (const CString& record : records)
        model += (model.empty() ? "" : " ") + record;
    return model;
}
