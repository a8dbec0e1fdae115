#!/usr/bin/env python3
"""Writes a DTD of N declarations to standard output: generate-dtd.py N [--web | --common]

Records form a tree, as in message definitions. Each has text elements of its own, some from a pool that many records
share, records declared after it, an attribute and a comment; about 130 bytes a declaration. With --web every record
refers to records anywhere in the file, so that nearly all of them form one large cycle. With --common half of the
declarations are records of six fields each, drawn at random from the other half, which are text elements.
"""
import random
import sys


def record(i, count, web):
    own = [f"Detail{i:06d}{c}" for c in "AB"]
    shared = [f"Common{random.randrange(400):03d}" for _ in range(3)]
    if web:
        children = [f"Record{random.randrange(count):06d}" for _ in range(3)]
    else:
        children = [f"Record{j:06d}" for j in range(3 * i + 1, 3 * i + 4) if j < count]
    fields = [name + random.choice(["", "", "?", "*", "+"]) for name in own + shared + children]
    model = f"{', '.join(fields[:-2])}, ({' | '.join(fields[-2:])})*"
    yield f"<!-- Record {i}: what the sender knows of it at the time of the message, as agreed. -->\n"
    yield f"<!ELEMENT Record{i:06d} ({model})>\n"
    yield f"<!-- Tells this occurrence of the record from the others of the same message. -->\n"
    yield f"<!ATTLIST Record{i:06d} identifier{i:06d} CDATA #IMPLIED>\n"
    for name in own:
        yield f"<!-- {name} is plain text; the receiver takes it as it is, blanks and all. -->\n"
        yield f"<!ELEMENT {name} (#PCDATA)>\n"


def records_with_common_fields(count):
    for i in range(count):
        fields = [f"Common{j:06d}" + random.choice(["", "?", "*"]) for j in random.sample(range(count), 6)]
        yield f"<!ELEMENT Record{i:06d} ({', '.join(fields)})>\n"
    for i in range(count):
        yield f"<!ELEMENT Common{i:06d} (#PCDATA)>\n"


def main():
    declarations = int(sys.argv[1])
    web = "--web" in sys.argv[2:]
    random.seed(1)
    if "--common" in sys.argv[2:]:
        sys.stdout.writelines(records_with_common_fields(declarations // 2))
        return
    count = declarations // 4
    for i in range(count):
        sys.stdout.writelines(record(i, count, web))


main()
