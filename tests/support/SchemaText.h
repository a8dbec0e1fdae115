#pragma once

/// Pieces of a schema as literals: a named type, an element with its own type, and an element with attributes that name
/// a type.
#define RECORD(name, fields) "<xsd:complexType name='" name "'><xsd:all>" fields "</xsd:all></xsd:complexType>"
#define NESTED(name, fields)                                                                                           \
    "<xsd:element name='" name "'><xsd:complexType><xsd:all>" fields "</xsd:all></xsd:complexType></xsd:element>"
#define FIELD(name, ...) "<xsd:element name='" name "' " __VA_ARGS__ "/>"
