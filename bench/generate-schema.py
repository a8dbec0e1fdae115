#!/usr/bin/env python3
"""Writes a schema of many complex types into a folder: generate-schema.py FOLDER TYPES [FILES [distinct|web]]

main.xsd declares the main element; with FILES other than 0 the types are spread over that many documents that it
includes. Each type has ten fields: eight elements, of which one refers to the next type and one repeats, and two
attributes. Types have the names of their fields in common, as vocabularies do; with `distinct` no name comes twice. With
`web` every second element refers to a type anywhere in the schema, so that nearly all types form one large cycle.
"""
import os
import random
import sys

FIELDS = ["number", "name", "street", "city", "date", "amount"]
TYPES = ["xs:string", "xs:decimal", "xs:date"]
DISTINCT = "distinct" in sys.argv[3:]
WEB = "web" in sys.argv[3:]


def complex_type(number, count):
    own = number if DISTINCT else ""
    lines = [f'  <xs:complexType name="Type{number}">', "    <xs:sequence>"]
    for at, field in enumerate(FIELDS):
        of = f"Type{random.randrange(count)}" if WEB and at % 2 else TYPES[at % 3]
        lines.append(f'      <xs:element name="{field}{own}" type="{of}" minOccurs="0"/>')
    following = (number + 1) % count
    lines.append(f'      <xs:element name="next{own}" type="Type{following}"/>')
    lines.append(f'      <xs:element name="line{own}" type="xs:string" maxOccurs="unbounded"/>')
    lines.append("    </xs:sequence>")
    lines.append(f'    <xs:attribute name="id{own}" type="xs:string" use="required"/>')
    lines.append(f'    <xs:attribute name="version{own}" type="xs:decimal"/>')
    lines.append("  </xs:complexType>")
    return "\n".join(lines) + "\n"


def write_schema(path, parts):
    with open(path, "w", encoding="utf-8") as out:
        out.write('<?xml version="1.0" encoding="UTF-8"?>\n<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema">\n')
        out.writelines(parts)
        out.write("</xs:schema>\n")


def main():
    random.seed(1)
    folder, count = sys.argv[1], int(sys.argv[2])
    files = int(sys.argv[3]) if len(sys.argv) > 3 else 0
    os.makedirs(folder, exist_ok=True)
    root = ['  <xs:element name="Main">\n    <xs:complexType>\n      <xs:sequence>\n'
            '        <xs:element name="first" type="Type0"/>\n'
            "      </xs:sequence>\n    </xs:complexType>\n  </xs:element>\n"]
    if files == 0:
        write_schema(f"{folder}/main.xsd", root + [complex_type(n, count) for n in range(count)])
        return
    write_schema(f"{folder}/main.xsd",
                 [f'  <xs:include schemaLocation="part{part}.xsd"/>\n' for part in range(files)] + root)
    for part in range(files):
        write_schema(f"{folder}/part{part}.xsd",
                     [complex_type(n, count) for n in range(part * count // files, (part + 1) * count // files)])


main()
