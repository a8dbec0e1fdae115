#include "Import/Registry/ImporterChoice.h"

#include "Files/File.h"
#include "Files/KeptPipe.h"
#include "Import/Json/JsonKind.h"
#include "Import/Registry/ForeignSource.h"
#include "Import/Schema/Full/WsdlReader.h"

#include <algorithm>
#include <fstream>

namespace {

constexpr std::size_t kMaxLookahead = 1 << 16; // bytes of a file that are read

struct Ending
{
    std::string_view ending;
    std::string_view importer;
};

// Suffixes that decide without regard to the content. ".xml" and ".json" are missing, because several importers read
// such files.
constexpr Ending kEndings[] = {{".dtd", "dtd"},   {".mod", "dtd"},    {".ent", "dtd"},
                               {".xsd", "xsd"},   {".wsdl", "wsdl"},  {".avsc", "avro"},
                               {".avpr", "avro"}, {".jsonl", "json"}, {".ndjson", "json"}};

// Returns the beginning of a file without NUL bytes, so that names in UTF-16 can be recognised.
CString startOf(const CString& fileName)
{
    CString start(kMaxLookahead, '\0');
    std::ifstream file(fileToOpen(fileName), std::ios::binary);
    file.read(start.data(), static_cast<std::streamsize>(kMaxLookahead));
    start.resize(static_cast<std::size_t>(file.gcount()));
    std::erase(start, '\0');
    return start;
}

// Removes the text up to `end` and `end` itself; everything if `end` is missing.
void skipPast(std::string_view& text, std::string_view end)
{
    const std::size_t found = text.find(end);
    text.remove_prefix(found == text.npos ? text.size() : found + end.size());
}

// Skips a DOCTYPE. A '>' may also occur in its literals, and in comments and instructions of its internal subset.
void skipDoctype(std::string_view& text)
{
    for (int brackets = 0; !text.empty();) {
        const char c = text.front();
        if (text.starts_with("<!--")) {
            skipPast(text, "-->");
        } else if (text.starts_with("<?")) {
            skipPast(text, "?>");
        } else {
            text.remove_prefix(1);
            if (c == '"' || c == '\'')
                skipPast(text, std::string_view(&c, 1));
            else if (c == '[' || c == ']')
                brackets += c == '[' ? 1 : -1;
            else if (c == '>' && brackets <= 0)
                return;
        }
    }
}

// Skips white space, comments, instructions and a DOCTYPE.
void skipProlog(std::string_view& text)
{
    for (;;) {
        text.remove_prefix(std::min(text.size(), text.find_first_not_of(kWhitespace)));
        if (text.starts_with("<?"))
            skipPast(text, "?>");
        else if (text.starts_with("<!--"))
            skipPast(text, "-->");
        else if (text.starts_with("<!DOCTYPE"))
            skipDoctype(text);
        else
            return;
    }
}

// Returns the local name of the tag that the text begins with.
std::string_view nameOf(std::string_view tag)
{
    const std::string_view name = tag.substr(1, tag.find_first_of(" \t\r\n/>", 1) - 1);
    return name.substr(name.find(':') + 1);
}

// Returns the text after its byte order mark and prolog.
std::string_view contentOf(std::string_view text)
{
    // The marks of UTF-8 and UTF-16, as startOf() leaves them.
    text.remove_prefix(std::min(text.size(), text.find_first_not_of("\xEF\xBB\xBF\xFF\xFE")));
    skipProlog(text);
    return text;
}

// Returns the importer for the content after the prolog; empty if it isn't recognised.
std::string_view wordFor(std::string_view text)
{
    constexpr std::string_view type = "BROKERTYPEDESCRIPTION";
    // A DTD may begin with a reference to a parameter entity, YAML with a directive.
    if (text.starts_with("<!") || (text.starts_with("%") && !text.starts_with("%YAML ")))
        return "dtd";
    if (!text.starts_with("<"))
        return importerOfJson(text);
    const std::string_view root = nameOf(text);
    if (root == "schema")
        return "xsd";
    // Message documents are recognised by their first child, because their root is called like a type.
    skipPast(text, ">");
    skipProlog(text);
    return root == type || (text.starts_with("<") && nameOf(text) == type) ? "btd" : "xml";
}

// The result of identifying a file: the name of its importer, or the advice for its format. Both are empty if it is
// unknown.
struct Identified
{
    std::string_view importer;
    std::string_view foreign;
};

// The order matters. Formats without an importer come before the suffix, so that a compressed .xsd is recognised, and
// so do WSDLs, which may have the suffix .xml or .xsd. The name of a pipe is arbitrary, so its content comes before its
// name.
Identified identify(const CString& fileName)
{
    const auto* named = std::find_if(std::begin(kEndings), std::end(kEndings),
                                     [&](const Ending& row) { return endsWithAscii(fileName, row.ending); });
    const std::string_view ending = named != std::end(kEndings) ? named->importer : "";
    const CString start = startOf(fileName);
    const std::string_view content = contentOf(start);
    if (const std::string_view foreign = foreignSource(start, content); !foreign.empty())
        return {{}, foreign};
    if (isWsdlNamespace(namespaceOf(content)))
        return {"wsdl", {}};
    if (!ending.empty() && !isPipe(fileName))
        return {ending, {}};
    if (const std::string_view word = wordFor(content); !word.empty())
        return {word, {}};
    if (!ending.empty())
        return {ending, {}};
    if (const std::string_view foreign = foreignText(content, fileName); !foreign.empty())
        return {{}, foreign};
    // The prolog may be too long to recognise the content.
    return {endsWithAscii(fileName, ".xml") ? "xml" : "", {}};
}

} // namespace

MsgUIDescriptor* importerFor(const CString& fileName)
{
    return testReadable(fileName) == FileCause::none ? importerNamed(identify(fileName).importer) : nullptr;
}

std::string_view foreignAdvice(const CString& fileName)
{
    return testReadable(fileName) == FileCause::none ? identify(fileName).foreign : "";
}
