#include "Types/TextMatch.h"

#include "Base/KeyedTable.h"
#include "Import/GenerationTime.h"
#include "Import/MsgBase.h"
#include "Types/TypeStructure.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

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
    if (!skip(text, kAfterTime) || !skip(text, "<"))
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

// Returns the full name in a type's text, with its escapes.
std::string_view nameIn(std::string_view type)
{
    const std::string_view name = type.substr(kTypeStart.size());
    return plainName(name.substr(0, name.find('"')));
}

// Returns whether a type's text is that of a table or an array. Values of attributes contain no quote.
bool holdsComponent(std::string_view type)
{
    const std::string_view content = type.substr(std::min(type.find("\">"), type.size()));
    return content.starts_with("\"><TABLE") || content.starts_with("\"><ARRAY");
}

bool areNamesUnique(const std::vector<std::string_view>& types)
{
    std::unordered_set<std::string_view, KeyHash> names;
    return std::ranges::all_of(types, [&](std::string_view type) { return names.insert(nameIn(type)).second; });
}

// The tables and arrays that differ, by name. A field shows the content of its table, so a type that refers to one of
// them differs, too, even if its text doesn't.
class ChangedComponents
{
public:
    void add(std::string_view type)
    {
        if (holdsComponent(type))
            names.emplace(nameIn(type));
    }

    // Adds the tables and arrays that refer to those added so far, up to the depth that fields show.
    void spread(const std::vector<std::string_view>& types)
    {
        bool hasGrown = !names.empty();
        for (std::size_t level = 0; level < TypeStructure::kDeepest && hasGrown; ++level) {
            const std::size_t before = names.size();
            for (const std::string_view type : types)
                if (holdsComponent(type) && isIn(type))
                    add(type);
            hasGrown = names.size() > before;
        }
    }

    // Returns whether a type refers to one of them.
    bool isIn(std::string_view type) const
    {
        constexpr std::string_view before = " TYPE=\"";
        for (std::size_t at = names.empty() ? type.npos : type.find(before); at != type.npos;
             at = type.find(before, at)) {
            at += before.size();
            if (names.contains(plainName(type.substr(at, type.find('"', at) - at))))
                return true;
        }
        return false;
    }

private:
    std::set<CString, std::less<>> names;
};

// Returns the full names of the import's types as their texts have them, with escapes.
std::vector<CString> namesIn(MsgBase& message)
{
    std::vector<CString> names;
    message.beginEnum();
    while (Element* const element = message.enumNext())
        names.emplace_back(nameIn(element->asXML()));
    return names;
}

// Moves the names in a type's text, its own and those it refers to, to another folder.
void moveInto(CString& moved, std::string_view type, const TypeFolders& folders)
{
    constexpr std::string_view reference = " TYPE=\"";
    moved.clear();
    std::size_t from = 0, name = kTypeStart.size();
    do {
        moved += type.substr(from, name - from);
        const bool isMoved = type.substr(name).starts_with(folders.before);
        moved += isMoved ? std::string_view(folders.after) : std::string_view();
        from = name + (isMoved ? folders.before.size() : 0);
        name = type.find(reference, from);
        name += name == type.npos ? 0 : reference.size();
    } while (name != type.npos);
    moved += type.substr(from);
}

// Matches an import of which no type is in a document, as if all its types were in the document's folder. Returns
// nothing if a type differs otherwise, or if the folders might be others for movedFolders(): a name that both have
// begins with both folders.
std::optional<TextMatch> matchMoved(MsgBase& message, const std::vector<std::string_view>& types)
{
    const std::vector<CString> ownNames = namesIn(message);
    std::vector<std::string_view> names;
    for (const std::string_view type : types)
        names.push_back(nameIn(type));
    TextMatch match;
    match.folders = {commonFolder(names),
                     commonFolder(std::vector<std::string_view>(ownNames.begin(), ownNames.end()))};
    const CString &before = match.folders.before, &after = match.folders.after;
    const bool isCertain = !before.starts_with(after) && !after.starts_with(before) &&
                           before.find('&') == before.npos && after.find('&') == after.npos;
    if (!isCertain || names.size() != ownNames.size() || !areNamesUnique(types))
        return {};
    CString moved;
    std::size_t number = 0;
    message.beginEnum();
    while (Element* const element = message.enumNext()) {
        moveInto(moved, types[number++], match.folders);
        if (moved != element->asXML())
            return {};
    }
    return match;
}

// Matches the types of an import with the texts of a document, in the three steps of matchTexts().
class Matching
{
public:
    explicit Matching(const Parts& document) : document(document), numbers(document.types.size(), kNotFound) {}

    // Finds the texts of the import. Returns false if none is found, or none of the first ones.
    bool findTypes(MsgBase& message)
    {
        std::size_t equal = 0;
        message.beginEnum();
        while (Element* const element = message.enumNext()) {
            const std::string_view text = element->asXML();
            const std::size_t found = find(text, match.isEqual.size());
            if (found != kNotFound)
                numbers[found] = match.isEqual.size();
            else
                changed.add(text);
            equal += found != kNotFound;
            match.isEqual.push_back(found != kNotFound);
            if (equal == 0 && match.isEqual.size() == kTried)
                return false;
        }
        return equal > 0;
    }

    // Finds the types of the document that differ only by the content of their fields, and builds the rest. Returns
    // false if the end of a type is not certain, because its end tag may be inside of a comment or a CDATA section.
    bool collectRest()
    {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const std::string_view type = document.types[i];
            if (numbers[i] != kNotFound)
                continue;
            if (type.find("<!") != type.npos || type.find("<?") != type.npos)
                return false;
            changed.add(type);
        }
        changed.spread(document.types);
        bool isEmpty = true;
        match.rest = document.start;
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const std::string_view type = document.types[i];
            const bool isEqual = numbers[i] != kNotFound && !changed.isIn(type);
            if (numbers[i] != kNotFound)
                match.isEqual[numbers[i]] = isEqual;
            if (!isEqual || holdsComponent(type))
                match.rest += type;
            isEmpty = isEmpty && isEqual;
        }
        if (isEmpty)
            match.rest.clear();
        else
            match.rest += document.end;
        return true;
    }

    // Returns whether it is certain which of several types of one name is compared, which is the first.
    bool areNamesCertain() const { return (match.areAllEqual() && byText.empty()) || areNamesUnique(document.types); }

    TextMatch match;

private:
    static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

    // Returns the index of a text in the document. Nearly always, it has the same index there as in the import. The
    // table of all texts is only made if one has not.
    std::size_t find(std::string_view text, std::size_t index)
    {
        const std::vector<std::string_view>& texts = document.types;
        if (byText.empty() && index < texts.size() && texts[index] == text)
            return index;
        if (byText.empty())
            for (std::size_t i = 0; i < texts.size(); ++i)
                byText.emplace(texts[i], i);
        const auto found = byText.find(text);
        return found == byText.end() ? kNotFound : found->second;
    }

    const Parts& document;
    std::unordered_map<std::string_view, std::size_t, KeyHash> byText; // empty while all types are in order
    ChangedComponents changed;
    std::vector<std::size_t> numbers; // of the types of the import with these texts
};

} // namespace

std::optional<TextMatch> matchTexts(MsgBase& message, std::string_view document)
{
    const std::optional<Parts> parts = partsOf(document);
    if (!parts)
        return {};
    Matching matching(*parts);
    if (!matching.findTypes(message))
        return matchMoved(message, parts->types);
    if (!matching.collectRest() || !matching.areNamesCertain())
        return {};
    return std::move(matching.match);
}

bool isOfThisProgram(std::string_view document)
{
    return partsOf(document).has_value();
}
