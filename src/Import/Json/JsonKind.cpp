#include "Import/Json/JsonKind.h"

#include "Import/Json/JsonScanner.h"

#include <algorithm>
#include <functional>

// Messages in JSON may have the same keys as schemas, so a key only decides if its value has the kind that the language
// requires. Otherwise a message would be read as a schema and lose most of its fields.
namespace {

// The kind of a document, by its top-level keys or those of its list items.
class Marks
{
public:
    // `value` is that of a string. `kind` is the kind of the value; of a YAML document it isn't known, and `end`.
    void add(std::string_view key, std::string_view value, JsonScanner::Token kind)
    {
        const auto mayBe = [kind](JsonScanner::Token token) { return kind == token || kind == JsonScanner::end; };
        isOpenApi |= isOneOf(key, {"openapi", "asyncapi", "swagger"});
        isAvro |= key == "type" && isAvroType(value);
        isProtocol |= key == "protocol" && !value.empty();
        hasTypes |= (key == "types" && mayBe(JsonScanner::arrayBegin)) ||
                    (key == "messages" && mayBe(JsonScanner::objectBegin));
        // Identifiers and references of schemas are URIs, and contain one of these characters. In a message they may be
        // any words.
        isSchema |= (key == "$schema" && value.find("json-schema.org") != value.npos) ||
                    (key == "type" && isOneOf(value, {"object", "array", "string", "number", "integer", "boolean"})) ||
                    (isOneOf(key, {"$defs", "definitions"}) && mayBe(JsonScanner::objectBegin)) ||
                    (isOneOf(key, {"allOf", "oneOf", "anyOf"}) && mayBe(JsonScanner::arrayBegin)) ||
                    (isOneOf(key, {"$id", "$ref", "$dynamicRef"}) && value.find_first_of("#/.:") != value.npos);
        hasProperties |= isOneOf(key, {"properties", "patternProperties"}) && mayBe(JsonScanner::objectBegin);
        isOther |= key == "type" && !value.empty();
    }

    // Adds a member of the object under `key`. The members of "properties" are schemas: objects or booleans.
    void addInner(std::string_view key, std::string_view name, JsonScanner::Token kind)
    {
        isOther |= key == "properties" && kind != JsonScanner::objectBegin && kind != JsonScanner::boolean;
        hasComponents |= key == "components" && kind == JsonScanner::objectBegin &&
                         isOneOf(name, {"callbacks", "examples", "headers", "links", "parameters", "pathItems",
                                        "requestBodies", "responses", "schemas", "securitySchemes"});
    }

    // The document may go on after the text. If its keys are sorted, "openapi" follows large components.
    void endEarly() { isOpenApi |= hasComponents; }

    std::string_view word() const
    {
        return isOpenApi                                 ? "openapi"
               : isAvro || (isProtocol && hasTypes)      ? "avro"
               : isSchema || (hasProperties && !isOther) ? "jsonschema"
                                                         : "";
    }

private:
    bool isOpenApi = false;
    bool isAvro = false;
    bool isProtocol = false;
    bool hasTypes = false;
    bool isSchema = false;
    bool hasProperties = false;
    bool isOther = false;       // the members of "properties" don't look like schemas
    bool hasComponents = false; // like those of an API
};

// Scans the available part of the document. A fault only ends the scan, because the importer will report it.
std::string_view wordForJson(std::string_view text)
{
    Marks marks;
    try {
        JsonScanner scanner(text, true);
        std::size_t depth = 0;
        CString key, inner;
        bool isList = false;
        for (JsonScanner::Token token; (token = scanner.next()) != JsonScanner::end;) {
            // The keys of a list are those of its items, because a file may be a list of Avro's named types.
            const std::size_t top = isList ? 2 : 1;
            const bool isEnd = token == JsonScanner::objectEnd || token == JsonScanner::arrayEnd;
            const bool isValue = !isEnd && token != JsonScanner::key;
            if (token == JsonScanner::key && depth == top)
                key = scanner.text();
            else if (isValue && depth == top && !key.empty())
                marks.add(key, token == JsonScanner::string ? scanner.text() : std::string_view(), token);
            else if (token == JsonScanner::key && depth == top + 1)
                inner = scanner.text();
            else if (isValue && depth == top + 1)
                marks.addInner(key, inner, token);
            isList |= depth == 0 && token == JsonScanner::arrayBegin;
            depth += token == JsonScanner::objectBegin || token == JsonScanner::arrayBegin ? 1 : 0;
            depth -= isEnd ? 1 : 0;
        }
    } catch (const JsonFault&) {
        marks.endEarly();
    }
    return marks.word();
}

// Lines without indentation have the top-level keys.
std::string_view wordForYaml(std::string_view text)
{
    Marks marks;
    std::string_view key;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t colon = line.find(':');
        if (colon == line.npos || line.starts_with('#'))
            continue;
        const std::string_view name = trimmed(trimmed(line.substr(0, colon)), "\"'");
        if (line.find_first_of(" \t") == 0) {
            marks.addInner(key, name, JsonScanner::objectBegin);
            continue;
        }
        key = name;
        marks.add(key, trimmed(trimmed(line.substr(colon + 1)), "\"'"), JsonScanner::end);
    }
    marks.endEarly();
    return marks.word();
}

// Returns a flow mapping as wordForYaml() reads one: the members on lines of their own, those of inner mappings
// indented, deeper ones left out. Quotes are not taken into account, so a bracket in a text can hide the members after
// it.
CString linesOf(std::string_view flow)
{
    CString lines;
    std::size_t depth = 0;
    for (const char c : flow) {
        const bool isBegin = c == '{' || c == '[', isEnd = c == '}' || c == ']';
        depth += isBegin ? 1 : 0;
        depth -= isEnd && depth > 0 ? 1 : 0;
        if (depth > 2)
            continue;
        if (isBegin || (c == ',' && depth > 0))
            lines += depth == 2 ? "\n " : "\n";
        else if (!isEnd && !(kWhitespace.find(c) != kWhitespace.npos && lines.ends_with('\n')))
            lines += c == '\n' ? ' ' : c;
    }
    return lines;
}

} // namespace

std::string_view importerOfJson(std::string_view start)
{
    const std::string_view text = trimmed(start);
    const bool isBraced = text.starts_with('{') || text.starts_with('[');
    const std::string_view word =
        beginsLikeJson(text) ? wordForJson(start) : wordForYaml(isBraced ? linesOf(text) : start);
    return isBraced && word.empty() ? "json" : word;
}

bool isAvroType(std::string_view type)
{
    return isOneOf(type, {"record", "error", "enum", "fixed"});
}

SchemaLanguage languageOf(std::string_view format)
{
    if (format.find("avro") != format.npos)
        return SchemaLanguage::avro;
    // There is no registered name: application/xml, application/xsd+xml and others are in use.
    if (format.find("xml") != format.npos || format.find("xsd") != format.npos)
        return SchemaLanguage::xmlSchema;
    for (const char* const part : {"asyncapi", "schema+", "openapi"})
        if (format.find(part) != format.npos)
            return SchemaLanguage::jsonSchema;
    return format.empty() ? SchemaLanguage::jsonSchema : SchemaLanguage::foreign;
}
