#include "Import/Registry/ForeignSource.h"

#include "Base/Text.h"

#include <algorithm>
#include <array>

// A format is recognised by its first bytes, else by the namespace of the root element, else by the first words of a
// text. Words are the least certain, because texts of other formats may begin with them, too. So they are compared
// last, and only if no importer knows the text.
namespace {

constexpr std::size_t kMaxLines = 20; // the lines of CSV that are compared

struct Format
{
    std::string_view start; // of the file, or of the root's namespace
    std::string_view advice;
};

// By the first bytes of the file.
constexpr Format kSignatures[] = {
    {"PK\x03\x04", "this is a ZIP archive; unpack it, then import a file of it"},
    {"PK\x05\x06", "this is an empty ZIP archive"},
    {"\x1F\x8B", "this is compressed with gzip; unpack it with gunzip, then import the file"},
    {"Obj\x01", "this is an Avro data file; take the schema out with avro-tools getschema, then import that"},
    {"%PDF-", "this is PDF; import the schema that it describes"},
};

// By the start of the root's namespace.
constexpr Format kRelax{"http://relaxng.org/ns/structure/",
                        "this is RELAX NG; convert it with trang, then import the schema"};

// Returns the value of an attribute of a tag, as written; empty if there is none. The tag need not be well-formed or
// complete, since only the start of the file is known.
std::string_view attributeOf(std::string_view tag, std::string_view name)
{
    tag.remove_prefix(std::min(tag.size(), tag.find_first_of(" \t\r\n")));
    for (;;) {
        tag = trimmed(tag);
        const std::size_t equals = tag.find('=');
        const std::string_view found = trimmed(tag.substr(0, equals));
        if (equals == tag.npos || found.find('>') != found.npos)
            return {};
        tag = trimmed(tag.substr(equals + 1));
        const std::size_t end = tag.empty() ? tag.npos : tag.find(tag.front(), 1);
        if (end == tag.npos)
            return {};
        if (found == name)
            return trimmed(tag.substr(1, end - 1));
        tag.remove_prefix(end + 1);
    }
}

// A language's syntax for comments and quoted text.
struct Comments
{
    std::string_view line;
    std::string_view begin; // empty if there are no block comments
};

using Words = std::array<std::string_view, 3>;

bool isLetter(char c)
{
    return (lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           c == '.' || c == ':' || static_cast<unsigned char>(c) >= 0x80;
}

// Returns the first words and marks of a text outside of comments, because many sources begin with a licence.
Words firstWords(std::string_view text, const Comments& comments)
{
    Words words;
    for (std::size_t i = 0; i < words.size();) {
        text.remove_prefix(std::min(text.size(), text.find_first_not_of(kWhitespace)));
        if (text.empty())
            return words;
        std::size_t length = 0;
        if (text.starts_with(comments.line)) {
            length = text.find('\n');
        } else if (!comments.begin.empty() && text.starts_with(comments.begin)) {
            length = text.find("*/");
            length = length == text.npos ? length : length + 2;
        } else {
            while (length < text.size() && isLetter(text[length]))
                ++length;
            length = std::max<std::size_t>(length, 1);
            words[i++] = text.substr(0, length);
        }
        text.remove_prefix(std::min(length, text.size()));
    }
    return words;
}

// A schema in compact syntax begins with a declaration, a definition or a pattern.
bool isRelaxCompact(std::string_view text)
{
    const auto [first, second, third] = firstWords(text, {"#", {}});
    const bool isPattern = isOneOf(third, {"element", "attribute", "grammar", "list", "text", "empty", "notAllowed"});
    return (isOneOf(first, {"namespace", "datatypes"}) && third == "=") ||
           (first == "default" && second == "namespace") || (first == "start" && isOneOf(second, {"=", "|", "&"})) ||
           (isOneOf(first, {"grammar", "div"}) && second == "{") ||
           (isOneOf(first, {"element", "attribute"}) && third == "{") || (second == "=" && isPattern);
}

// Sources of other languages also begin with "package" or "import", so a second mark is required after these.
bool isProtobuf(std::string_view text)
{
    const auto [first, second, third] = firstWords(text, {"//", "/*"});
    return (isOneOf(first, {"syntax", "edition"}) && second == "=") ||
           (isOneOf(first, {"message", "enum", "service", "extend"}) && third == "{") ||
           (first == "package" && third == ";" && text.find("message ") != text.npos) ||
           (first == "import" && isOneOf(second, {"\"", "'", "public", "weak"}) && text.find('{') != text.npos);
}

bool isAvroIdl(std::string_view text)
{
    const auto [first, second, third] = firstWords(text, {"//", "/*"});
    return (first == "protocol" && third == "{") || (first == "@" && text.find("protocol ") != text.npos);
}

bool isSql(std::string_view text)
{
    return lowerAscii(text).find("create table ") != CString::npos;
}

// Returns the number of separators in a line, outside of quotes.
std::size_t countOutsideQuotes(std::string_view line, char separator)
{
    bool isQuoted = false;
    return static_cast<std::size_t>(std::ranges::count_if(line, [&](char c) {
        // A doubled quote inside of quotes toggles twice, so the text stays quoted.
        isQuoted ^= c == '"';
        return c == separator && !isQuoted;
    }));
}

// Returns whether the first lines have the same number of columns, at least two. A separator at the end of a line alone
// is rather the end of a statement.
bool isCsv(std::string_view text)
{
    if (std::ranges::any_of(
            text, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r'; }))
        return false;
    return std::ranges::any_of(std::string_view(",;"), [text](char separator) {
        std::size_t columns = 0, lines = 0;
        for (std::string_view rest = text; !rest.empty() && lines < kMaxLines;) {
            const std::size_t end = rest.find('\n');
            const std::string_view line = rest.substr(0, end);
            rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
            if (trimmed(line).empty() || (rest.empty() && lines > 1)) // the last line may be cut off
                continue;
            const std::size_t count = countOutsideQuotes(line, separator);
            const std::size_t atEnd = trimmed(line).ends_with(separator) ? 1 : 0;
            if (count == atEnd || (lines > 0 && count != columns))
                return false;
            columns = count;
            ++lines;
        }
        return lines > 1;
    });
}

struct Language
{
    std::string_view ending;
    bool (*matches)(std::string_view text);
    std::string_view advice;
};

// Suffix, test of the content, advice. The suffix alone decides if it matches. isCsv() comes last, because any text may
// contain commas.
constexpr Language kLanguages[] = {
    {".rnc", isRelaxCompact, "this is RELAX NG in its compact form; convert it with trang, then import the schema"},
    {".proto", isProtobuf, "this is Protobuf; convert it to JSON Schema with protoc-gen-jsonschema, then import that"},
    {".avdl", isAvroIdl, "this is Avro IDL; convert it with avro-tools idl, then import the protocol"},
    {".sql", isSql, "this is SQL; run it in a database, then import the tables with odbc"},
    {".csv", isCsv, "this is CSV; load it into a database table, then import that with odbc"},
    {".tsv", isCsv, "this is CSV; load it into a database table, then import that with odbc"},
};

} // namespace

std::string_view namespaceOf(std::string_view text)
{
    if (!text.starts_with("<"))
        return {};
    const std::string_view name = text.substr(1, text.find_first_of(" \t\r\n/>", 1) - 1);
    const std::size_t colon = name.find(':');
    return attributeOf(text, colon == name.npos ? "xmlns" : "xmlns:" + CString(name.substr(0, colon)));
}

std::string_view foreignSource(std::string_view start, std::string_view content)
{
    for (const Format& format : kSignatures)
        if (start.starts_with(format.start))
            return format.advice;
    return namespaceOf(content).starts_with(kRelax.start) ? kRelax.advice : "";
}

// The suffix takes precedence over the content, which only allows a guess.
std::string_view foreignText(std::string_view start, std::string_view fileName)
{
    const CString name = lowerAscii(fileName);
    for (const Language& language : kLanguages)
        if (name.ends_with(language.ending))
            return language.advice;
    for (const Language& language : kLanguages)
        if (language.matches(start))
            return language.advice;
    return {};
}
