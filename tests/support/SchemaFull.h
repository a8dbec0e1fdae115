#pragma once

#include "Import/Schema/Full/SchemaFullMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

/// Pieces of a schema as literals, without a prefix for the schema language.
#define ROOT(content) "<element name='r'><complexType>" content "</complexType></element>"
#define SEQUENCE(content) "<sequence>" content "</sequence>"
#define TYPE(name, content) "<complexType name='" name "'>" content "</complexType>"
#define SIMPLE(name, content) "<simpleType name='" name "'>" content "</simpleType>"

/// Returns the main document: a schema with the target namespace t and without a prefix for the schema language. A
/// content that begins with its own XML declaration is the whole document.
inline CString documentOf(const CString& content)
{
    if (content.starts_with("<?xml"))
        return content;
    return "<schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
           "elementFormDefault='qualified'>" +
           content + "</schema>";
}

/// The fixture of tests of the full reading of schemas.
class SchemaFull : public Importing<SchemaFullMessage>
{
protected:
    /// Imports documentOf(schema) as x.xsd, which must succeed, and returns its types, see fullTypesOf(). Other
    /// documents of the schema lie in the same folder.
    CString typesOfSchema(const CString& schema)
    {
        EXPECT_EQ(message.parseFile(folder.write("x.xsd", documentOf(schema)), "\\b\\"), 1);
        return fullTypesOf(message);
    }
};
