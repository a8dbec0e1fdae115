#pragma once

#include "Import/MsgBase.h"
#include "support/Boxes.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <numeric>
#include <set>

/// Pieces of a schema as literals: a named type, an element with its own type, and an element with attributes that name
/// a type.
#define RECORD(name, fields) "<xsd:complexType name='" name "'><xsd:all>" fields "</xsd:all></xsd:complexType>"
#define NESTED(name, fields)                                                                                           \
    "<xsd:element name='" name "'><xsd:complexType><xsd:all>" fields "</xsd:all></xsd:complexType></xsd:element>"
#define FIELD(name, ...) "<xsd:element name='" name "' " __VA_ARGS__ "/>"

/// Writes a schema document around `declarations` and returns its path.
inline CString writeSchema(const TempDir& dir, const CString& name, const CString& declarations)
{
    return dir.write(name,
                     "<xsd:schema xmlns:xsd='http://www.w3.org/2001/XMLSchema'>" + declarations + "</xsd:schema>");
}

/// Returns the records of an import with their fields, sorted by name: "Order{number:Number t_line:table}
/// line{sku:String}". A field of a named type shows "=" and that type, with its short name if it is in the same folder.
/// Sorted, so that rows about fields don't depend on the order of types.
inline CString modelOf(MsgBase& message)
{
    static const char* const kKinds[] = {"enum", "array", "row", "table", "String", "Number", "Time", "="};
    std::multiset<CString> records;
    message.beginEnum();
    while (const Element* type = message.enumNext()) {
        CString fields;
        for (const Element* field : type->queryChildren()) {
            const CString known = field->queryType() == Element::typeOther ? field->queryKnownType() : "";
            fields += (fields.empty() ? "" : " ") + field->queryName() + ":" + kKinds[field->queryType()] +
                      known.substr(known.starts_with(field->queryPath()) ? field->queryPath().size() : 0);
        }
        if (type->queryType() == Element::typeRow)
            records.insert(" " + type->queryName() + "{" + fields + "}");
    }
    const CString model = std::accumulate(records.begin(), records.end(), CString());
    return model.substr(!model.empty());
}
