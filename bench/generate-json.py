#!/usr/bin/env python3
"""Writes JSON to standard output: generate-json.py lines MB | schema COUNT | api COUNT

lines: orders, one in each line, about MB megabytes. schema: a JSON Schema of COUNT definitions of ten properties, of
which three refer to other definitions. api: the same definitions as an OpenAPI document, with a request for each.
"""
import json
import random
import sys


def order(i):
    return {
        "id": i, "state": ["created", "paid", "shipped"][i % 3], "at": f"2026-11-{1 + i % 28:02}T{i % 24:02}:00:00Z",
        "buyer": {"name": f"Customer {i}", "mail": f"c{i}@example.org", "regular": i % 4 == 0},
        "lines": [{"sku": f"SKU-{i * 7 + k}", "quantity": k + 1, "price": i % 1000 + k / 4} for k in range(1 + i % 5)],
        "note": None if i % 3 else "Deliver \"before\" noon, see caf\u00e9\\2"}


def lines(megabytes):
    size = i = 0
    while size < megabytes * 1_000_000:
        i += 1
        line = json.dumps(order(i), separators=(",", ":")) + "\n"
        size += len(line)
        yield line


def definitions(count, place):
    def reference():
        return {"$ref": f"{place}Type{random.randrange(count)}"}

    def definition(i):
        text = {"type": "string", "description": f"A text of type {i}"}
        return {"type": "object", "required": ["number"], "properties": {
            "number": {"type": "integer"}, "name": text, "city": text, "street": text, "rate": {"type": "number"},
            "since": {"type": "string", "format": "date"}, "state": {"enum": ["open", "closed"]},
            "next": reference(), "line": {"type": "array", "items": reference()},
            "choice": {"anyOf": [reference(), {"type": "null"}]}}}
    return {f"Type{i}": definition(i) for i in range(count)}


def schema(count):
    place = "#/$defs/"
    yield json.dumps({"$schema": "https://json-schema.org/draft/2020-12/schema", "title": "Main", "type": "object",
                      "properties": {"first": {"$ref": place + "Type0"}}, "$defs": definitions(count, place)}, indent=2)


def api(count):
    place = "#/components/schemas/"

    def body(i):
        return {"content": {"application/json": {"schema": {"$ref": f"{place}Type{i}"}}}}
    yield json.dumps({"openapi": "3.1.0", "info": {"title": "Main", "version": "1"},
                      "paths": {f"/type{i}": {"post": {"operationId": f"send{i}", "requestBody": body(i),
                                                       "responses": {"204": {"description": "done"}}}}
                                for i in range(count)},
                      "components": {"schemas": definitions(count, place)}}, indent=2)


random.seed(1)
sys.stdout.writelines({"lines": lines, "schema": schema, "api": api}[sys.argv[1]](int(sys.argv[2])))
