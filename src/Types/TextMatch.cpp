#include "Types/TextMatch.h"

#include "Base/KeyedTable.h"
#include "Import/GenerationTime.h"
#include "Import/MsgBase.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

// A document of this program is a start, the texts of the types without anything between them, and an end tag. Texts
// are cut at the end tags of types. A text that equals one of the import is well-formed and stands for the same type;
// all others are left to the importer of type documents, which finds what is wrong with them.
namespace {

constexpr std::string_view kTypeStart = "<BROKERTYPEDESCRIPTION NAME=\"";
constexpr std::string_view kTypeEnd = "</BROKERTYPEDESCRIPTION>";

// If none of the first types is found, all may have moved to another folder, so that no text can be equal.
constexpr std::size_t kTried = 64;

// A document in three parts.
struct Parts
{
    std::string_view start; // with the start tag of the root
    std::vector<std::string_view> types;
    std::string_view end; // the end tag of the root
};

// Removes `prefix`. Returns whether the text began with it.
bool skip(std::string_view& text, std::string_view prefix)
{
    const bool isThere = text.starts_with(prefix);
    text.remove_prefix(isThere ? prefix.size() : 0);
    return isThere;
}

// Cuts a document into its parts. Returns nothing if it isn't in the form that this program writes.
std::optional<Parts> partsOf(std::string_view document)
{
    std::string_view text = document;
    if (!skip(text, kBeforeTime) || text.size() < kTimeLength)
        return {};
    text.remove_prefix(kTimeLength);
    if (!skip(text, " -->\r\n<"))
        return {};
    const std::string_view tag = text.substr(0, text.find('>'));
    text.remove_prefix(tag.size());
    if (!skip(text, ">\r\n") || !text.ends_with("</" + CString(tag) + ">"))
        return {};
    Parts parts{document.substr(0, document.size() - text.size()), {}, text.substr(text.size() - tag.size() - 3)};
    text.remove_suffix(parts.end.size());
    while (!text.empty()) {
        const std::size_t end = text.find(kTypeEnd);
        if (!text.starts_with(kTypeStart) || end == text.npos)
            return {};
        parts.types.push_back(text.substr(0, end + kTypeEnd.size()));
        text.remove_prefix(parts.types.back().size());
    }
    return parts;
}

// Returns the name in a type's text, with its escapes.
std::string_view nameIn(std::string_view type)
{
    const std::string_view name = type.substr(kTypeStart.size());
    return name.substr(0, name.find('"'));
}

// Returns whether a type's text is that of a table or an array. Values of attributes contain no quote.
bool holdsComponent(std::string_view type)
{
    const std::string_view content = type.substr(std::min(type.find("\">"), type.size()));
    return content.starts_with("\"><TABLE") || content.starts_with("\"><ARRAY");
}

// Returns whether no name occurs twice. Of two backslashes at the start of a name one is ignored, so such
// names are not compared.
bool areNamesUnique(const std::vector<std::string_view>& types)
{
    std::unordered_set<std::string_view, KeyHash> names;
    return std::ranges::all_of(types, [&](std::string_view type) {
        const std::string_view name = nameIn(type);
        return !name.starts_with("\\\\") && names.insert(name).second;
    });
}

// Finds texts in a document. Types nearly always follow each other as in the import, so the one after the last found is
// tried first. The table of all texts is only made if that fails.
class Finder
{
public:
    explicit Finder(const std::vector<std::string_view>& texts) : texts(texts), isFound(texts.size()) {}

    bool find(std::string_view text)
    {
        if (next >= texts.size() || texts[next] != text) {
            if (byText.empty())
                for (std::size_t i = 0; i < texts.size(); ++i)
                    byText.emplace(texts[i], i);
            const auto found = byText.find(text);
            if (found == byText.end())
                return false;
            next = found->second;
        }
        isFound[next++] = true;
        return true;
    }

    // Returns whether find() has found the text of that index.
    bool hasFound(std::size_t index) const { return isFound[index]; }

    // Returns whether each call of find() has found the text after the last one.
    bool isInOrder() const { return byText.empty(); }

private:
    const std::vector<std::string_view>& texts;
    std::vector<bool> isFound;
    std::size_t next = 0;
    std::unordered_map<std::string_view, std::size_t, KeyHash> byText;
};

// Returns the document of the types that were not found and of all tables and arrays, empty if all types were found.
// Returns nothing if the importer must read the whole document.
std::optional<CString> restOf(const Parts& parts, const Finder& finder)
{
    CString rest(parts.start);
    bool isEmpty = true;
    for (std::size_t i = 0; i < parts.types.size(); ++i) {
        const std::string_view type = parts.types[i];
        const bool isFound = finder.hasFound(i);
        // The end tag of a type may be inside of a comment or a CDATA section.
        if (!isFound && (holdsComponent(type) || type.find("<!") != type.npos || type.find("<?") != type.npos))
            return {};
        if (!isFound || holdsComponent(type))
            rest += type;
        isEmpty = isEmpty && isFound;
    }
    return isEmpty ? CString() : rest + CString(parts.end);
}

} // namespace

std::optional<TextMatch> matchTexts(MsgBase& message, std::string_view document)
{
    const std::optional<Parts> parts = partsOf(document);
    if (!parts)
        return {};
    TextMatch match;
    Finder finder(parts->types);
    std::size_t equal = 0;
    message.beginEnum();
    while (Element* const element = message.enumNext()) {
        const std::string_view text = element->asXML();
        const bool isFound = finder.find(text);
        equal += isFound;
        match.isEqual.push_back(isFound);
        if ((!isFound && holdsComponent(text)) || (equal == 0 && match.isEqual.size() == kTried))
            return {};
    }
    std::optional<CString> rest = restOf(*parts, finder);
    if (!rest || equal == 0)
        return {};
    match.rest = std::move(*rest);
    // Of several types of one name, the first is compared.
    if (!(match.areAllEqual() && finder.isInOrder()) && !areNamesUnique(parts->types))
        return {};
    return match;
}

bool isOfThisProgram(std::string_view document)
{
    return partsOf(document).has_value();
}
