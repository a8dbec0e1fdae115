#include "Import/Registry/ImporterChoice.h"

#include "Files/File.h"
#include "Files/KeptPipe.h"

#include <algorithm>
#include <fstream>

namespace {

constexpr std::size_t kLookedAt = 1 << 16;

struct Ending
{
    std::string_view ending;
    std::string_view importer;
};

constexpr Ending kEndings[] = {{".dtd", "dtd"}, {".mod", "dtd"}, {".ent", "dtd"}, {".xsd", "xsd"}};

bool endsWith(std::string_view name, std::string_view ending)
{
    const auto same = [](char left, char right) { return (left | 0x20) == (right | 0x20); };
    return name.size() >= ending.size() &&
           std::equal(ending.begin(), ending.end(), name.end() - static_cast<std::ptrdiff_t>(ending.size()), same);
}

// Without NUL bytes, so that names in UTF-16 can be told too.
CString startOf(const CString& fileName)
{
    CString start(kLookedAt, '\0');
    std::ifstream(openedFile(fileName), std::ios::binary).read(start.data(), static_cast<std::streamsize>(kLookedAt));
    std::erase(start, '\0');
    return start;
}

// Takes what stands up to `end`, and `end`, off the text; all of it where there is no end.
void skipPast(std::string_view& text, std::string_view end)
{
    const std::size_t found = text.find(end);
    text.remove_prefix(found == text.npos ? text.size() : found + end.size());
}

// What otherwise ends it may stand in a literal, and in a subset in brackets, with its comments and instructions.
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

// Takes white space, comments, instructions and a DOCTYPE off the text.
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

std::string_view nameOf(std::string_view tag)
{
    const std::string_view name = tag.substr(1, tag.find_first_of(" \t\r\n/>", 1) - 1);
    return name.substr(name.find(':') + 1);
}

std::string_view wordFor(std::string_view text)
{
    constexpr std::string_view type = "BROKERTYPEDESCRIPTION";
    text.remove_prefix(std::min(text.size(), text.find_first_not_of("\xEF\xBB\xBF\xFF\xFE"))); // a byte order mark
    skipProlog(text);
    if (text.starts_with("<!") || text.starts_with("%"))
        return "dtd";
    if (!text.starts_with("<"))
        return "";
    const std::string_view root = nameOf(text);
    if (root == "schema")
        return "xsd";
    skipPast(text, ">");
    skipProlog(text);
    return root == type || (text.starts_with("<") && nameOf(text) == type) ? "btd" : "xml";
}

} // namespace

MsgUIDescriptor* importerFor(const CString& fileName)
{
    if (testReadable(fileName) != FileCause::none)
        return nullptr;
    const auto* named = std::find_if(std::begin(kEndings), std::end(kEndings),
                                     [&](const Ending& row) { return endsWith(fileName, row.ending); });
    const bool isNamed = named != std::end(kEndings);
    std::string_view word = isNamed && !isPipe(fileName) ? named->importer : wordFor(startOf(fileName));
    if (word.empty() && isNamed)
        word = named->importer;
    if (word.empty() &&
        endsWith(fileName, ".xml")) // a prolog that takes more than was looked at, or no XML, to be told
        word = "xml";
    for (MsgUIDescriptor** importer = g_amud; *importer != nullptr; ++importer)
        if (word == (*importer)->querySource().word)
            return *importer;
    return nullptr;
}
