#include "Import/Json/JsonKind.h"

#include "Import/Json/JsonScanner.h"

#include <algorithm>
#include <functional>

namespace {

// The kind of a document, by the keys at its top or at the top of its first list item.
class Marks
{
public:
    void add(std::string_view key, std::string_view value)
    {
        isOpenApi |= isOneOf(key, {"openapi", "asyncapi", "swagger"});
        isAvro |= (key == "type" && isOneOf(value, {"record", "error", "enum", "fixed"})) || key == "protocol";
        isSchema |= (key == "$schema" && value.find("json-schema.org") != value.npos) ||
                    (key == "type" && isOneOf(value, {"object", "array", "string", "number", "integer", "boolean"})) ||
                    isOneOf(key, {"$defs", "definitions", "allOf", "oneOf", "anyOf", "$ref", "$dynamicRef"});
        looksLikeSchema |= isOneOf(key, {"properties", "$id", "patternProperties"});
    }

    std::string_view word() const
    {
        return isOpenApi ? "openapi" : isAvro ? "avro" : isSchema || looksLikeSchema ? "jsonschema" : "";
    }

private:
    bool isOpenApi = false;
    bool isAvro = false;
    bool isSchema = false;
    bool looksLikeSchema = false;
};

// Scans what is there of the document. A fault only ends the scan, because the importer will report it.
std::string_view wordForJson(std::string_view text)
{
    Marks marks;
    try {
        JsonScanner scanner(text);
        std::size_t depth = 0;
        CString key;
        bool isList = false;
        for (JsonScanner::Token token; (token = scanner.next()) != JsonScanner::end;) {
            const std::size_t top = isList ? 2 : 1;
            if (token == JsonScanner::key && depth == top)
                key = scanner.text();
            else if (depth == top && !key.empty())
                marks.add(key, token == JsonScanner::string ? scanner.text() : std::string_view());
            isList |= depth == 0 && token == JsonScanner::arrayBegin;
            depth += token == JsonScanner::objectBegin || token == JsonScanner::arrayBegin ? 1 : 0;
            depth -= token == JsonScanner::objectEnd || token == JsonScanner::arrayEnd ? 1 : 0;
        }
    } catch (const JsonFault&) {
    }
    return marks.word().empty() ? "json" : marks.word();
}

// Only lines without indentation count.
std::string_view wordForYaml(std::string_view text)
{
    Marks marks;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (const std::size_t colon = line.find(':'); colon != line.npos && line.find_first_of(" \t#") != 0)
            marks.add(trimmed(line.substr(0, colon), "\"'"), trimmed(trimmed(line.substr(colon + 1)), "\"'"));
    }
    return marks.word();
}

} // namespace

std::string_view importerOfJson(std::string_view start)
{
    const std::string_view text = trimmed(start);
    return text.starts_with('{') || text.starts_with('[') ? wordForJson(start) : wordForYaml(start);
}
