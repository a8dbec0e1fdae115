// Reads JSON and YAML documents into a tree.
#include "Import/Json/JsonScanner.h"
#include "Import/Json/JsonTree.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <new>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <yaml.h>

namespace {

using Index = JsonNode::Index;

constexpr std::size_t kMaxNodes = 8'000'000; // of all documents of an import
constexpr std::size_t kFewMembers = 16;      // of an object; more are found by hash
constexpr std::size_t kFreeMerged = 100'000; // members that merges of YAML may visit in any document
constexpr std::size_t kMaxMerged = 20;       // for each value in addition, so that the work is linear in the text

// Adds the values of one document to a tree, as they are read. Of duplicate keys the last one stays, and the others are
// reported. Used for both languages, so that they differ in their syntax only.
class JsonBuilder
{
public:
    JsonBuilder(JsonTree& tree, const SourceTypes& types, SourceReport& report, std::uint32_t document) :
        tree(tree), types(types), report(report), document(document)
    {}

    // Sets the key of the next value. With `isMerge` its members are added to the open object at its end, instead of
    // itself, except for keys that the object has; it is a mapping or a list of mappings
    // (https://yaml.org/type/merge.html).
    void key(std::string_view text, bool isMerge = false)
    {
        nextKey = tree.names.intern(text);
        isNextMerged = isMerge;
    }

    // Adds a value and returns it. An array or object stays open until end().
    Index add(JsonNode::Kind kind, std::string_view text, std::uint32_t line, std::uint32_t column)
    {
        ++values;
        if (tree.size() > kMaxNodes)
            types.refuse(std::to_string(kMaxNodes) + " values");
        const Index made = tree.add({.kind = kind,
                                     .parent = open.empty() ? 0 : open.back().node,
                                     .key = std::exchange(nextKey, std::nullopt).value_or(0),
                                     .text = text.empty() ? 0 : tree.names.intern(text),
                                     .place = {document, line, column}});
        if (open.empty()) {
            first = first == 0 ? made : first;
        } else if (Level& level = open.back(); !std::exchange(isNextMerged, false)) {
            (level.last == 0 ? tree[level.node].firstChild : tree[level.last].next) = made;
            level.last = made;
        } else if (const Index other = std::exchange(level.merged, made); other != 0) {
            report.add(SourceReport::keyTwice, tree[other].place, tree.key(other));
        }
        if (kind == JsonNode::object || kind == JsonNode::array)
            open.push_back({made});
        return made;
    }

    // Ends the open array or object. Mappings are merged here, not at their key, because the object's own keys take
    // precedence, even those after it.
    void end()
    {
        if (const Index source = tree.target(open.back().merged); tree.is(source, JsonNode::array))
            for (const Index at : tree.childrenOf(source))
                merge(tree.target(at));
        else if (source != 0)
            merge(source);
        const Level level = open.back();
        open.pop_back();
        if (tree.is(level.node, JsonNode::object) && level.last != tree[level.node].firstChild)
            dropDuplicates(level.node);
    }

    // Reports a text in which a character was replaced.
    void noteAdjusted(std::string_view text, std::uint32_t line, std::uint32_t column)
    {
        report.add(SourceReport::nameAdjusted, {document, line, column}, text);
    }

    // Returns whether a node is an array or object that is still open.
    bool isOpen(Index node) const { return std::ranges::find(open, node, &Level::node) != open.end(); }

    // Returns whether an object is open that the next key belongs to.
    bool awaitsKey() const { return !open.empty() && tree.is(open.back().node, JsonNode::object) && !nextKey; }

    // Returns how many arrays and objects are open.
    std::size_t depth() const { return open.size(); }

    // Returns the root of the document; 0 if there is none.
    Index root() const { return first; }

private:
    struct Level
    {
        Index node;
        Index last = 0;
        Index merged = 0; // the value of the last merge key
    };

    // Adds aliases of the members of a merged mapping, except for keys that the open object has.
    void merge(Index source)
    {
        if (!tree.is(source, JsonNode::object))
            return report.add(SourceReport::invalidValue, tree[source].place, "<<");
        Level& level = open.back();
        // The keys of the object so far, its own and those of earlier merges.
        std::unordered_set<NameTable::Id> met;
        countMerged(); // a mapping without members has a cost, too
        for (const Index at : tree.childrenOf(level.node)) {
            countMerged();
            met.insert(tree[at].key);
        }
        for (const Index at : tree.childrenOf(source)) {
            countMerged();
            if (met.insert(tree[at].key).second) {
                nextKey = tree[at].key;
                tree[add(JsonNode::alias, {}, tree[at].place.line, tree[at].place.column)].firstChild = tree.target(at);
                --values;
            }
        }
    }

    // Bounds the work of merges: a chain of mappings, each of which merges the one before, visits the square of its
    // length.
    void countMerged()
    {
        if (++merged > kFreeMerged + kMaxMerged * values)
            types.refuse(std::to_string(kFreeMerged) + " merged members and " + std::to_string(kMaxMerged) +
                         " more for each value of the document");
    }

    // Keeps the last of the members with one key, as most parsers do (RFC 8259, 4).
    void dropDuplicates(Index object)
    {
        std::vector<Index> all;
        for (const Index at : tree.childrenOf(object))
            all.push_back(at);
        // Stamps are objects, so the table is never cleared. The walk goes backwards, because the last member stays.
        metIn.resize(tree.names.size());
        Index next = 0;
        std::size_t kept = 0;
        for (auto at = all.rbegin(); at != all.rend(); ++at) {
            if (std::exchange(metIn[tree[*at].key], object) == object) {
                report.add(SourceReport::keyTwice, tree[*at].place, tree.key(*at));
                continue;
            }
            tree[*at].next = next;
            next = *at;
            ++kept;
        }
        tree[object].firstChild = next;
        if (kept > kFewMembers)
            tree.index(object);
    }

    JsonTree& tree;
    const SourceTypes& types;
    SourceReport& report;
    const std::uint32_t document;
    std::vector<Level> open;
    std::optional<NameTable::Id> nextKey;
    bool isNextMerged = false;
    Index first = 0;
    std::vector<Index> metIn; // by key: the last object in which dropDuplicates() met it
    std::size_t values = 0;   // added by the reader
    std::size_t merged = 0;   // members visited by merges, over the whole document
};

Index readJson(std::string_view text, JsonBuilder& builder, bool withComments)
{
    using enum JsonNode::Kind;
    constexpr JsonNode::Kind kinds[] = {none, object, none,   array,   none,
                                        none, string, number, boolean, null}; // by token
    JsonScanner scanner(text, withComments);
    for (JsonScanner::Token token; (token = scanner.next()) != JsonScanner::end;) {
        const JsonNode::Kind kind = kinds[token];
        if ((token == JsonScanner::key || kind == string) && scanner.hasLoneSurrogate())
            builder.noteAdjusted(scanner.text(), scanner.line(), scanner.column());
        if (token == JsonScanner::key)
            builder.key(scanner.text());
        else if (kind == none)
            builder.end();
        else
            builder.add(kind, kind >= boolean && kind <= string ? scanner.text() : "", scanner.line(),
                        scanner.column());
    }
    return builder.root();
}

// Returns the kind of a plain scalar in YAML's core schema (YAML 1.2.2, 10.3.2).
JsonNode::Kind kindOfPlain(std::string_view text)
{
    if (isOneOf(text, {"", "~", "null", "Null", "NULL"}))
        return JsonNode::null;
    if (isOneOf(text, {"true", "True", "TRUE", "false", "False", "FALSE"}))
        return JsonNode::boolean;
    if (text.front() == '-' || text.front() == '+')
        text.remove_prefix(1);
    if (isOneOf(text, {".inf", ".Inf", ".INF", ".nan", ".NaN", ".NAN"}))
        return JsonNode::number;
    const bool isPrefixed = text.starts_with("0x") || text.starts_with("0o");
    if (isPrefixed)
        return text.size() > 2 && text.find_first_not_of("0123456789abcdefABCDEF", 2) == text.npos ? JsonNode::number
                                                                                                   : JsonNode::string;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    // It takes "nan" and a second sign, too. A number out of its range is one all the same.
    const bool isNumber = error != std::errc::invalid_argument && end == text.data() + text.size() &&
                          (text.front() == '.' || (text.front() >= '0' && text.front() <= '9'));
    return isNumber ? JsonNode::number : JsonNode::string;
}

// Reads the only document of a YAML stream. An alias becomes a node that refers to its anchor's node, so a document of
// nested aliases ("billion laughs") doesn't grow. libyaml is a pull parser, so nesting takes no stack; yaml-cpp, which
// recurses, stops at 500 levels.
class YamlReader
{
public:
    YamlReader(std::string_view text, JsonBuilder& builder, JsonTree& tree) : text(text), builder(builder), tree(tree)
    {
        if (!yaml_parser_initialize(&parser))
            throw std::bad_alloc();
        yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()), text.size());
    }
    ~YamlReader() { yaml_parser_delete(&parser); }
    YamlReader(const YamlReader&) = delete;
    YamlReader& operator=(const YamlReader&) = delete;

    // Reads one document, like JSON; take() refuses a second one.
    Index read()
    {
        for (bool isAtEnd = false; !isAtEnd;) {
            yaml_event_t event;
            if (!yaml_parser_parse(&parser, &event))
                failToParse();
            const std::unique_ptr<yaml_event_t, void (*)(yaml_event_t*)> owner(&event, yaml_event_delete);
            isAtEnd = event.type == YAML_STREAM_END_EVENT;
            take(event);
        }
        return builder.root();
    }

private:
    [[noreturn]] void fail(const CString& reason, const yaml_mark_t& mark)
    {
        throw JsonFault{reason, static_cast<std::uint32_t>(mark.line + 1), columnOf(mark)};
    }

    // For bytes that are not text, the parser sets the offset instead of the mark.
    [[noreturn]] void failToParse()
    {
        const CString reason = parser.problem ? parser.problem : "not YAML";
        if (parser.error != YAML_READER_ERROR)
            fail(reason, parser.problem_mark);
        const std::string_view before = text.substr(0, parser.problem_offset);
        throw JsonFault{reason, static_cast<std::uint32_t>(std::ranges::count(before, '\n') + 1),
                        static_cast<std::uint32_t>(before.size() - (before.rfind('\n') + 1) + 1)};
    }

    // Moves the cursor to a character by its number.
    void moveTo(std::size_t character)
    {
        const auto isInside = [this] { return offset < text.size() && (text[offset] & 0xC0) == 0x80; };
        for (; characters < character && offset < text.size(); ++characters)
            for (++offset; isInside();)
                ++offset;
        for (; characters > character; --characters)
            for (--offset; isInside();)
                --offset;
    }

    // Returns the column of a mark in bytes, counted from 1; the parser counts characters. Linear in the text for marks
    // in order.
    std::uint32_t columnOf(const yaml_mark_t& mark)
    {
        if (parser.encoding != YAML_UTF8_ENCODING)
            return static_cast<std::uint32_t>(mark.column + 1);
        if (mark.line != line) {
            moveTo(mark.index - mark.column);
            line = mark.line;
            lineOffset = offset;
        }
        moveTo(mark.index);
        return static_cast<std::uint32_t>(offset - lineOffset + 1);
    }

    static std::string_view textOf(const unsigned char* text)
    {
        return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
    }

    // A key that is a list or a mapping, which YAML allows, has no counterpart in JSON.
    void take(const yaml_event_t& event)
    {
        const bool isValue = event.type == YAML_ALIAS_EVENT || event.type == YAML_MAPPING_START_EVENT ||
                             event.type == YAML_SEQUENCE_START_EVENT;
        if (isValue && builder.awaitsKey())
            fail("the key is not text", event.start_mark);
        switch (event.type) {
        case YAML_DOCUMENT_START_EVENT:
            if (builder.root() != 0)
                fail("a second document begins; only the first is supported", event.start_mark);
            break;
        case YAML_SCALAR_EVENT:
            takeScalar(event);
            break;
        case YAML_ALIAS_EVENT:
            takeAlias(event);
            break;
        case YAML_MAPPING_START_EVENT:
            begin(JsonNode::object, textOf(event.data.mapping_start.anchor), event.start_mark);
            break;
        case YAML_SEQUENCE_START_EVENT:
            begin(JsonNode::array, textOf(event.data.sequence_start.anchor), event.start_mark);
            break;
        case YAML_MAPPING_END_EVENT:
        case YAML_SEQUENCE_END_EVENT:
            builder.end();
            break;
        default:
            break;
        }
    }

    Index add(JsonNode::Kind kind, std::string_view value, const yaml_mark_t& mark)
    {
        return builder.add(kind, value, static_cast<std::uint32_t>(mark.line + 1), columnOf(mark));
    }

    void takeScalar(const yaml_event_t& event)
    {
        const auto& scalar = event.data.scalar;
        const std::string_view text(reinterpret_cast<const char*>(scalar.value), scalar.length);
        if (builder.awaitsKey())
            return builder.key(text, text == "<<" && scalar.style == YAML_PLAIN_SCALAR_STYLE);
        const std::string_view tag = textOf(scalar.tag);
        // A quoted scalar is text, unless it has another tag. A plain one is resolved, unless it has the tag of text.
        const bool isTyped = isOneOf(tag, {YAML_NULL_TAG, YAML_BOOL_TAG, YAML_INT_TAG, YAML_FLOAT_TAG});
        const bool isText = isOneOf(tag, {YAML_STR_TAG, "!"}) || (scalar.style != YAML_PLAIN_SCALAR_STYLE && !isTyped);
        const JsonNode::Kind kind = isText ? JsonNode::string : kindOfPlain(text);
        const Index node = add(kind, kind == JsonNode::null ? "" : text, event.start_mark);
        tree[node].isLiteral = scalar.style == YAML_LITERAL_SCALAR_STYLE;
        keepAnchor(textOf(scalar.anchor), node);
    }

    void takeAlias(const yaml_event_t& event)
    {
        const auto found = anchors.find(tree.names.intern(textOf(event.data.alias.anchor)));
        // An alias inside its own anchor would be a cycle of values.
        if (found == anchors.end() || builder.isOpen(found->second))
            fail("the alias has no anchor before it", event.start_mark);
        // The target of an alias is never an alias, so following one takes a single step.
        tree[add(JsonNode::alias, {}, event.start_mark)].firstChild = tree.target(found->second);
    }

    void begin(JsonNode::Kind kind, std::string_view anchor, const yaml_mark_t& mark)
    {
        if (builder.depth() == JsonScanner::kMaxDepth)
            fail("more than " + std::to_string(JsonScanner::kMaxDepth) + " levels of nesting, which is the limit",
                 mark);
        keepAnchor(anchor, add(kind, {}, mark));
    }

    void keepAnchor(std::string_view anchor, Index node)
    {
        if (!anchor.empty())
            // A later anchor of the same name replaces it (YAML 1.2.2, 3.2.2.2).
            anchors[tree.names.intern(anchor)] = node;
    }

    yaml_parser_t parser;
    const std::string_view text;
    std::size_t characters = 0, offset = 0; // of the cursor
    std::size_t line = 0, lineOffset = 0;   // that the cursor is in
    JsonBuilder& builder;
    JsonTree& tree;
    std::unordered_map<NameTable::Id, Index> anchors;
};

} // namespace

JsonNode::Index readJsonTree(std::string_view fileName, std::string_view text, JsonTree& tree, const SourceTypes& types,
                             SourceReport& report, std::uint32_t document, bool withComments)
{
    JsonBuilder builder(tree, types, report, document);
    const bool isNamedYaml = endsWithAscii(fileName, ".yaml") || endsWithAscii(fileName, ".yml");
    const std::string_view start = trimmed(text, " \t\r\n");
    const bool isJson = start.empty() || beginsLikeJson(start) || endsWithAscii(fileName, ".json");
    return isNamedYaml || !isJson ? YamlReader(text, builder, tree).read() : readJson(text, builder, withComments);
}
