#include "Import/Full/Catalogs.h"

#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Xml/XMLDoc.h"
#include "Xml/XmlParser.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>

// load() reads a catalogue as a stream, and queues its references to others: catalogues may refer to each other in
// cycles, and reading one inside a handler would recurse. Each file is one catalogue, whatever its names.
//
// A lookup follows the sections on resolution in the standard. Prefixes and suffixes are looked up by hash, once for
// each length that keys of this kind have, longest first, instead of comparing all entries.
namespace {

constexpr std::size_t kMaxCatalogs = 1'000;       // also bounds the recursion of lookUpDelegates()
constexpr std::size_t kLongestIdentifier = 4'096; // bytes; a lookup hashes up to one prefix of each length
constexpr std::uint32_t kNoCatalog = ~0U;

constexpr std::string_view kSpace = "urn:oasis:names:tc:entity:xmlns:xml:catalog";
constexpr std::size_t kMaxEntries = 100'000; // of all catalogues

// Returns whether a public identifier is in the form of a URN (RFC 3151).
bool isPublicUrn(std::string_view text)
{
    constexpr std::string_view scheme = "urn:publicid:";
    return isSameAscii(trimmed(text).substr(0, scheme.size()), scheme);
}

// Decodes such a URN: '+' stands for a blank, ':' for "//", ';' for "::"; other characters are escaped (RFC 3151).
CString fromUrn(std::string_view urn)
{
    CString publicId;
    for (const char c : trimmed(urn).substr(std::string_view("urn:publicid:").size()))
        publicId += c == '+' ? " " : c == ':' ? "//" : c == ';' ? "::" : CString(1, c);
    return withoutEscapes(publicId);
}

// Returns the names in XML_CATALOG_FILES: files or URIs, separated by blanks.
std::vector<CString> environmentCatalogs()
{
    const char* const given = std::getenv("XML_CATALOG_FILES");
    std::istringstream words(given ? given : "");
    return {std::istream_iterator<CString>(words), {}};
}

} // namespace

std::vector<CString> withEnvironmentCatalogs(std::vector<CString> files)
{
    for (const CString& reference : environmentCatalogs())
        if (const CString path = localPath(reference); testReadable(path) == FileCause::none)
            files.push_back(path);
    return files;
}

std::vector<CString> environmentCatalogErrors()
{
    std::vector<CString> errors;
    for (const CString& reference : environmentCatalogs()) {
        const CString path = localPath(reference);
        const FileCause cause = path.empty() ? FileCause::none : testReadable(path);
        if (path.empty() || cause != FileCause::none)
            errors.push_back("XML_CATALOG_FILES: " + reference + ": " +
                             (path.empty() ? "no local file" : inWords(path, cause)));
    }
    return errors;
}

// Reads the entries of one catalogue into Catalogs. Elements of other namespaces are extensions, which the standard
// lets a reader ignore.
class CatalogReader : public XmlHandler
{
public:
    /// `folder` is the catalogue's folder, `file` its number in the report.
    CatalogReader(Catalogs& catalogs, std::uint32_t number, const CString& folder, std::uint32_t file) :
        catalogs(catalogs), number(number), file(file), open{{folder, true}}
    {}

    void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) override;
    void endElement() override { open.pop_back(); }
    bool wantsText() const override { return false; }

    /// Returns whether the document is a catalogue.
    bool isCatalog() const { return hasCatalogRoot; }

private:
    // The state of an open element, or of the document.
    struct Level
    {
        Catalogs::Base base;
        bool prefersPublic;
    };

    void add(Catalogs::Kind kind, const CString& key, const CString& target, SourcePlace place);

    Catalogs& catalogs;
    const std::uint32_t number; // number of the catalogue
    const std::uint32_t file;
    std::vector<Level> open;
    bool hasCatalogRoot = false;
};

void CatalogReader::startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope)
{
    using Kind = Catalogs::Kind;
    struct Row
    {
        std::string_view element;
        Kind kind;
        std::string_view key;
        std::string_view target;
    };
    // The attributes of an entry: the text to compare with, and its target.
    static constexpr Row kRows[] = {
        {"public", Kind::publicIdentifier, "publicId", "uri"},
        {"system", Kind::system, "systemId", "uri"},
        {"rewriteSystem", Kind::rewriteSystem, "systemIdStartString", "rewritePrefix"},
        {"systemSuffix", Kind::systemSuffix, "systemIdSuffix", "uri"},
        {"delegatePublic", Kind::delegatePublic, "publicIdStartString", "catalog"},
        {"delegateSystem", Kind::delegateSystem, "systemIdStartString", "catalog"},
        {"uri", Kind::uri, "name", "uri"},
        {"rewriteURI", Kind::rewriteUri, "uriStartString", "rewritePrefix"},
        {"uriSuffix", Kind::uriSuffix, "uriSuffix", "uri"},
        {"delegateURI", Kind::delegateUri, "uriStartString", "catalog"},
        {"nextCatalog", Kind::nextCatalog, "", "catalog"},
    };
    const bool isInCatalogNamespace = scope.uri && scope.uri == kSpace;
    Level level = open.back();
    if (open.size() == 1)
        hasCatalogRoot = isInCatalogNamespace && name.local == std::string_view("catalog");
    // xml:base and prefer apply to the element that has them, and to those inside it.
    if (const std::string_view base = attributes.valueOf("base", true); !base.empty()) {
        const CString path = localPath(base);
        if (path.empty())
            level.base.reset();
        else if (path.starts_with('/'))
            level.base = path.substr(0, path.rfind('/') + 1);
        else if (level.base)
            *level.base += path.substr(0, path.rfind('/') + 1);
    }
    if (const std::string_view prefer = attributes.valueOf("prefer"); !prefer.empty())
        level.prefersPublic = prefer != "system";
    open.push_back(level);
    const auto* const row = std::ranges::find(kRows, std::string_view(name.local), &Row::element);
    if (!hasCatalogRoot || !isInCatalogNamespace || row == std::end(kRows))
        return;
    CString key(row->key.empty() ? "" : attributes.valueOf(row->key));
    if (row->kind == Kind::publicIdentifier || row->kind == Kind::delegatePublic)
        key = Catalogs::normalizedPublicId(key);
    const auto [line, column] = scope.place();
    add(row->kind, key, CString(attributes.valueOf(row->target)), {file, line, column});
}

// Adds an entry. The first one for a key takes precedence. The target of a rewrite may be empty: the rest of the
// identifier is then relative to the base. References to catalogues are queued, because reading one here would move the
// tables that are in use.
void CatalogReader::add(Catalogs::Kind kind, const CString& key, const CString& target, SourcePlace place)
{
    const bool isNext = kind == Catalogs::nextCatalog;
    if ((key.empty() && !isNext) || (target.empty() && kind != Catalogs::rewriteSystem && kind != Catalogs::rewriteUri))
        return catalogs.report.add(SourceReport::malformedDeclaration, place, "catalogue entry");
    if (++catalogs.entryCount > kMaxEntries)
        throw XmlRefusal{"more than " + std::to_string(kMaxEntries) + " catalogue entries"};
    if (isNext)
        return catalogs.waiting.push_back({number, kind, key, target, open.back().base, place});
    const bool isDelegate =
        kind == Catalogs::delegateSystem || kind == Catalogs::delegatePublic || kind == Catalogs::delegateUri;
    const auto enter = [&](Catalogs::Kind as) {
        Catalogs::Table& table = catalogs.catalogs[number].tables[as];
        const bool isNew = table.entries.try_emplace(key, Catalogs::Entry{target, open.back().base, {}}).second;
        table.lengths.insert(key.size());
        if (isNew && isDelegate)
            catalogs.waiting.push_back({number, as, key, target, open.back().base, place});
    };
    enter(kind);
    if (open.back().prefersPublic && kind == Catalogs::publicIdentifier)
        enter(Catalogs::preferredPublic);
    if (open.back().prefersPublic && kind == Catalogs::delegatePublic)
        enter(Catalogs::preferredDelegate);
}

// Returns a public identifier with each run of white space as one space, as the standard requires for comparisons. A
// URN is decoded first.
CString Catalogs::normalizedPublicId(std::string_view publicId)
{
    const CString plain = isPublicUrn(publicId) ? fromUrn(publicId) : CString(publicId);
    CString normalized;
    for (const char c : trimmed(plain)) {
        const bool isBlank = kWhitespace.find(c) != kWhitespace.npos;
        if (!isBlank || normalized.back() != ' ')
            normalized += isBlank ? ' ' : c;
    }
    return normalized;
}

// Returns the absolute path that a reference leads to; "" if it is not local. A "../" removes the segment before it,
// even if that is no folder (RFC 3986, 5.2.4).
CString Catalogs::pathOf(const CString& reference, const Base& base)
{
    const CString path = localPath(reference);
    if (path.empty() || path.starts_with('/'))
        return path;
    return base ? std::filesystem::path(*base + path).lexically_normal().string() : CString();
}

// Reading adds to the queue, until all catalogues that can be reached are known.
void Catalogs::load(const CString& fileName)
{
    const auto id = identify(fileName);
    mainCatalogs.push_back(read({fileName, id.value_or(FileId())}, nullptr));
    for (std::size_t i = 0; i < waiting.size(); ++i)
        readNamed(Named(waiting[i])); // reading adds further ones
    waiting.clear();
}

// Reads one catalogue, unless it is known, and returns its number. `named` is null for a catalogue of the caller, which
// must be readable. For any other one that can't be read, reports that and returns kNoCatalog.
std::uint32_t Catalogs::read(const FoundFile& file, const Named* named)
{
    const auto number = static_cast<std::uint32_t>(catalogs.size());
    if (file.id != FileId())
        if (const auto [place, isNew] = known.try_emplace(file.id, number); !isNew)
            return place->second;
    if (number == kMaxCatalogs)
        throw SourceRefusal{file.name + ": there are more than " + std::to_string(kMaxCatalogs) + " catalogues.",
                            {file.name, "more than " + std::to_string(kMaxCatalogs) + " catalogues"}};
    catalogs.emplace_back();
    const std::uint32_t reportFile = report.addFile(file.name);
    CatalogReader reader(*this, number, folderOf(file.name), reportFile);
    XmlDocument xml;
    const bool isRead = xml.streamFile(file.name, reader, kMaxNamedFile) != 0;
    if (isRead && reader.isCatalog())
        return number;
    if (!named && !isRead)
        throw SourceRefusal{xml.queryParseError(), xml.queryFault()};
    if (!named)
        throw SourceRefusal{file.name + " is not an XML catalogue.", {file.name, "it is not an XML catalogue"}};
    const SourceFault& fault = xml.queryFault();
    if (isRead || fault.line == 0) // readable, but no catalogue, or not readable at all
        report.add(SourceReport::moduleUnreadable, named->place, named->reference);
    else
        report.addIllFormed(reportFile, fault, named->place);
    // The catalogue stays, but empty, because `known` has its number.
    catalogs.back() = {};
    return kNoCatalog;
}

// Reads the catalogue that another one refers to. A missing or remote one is a loss: lookups go on without it.
void Catalogs::readNamed(const Named& named)
{
    const CString path = pathOf(named.reference, named.base);
    if (path.empty())
        return report.add(SourceReport::moduleRemote, named.place, named.reference);
    // In any letter case, like other files that a source names.
    const auto file = finder.find({}, path);
    if (!file)
        return report.add(SourceReport::moduleMissing, named.place, named.reference);
    const std::uint32_t catalog = read(*file, &named);
    if (catalog == kNoCatalog)
        return;
    Catalog& from = catalogs[named.from];
    if (named.kind == nextCatalog)
        from.next.push_back(catalog);
    else
        from.tables[named.kind].entries[named.key].catalog = catalog;
}

// A system identifier that is the URN of a public one is looked up as that instead.
std::optional<CString> Catalogs::findExternal(std::string_view publicId, std::string_view systemId) const
{
    if (isPublicUrn(systemId))
        return findExternal(publicId.empty() ? systemId : publicId, {});
    return lookUpAll({publicId, trimmed(systemId), {}, {}});
}

// The standard looks URIs up among the entries for URIs only. System identifiers come second, because a catalogue may
// list the location of a schema as either.
std::optional<CString> Catalogs::findUri(std::string_view uri) const
{
    uri = trimmed(uri);
    if (isPublicUrn(uri))
        return findExternal(uri, {});
    if (auto found = lookUpAll({{}, {}, uri, {}}))
        return found;
    return lookUpAll({{}, uri, {}, {}});
}

// Searches the caller's catalogues, the first one first. The stack of lookUp() is filled in reverse.
std::optional<CString> Catalogs::lookUpAll(Lookup lookup) const
{
    const auto isTooLong = [](std::string_view text) { return text.size() > kLongestIdentifier; };
    if (catalogs.empty() || isTooLong(lookup.publicId) || isTooLong(lookup.systemId) || isTooLong(lookup.uri))
        return std::nullopt;
    const CString publicId = normalizedPublicId(lookup.publicId);
    lookup.publicId = publicId;
    lookup.isVisited.assign(catalogs.size(), false);
    return lookUp({mainCatalogs.rbegin(), mainCatalogs.rend()}, lookup);
}

// Searches catalogues, the last one first, and after each its next catalogues. `open` is a stack, so that the next
// catalogues of a catalogue are searched before its siblings, in the order of the standard.
std::optional<CString> Catalogs::lookUp(std::vector<std::uint32_t> open, Lookup& lookup) const
{
    while (!open.empty()) {
        const std::uint32_t at = open.back();
        open.pop_back();
        // Catalogues may name each other.
        if (lookup.isVisited[at])
            continue;
        lookup.isVisited[at] = true;
        if (auto found = lookUpOne(catalogs[at], lookup))
            return found;
        if (lookup.isFinished)
            return std::nullopt;
        open.insert(open.end(), catalogs[at].next.rbegin(), catalogs[at].next.rend());
    }
    return std::nullopt;
}

// Searches one catalogue in the standard's order: exact matches, then the longest prefix or suffix, then delegates;
// system identifiers before public ones. If there is a system identifier, too, an entry for a public one applies only
// if `prefer` is public there.
std::optional<CString> Catalogs::lookUpOne(const Catalog& catalog, Lookup& lookup) const
{
    const auto& tables = catalog.tables;
    std::optional<CString> found;
    const auto isDone = [&](Kind whole, Kind rewrite, Kind suffix, Kind delegate, Identifier which) {
        const std::string_view text = lookup.*which;
        return (found = lookUpExact(tables[whole], text)) || (found = lookUpRewrite(tables[rewrite], text)) ||
               (found = lookUpSuffix(tables[suffix], text)) ||
               (found = lookUpDelegates(tables[delegate], which, lookup)) || lookup.isFinished;
    };
    if (!lookup.uri.empty() && isDone(uri, rewriteUri, uriSuffix, delegateUri, &Lookup::uri))
        return found;
    if (!lookup.systemId.empty() && isDone(system, rewriteSystem, systemSuffix, delegateSystem, &Lookup::systemId))
        return found;
    if (lookup.publicId.empty())
        return std::nullopt;
    const bool isBoth = !lookup.systemId.empty();
    if ((found = lookUpExact(tables[isBoth ? preferredPublic : publicIdentifier], lookup.publicId)))
        return found;
    return lookUpDelegates(tables[isBoth ? preferredDelegate : delegatePublic], &Lookup::publicId, lookup);
}

std::optional<CString> Catalogs::lookUpExact(const Table& table, std::string_view text) const
{
    const Entry* const entry = table.find(text);
    return entry ? std::optional(pathOf(entry->target, entry->base)) : std::nullopt;
}

// The part of the identifier after the prefix is kept.
std::optional<CString> Catalogs::lookUpRewrite(const Table& table, std::string_view text) const
{
    for (const std::size_t length : table.lengths)
        if (const Entry* const entry = length <= text.size() ? table.find(text.substr(0, length)) : nullptr)
            return pathOf(entry->target + CString(text.substr(length)), entry->base);
    return std::nullopt;
}

std::optional<CString> Catalogs::lookUpSuffix(const Table& table, std::string_view text) const
{
    for (const std::size_t length : table.lengths)
        if (length <= text.size())
            if (auto found = lookUpExact(table, text.substr(text.size() - length)))
                return found;
    return std::nullopt;
}

// Searches the delegates that match, the longest prefix first. If one matches, they replace all other catalogues, even
// if they find nothing, and the other identifier is ignored (7.1.2). From then on no catalogue is visited twice, which
// bounds the recursion.
std::optional<CString> Catalogs::lookUpDelegates(const Table& table, Identifier which, Lookup& lookup) const
{
    const std::string_view text = lookup.*which;
    std::vector<std::uint32_t> delegates;
    for (const std::size_t length : table.lengths) {
        const Entry* const entry = length <= text.size() ? table.find(text.substr(0, length)) : nullptr;
        if (entry && entry->catalog)
            delegates.push_back(*entry->catalog);
    }
    if (delegates.empty())
        return std::nullopt;
    lookup.isFinished = true;
    Lookup alone;
    alone.isAlone = true;
    alone.isVisited = lookup.isAlone ? lookup.isVisited : std::vector<bool>(catalogs.size());
    alone.*which = text;
    return lookUp({delegates.rbegin(), delegates.rend()}, alone);
}
