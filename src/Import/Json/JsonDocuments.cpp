#include "Import/Json/JsonDocuments.h"

#include "Base/Progress.h"
#include "Base/Utf8.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Json/JsonScanner.h"

#include <algorithm>
#include <filesystem>

// After a document is read, one pass over its nodes registers its identifiers and anchors; parents come before their
// children. Other documents are read when a reference first leads to them. Lookups are cached by resource and
// reference, because many places may refer to the same schema.
namespace {

using Index = JsonNode::Index;

constexpr std::size_t kStart = 1'000;        // bytes of a file that are tested for XML
constexpr std::size_t kMaxPointers = 10'000; // that the report shows, because building one takes a walk up the tree
constexpr std::size_t kMaxUri = 2'000;       // bytes of an identifier; each reference is resolved against one
constexpr std::size_t kMaxDigits = 4;        // in the array index of a pointer, which bounds the walk

// Returns the length of a URI's scheme with its colon; 0 if there is none. A single letter is a drive, not a scheme.
std::size_t schemeLength(std::string_view uri)
{
    const std::size_t end = uri.find_first_of(":/?#");
    return end == uri.npos || uri[end] != ':' || end < 2 ? 0 : end + 1;
}

// Resolves a reference against its base (RFC 3986, 5.2), with dot segments removed.
CString resolveUri(std::string_view base, std::string_view reference)
{
    if (schemeLength(reference) > 0 || base.empty())
        return CString(reference);
    const std::size_t scheme = schemeLength(base);
    std::size_t path = scheme;
    if (base.substr(scheme).starts_with("//"))
        path = std::min(base.find('/', scheme + 2), base.size());
    CString resolved(reference.starts_with("//")  ? base.substr(0, scheme)
                     : reference.starts_with('/') ? base.substr(0, path)
                                                  : base.substr(0, std::max(path, base.rfind('/') + 1)));
    while (!reference.empty()) {
        const std::size_t slash = std::min(reference.find('/'), reference.size());
        const std::string_view segment = reference.substr(0, slash);
        if (segment == ".." && resolved.size() > path + 1)
            resolved.resize(resolved.rfind('/', resolved.size() - 2) + 1);
        else if (segment != "." && segment != "..")
            resolved.append(reference.substr(0, slash + 1));
        reference.remove_prefix(std::min(slash + 1, reference.size()));
    }
    return resolved;
}

// Returns the role of a member by the role of its object.
JsonNode::Role roleUnder(JsonNode::Role role, JsonWord key)
{
    using enum JsonWord;
    if (role != JsonNode::statement)
        return role == JsonNode::names ? JsonNode::statement : JsonNode::data;
    if (isOneOf(key, {constWord, enumWord, defaultWord, example, examples}))
        return JsonNode::data;
    // The keys in these objects are names. "schemas" and "responses" are those of descriptions of APIs.
    const bool hasNames = isOneOf(
        key, {properties, patternProperties, defs, definitions, dependentSchemas, dependencies, schemas, responses});
    return hasNames ? JsonNode::names : JsonNode::statement;
}

} // namespace

JsonNode::Index JsonDocuments::load(const CString& fileName)
{
    // Without an identity, a file that is given twice is read twice.
    const auto id = identify(fileName);
    if (id && parsed.contains(*id))
        return 0;
    Index root = 0;
    try {
        CString text;
        if (const FileCause cause = readFile(fileName, text, kMaxNamedFile); cause != FileCause::none)
            throw SourceRefusal{cantOpen(fileName, cause), {fileName, inWords(fileName, cause)}};
        root = read(fileName, fileName, text, false);
    } catch (const JsonFault& fault) {
        throw refusalOf(fileName, fault);
    }
    if (root == 0)
        throw SourceRefusal{fileName + " holds no value.", {fileName, "it holds no value"}};
    if (id)
        parsed.emplace(*id, root);
    return root;
}

JsonNode::Index JsonDocuments::read(const CString& fileName, const CString& shownName, std::string_view text,
                                    bool ignoresSiblings)
{
    // Documents have the numbers of their files in the report, so that a place identifies its document. Files of other
    // kinds have numbers, too.
    const std::uint32_t number = report.addFile(shownName);
    documents.resize(number + 1);
    const std::string_view content = text.substr(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    // In YAML, "<<" is a key.
    if (const std::string_view start = trimmed(content.substr(0, kStart));
        start.starts_with('<') && !start.starts_with("<<"))
        throw SourceRefusal{shownName + ": it is XML, not JSON or YAML.", {shownName, "it is XML, not JSON or YAML"}};
    beginWork(Work::reading);
    const auto first = static_cast<Index>(tree.size());
    const Index root = readJsonTree(fileName, content, tree, types, report, number, withComments);
    Document& document = documents[number];
    document.root = root;
    document.folder = folderOf(fileName);
    document.ignoresSiblings = ignoresSiblings;
    const std::string_view version = tree.textOf(root, JsonWord::schemaVersion);
    const auto says = [version](const char* words) { return version.find(words) != version.npos; };
    // Since draft 2019-09 a "$ref" no longer replaces its siblings. Up to draft 4 the identifier is "id" instead of
    // "$id".
    const bool isDraft4 = says("draft-04") || says("draft-03");
    if (says("draft-03"))
        note(SourceReport::invalidValue, tree.find(root, JsonWord::schemaVersion), "draft 3, read as draft 4,");
    if (isDraft4 || says("draft-06") || says("draft-07"))
        document.ignoresSiblings = true;
    else if (!version.empty())
        document.ignoresSiblings = false;
    // Documents may refer to each other by path, even if they also have identifiers.
    const CString uri = document.folder + fileName.substr(fileName.rfind('/') + 1);
    uris[root] = uri;
    resources.try_emplace(uri, root);
    findIdentifiers(first, isDraft4);
    return root;
}

// Registers the identifiers of a document, but not what looks like one in data or beside a "$ref" that replaces it. A
// schema's own identifier is registered before those inside it, which are relative to it, whatever its place among the
// members.
void JsonDocuments::findIdentifiers(Index first, bool isDraft4)
{
    std::vector<Index> identified;
    for (Index at = first; at < tree.size(); ++at) {
        JsonNode& node = tree[at];
        if (node.parent == 0)
            continue;
        const JsonNode::Role around = tree[node.parent].role;
        node.role = tree.is(node.parent, JsonNode::object) ? roleUnder(around, tree.keyOf(at)) : around;
        if (node.kind != JsonNode::string || around != JsonNode::statement)
            continue;
        const JsonWord key = tree.keyOf(at);
        // The identifier of a whole document, since OpenAPI 3.2.
        const bool isSelf =
            key == JsonWord::self && tree[node.parent].parent == 0 && tree.find(node.parent, JsonWord::openapi) != 0;
        const bool isIdentifier = isOneOf(key, {JsonWord::dollarId, JsonWord::anchor, JsonWord::dynamicAnchor}) ||
                                  (isDraft4 && key == JsonWord::id) || isSelf;
        if (isIdentifier && !(documents[node.place.file].ignoresSiblings &&
                              tree.find(node.parent, JsonWord::ref, JsonNode::string) != 0))
            identified.push_back(at);
    }
    std::ranges::stable_sort(identified, {}, [this](Index at) {
        return std::pair(tree[at].parent, tree.keyOf(at) != JsonWord::dollarId && tree.keyOf(at) != JsonWord::id);
    });
    for (const Index at : identified)
        keepIdentifier(at, isDraft4);
}

// Registers an identifier or anchor for its schema. The first one of a name takes precedence; another is a loss.
void JsonDocuments::keepIdentifier(Index node, bool isDraft4)
{
    const Index schema = tree[node].parent;
    const std::string_view identifier = tree.text(node);
    const JsonWord key = tree.keyOf(node);
    Index known = schema; // the schema that already has this identifier
    const bool isAnchor = isOneOf(key, {JsonWord::anchor, JsonWord::dynamicAnchor});
    // Up to draft 7, an identifier that is only a fragment is an anchor.
    if (isAnchor || identifier.starts_with('#')) {
        const NameTable::Id anchor = tree.names.intern(identifier.substr(isAnchor ? 0 : 1));
        known = anchors.try_emplace(joined(resourceOf(schema), anchor), schema).first->second;
    } else if (!identifier.empty() && (!isDraft4 || key == JsonWord::id)) {
        const Index around = resourceOf(tree[schema].parent == 0 ? schema : tree[schema].parent);
        const std::string_view name = identifier.substr(0, identifier.find('#'));
        const CString uri = resolveUri(uris.at(around), name);
        if (uri.size() > kMaxUri)
            return note(SourceReport::invalidValue, node, tree.text(node));
        types.spend(2 * uri.size()); // kept twice, and many may begin with the same long text
        tree[schema].isResource = true;
        uris[schema] = uri;
        known = resources.try_emplace(uri, schema).first->second;
    }
    if (known != schema)
        note(SourceReport::declaredTwice, node, tree.text(node));
}

// Returns the nearest schema around a node that has its own identifier, else the document's root.
JsonNode::Index JsonDocuments::resourceOf(Index node) const
{
    while (!tree[node].isResource && tree[node].parent != 0)
        node = tree[node].parent;
    return node;
}

JsonNode::Index JsonDocuments::resolve(Index holder, bool mayBeText)
{
    const NameTable::Id reference = tree[tree.target(holder)].text;
    // Cached by resource, because the same reference leads elsewhere in another one.
    const std::uint64_t key = joined(resourceOf(holder), reference);
    const auto [known, isNew] = references.try_emplace(key);
    if (isNew)
        known->second = lookUp(holder, tree.names[reference]);
    const auto [node, fault] = known->second;
    // A title or a list may be there, but no schema.
    const bool isSchema = tree.is(node, JsonNode::object) || tree.is(node, JsonNode::boolean) ||
                          (mayBeText && tree.is(node, JsonNode::string));
    if (!isSchema)
        note(fault, holder, tree.names[reference]);
    return isSchema ? node : 0;
}

// Finds the resource with the URI of a reference, and in it the part that the fragment refers to. Without a URI, the
// resource is the one around the reference.
JsonDocuments::Resolved JsonDocuments::lookUp(Index holder, std::string_view reference)
{
    const std::size_t hash = std::min(reference.find('#'), reference.size());
    const std::string_view uri = reference.substr(0, hash);
    const std::string_view fragment = reference.substr(std::min(hash + 1, reference.size()));
    const Index own = resourceOf(holder);
    const Resolved resource = uri.empty() ? Resolved{own} : findDocument(holder, own, uri);
    if (resource.node == 0)
        return resource;
    Resolved found{tree.target(followFragment(resource.node, fragment))};
    if (found.node == 0) // many documents write pointers from the root, although a schema between has an identifier
        found.node = tree.target(followFragment(rootOf(resource.node), fragment));
    if (found.node != 0)
        link(holder, found.node);
    return found;
}

// Returns the resource with a URI: a known one, else the local file, which is read. An identifier takes precedence,
// because documents given together may refer to each other by URLs.
JsonDocuments::Resolved JsonDocuments::findDocument(Index holder, Index resource, std::string_view uri)
{
    const CString resolved = resolveUri(uris.at(resource), uri);
    if (const auto known = resources.find(resolved); known != resources.end())
        return {known->second};
    if (localPath(uri).empty())
        return {0, SourceReport::moduleRemote};
    CString path;
    const auto file = findFile(documents[tree[holder].place.file].folder, resolved, uri, path);
    if (!file)
        return {0, SourceReport::moduleMissing};
    // Entered before it is read, so that a document that fails isn't read again.
    const auto [entry, isNew] = parsed.try_emplace(file->id);
    if (isNew) {
        const bool wasPaused = report.pause(false); // documents are read once, and their own losses found then
        entry->second = readNamed(*file, path, holder);
        report.pause(wasPaused);
    }
    return {entry->second};
}

// Returns the file that a reference in a document of `folder` leads to, and sets its path from there. Identifiers of
// files are often URLs, or paths on a server, so a file that isn't at the resolved URI is searched beside the document.
std::optional<FoundFile> JsonDocuments::findFile(const CString& folder, const CString& resolved, std::string_view uri,
                                                 CString& path)
{
    // A URI loses its dot segments before it is a path, so "sub/../b.json" needs no folder "sub".
    const auto normalized = [](std::string_view reference) {
        return std::filesystem::path(localPath(reference)).lexically_normal().string();
    };
    const bool isLocal = schemeLength(resolved) == 0 && !resolved.starts_with("//");
    path = isLocal ? normalized(std::filesystem::path(resolved).lexically_relative(folder).string()) : "";
    auto file = finder.find(folder, path);
    if (!file) {
        path = normalized(uri);
        file = finder.find(folder, path);
    }
    return file;
}

// Reads a document that `holder` refers to. Returns 0 and reports a loss if it is neither JSON nor YAML.
JsonNode::Index JsonDocuments::readNamed(const FoundFile& file, const CString& path, Index holder)
{
    const SourcePlace from = tree[holder].place;
    const CString fromName = report.fileNameOf(from.file);
    const CString shownName = shownFrom(fromName, documents[from.file].folder, path, file);
    const CString named = " (named in " + placeInWords(fromName, from.line, from.column) + ")";
    // The user can give access to a file that exists, so one that can't be read is no loss.
    CString text;
    if (const FileCause cause = readFile(file.name, text, kMaxNamedFile); cause != FileCause::none)
        throw SourceRefusal{cantOpen(shownName, cause), report.faultAt(from, path + ": " + inWords(file.name, cause))};
    try {
        return read(file.name, shownName, text, ignoresSiblings(holder));
    } catch (const JsonFault& fault) {
        report.add(SourceReport::moduleIllFormed, {report.fileCount() - 1, fault.line, fault.column},
                   fault.reason + named);
    } catch (const SourceRefusal& refusal) {
        if (refusal.fault.file.empty()) // a bound of the import
            throw;
        report.add(SourceReport::moduleUnreadable, from, path + ": " + refusal.fault.reason);
    }
    return 0;
}

// A fragment is a JSON pointer if it begins with a slash, else an anchor (JSON Schema 2020-12, 8.2.2); both are
// percent-encoded in a URI.
JsonNode::Index JsonDocuments::followFragment(Index resource, std::string_view fragment) const
{
    if (fragment.empty())
        return resource;
    if (fragment.starts_with('/'))
        return followPointer(resource, withoutEscapes(fragment));
    const auto name = tree.names.find(withoutEscapes(fragment));
    const auto found = name ? anchors.find(joined(resource, *name)) : anchors.end();
    return found == anchors.end() ? 0 : found->second;
}

// Returns the value at a JSON pointer from a node; 0 if there is none.
JsonNode::Index JsonDocuments::followPointer(Index from, std::string_view pointer) const
{
    Index at = from;
    while (!pointer.empty() && at != 0) {
        pointer.remove_prefix(1);
        const std::size_t end = std::min(pointer.find('/'), pointer.size());
        CString step;
        for (std::size_t i = 0; i < end; ++i) {
            const bool isEscape = pointer[i] == '~' && i + 1 < end && (pointer[i + 1] == '0' || pointer[i + 1] == '1');
            // The escapes of JSON Pointer (RFC 6901): "~0" is '~', "~1" is '/'.
            step += !isEscape ? pointer[i] : pointer[i + 1] == '0' ? '~' : '/';
            i += isEscape ? 1 : 0;
        }
        pointer.remove_prefix(end);
        if (tree.is(at, JsonNode::array)) {
            const bool isNumber =
                !step.empty() && step.size() <= kMaxDigits && step.find_first_not_of("0123456789") == step.npos;
            Index child = isNumber ? tree[at].firstChild : 0;
            for (int position = isNumber ? std::stoi(step) : 0; position > 0 && child != 0; --position)
                child = tree[child].next;
            at = tree.target(child);
        } else {
            at = tree.find(at, std::string_view(step));
        }
    }
    return at;
}

// Zeros get the number after the last document, so that all of them are one document without links.
std::vector<std::size_t> JsonDocuments::findTops(std::span<const Index> roots) const
{
    std::vector<DocumentLinks::Index> given;
    for (const Index root : roots)
        given.push_back(root != 0 ? tree[root].place.file : report.fileCount());
    return links.findTops(given);
}

std::vector<JsonNode::Index> JsonDocuments::findOthers(std::span<const Index> roots) const
{
    std::vector<Index> others;
    for (const Document& document : documents)
        if (document.root != 0 && std::ranges::find(roots, document.root) == roots.end())
            others.push_back(document.root);
    return others;
}

CString JsonDocuments::nameOf(Index node) const
{
    return CString(stemOf(report.fileNameOf(tree[node].place.file)));
}

bool JsonDocuments::hasDefinition(std::string_view name) const
{
    return std::ranges::any_of(documents, [&](const Document& document) {
        return std::ranges::any_of(definitionsOf(document.root),
                                   [&](Index holder) { return tree.find(holder, name) != 0; });
    });
}

bool JsonDocuments::isDeclared(Index schema) const
{
    const Index parent = tree[schema].parent;
    if (parent == 0)
        return !isMade(schema);
    return tree.is(parent, JsonNode::object) && tree[parent].role == JsonNode::names &&
           isOneOf(tree.keyOf(parent), {JsonWord::defs, JsonWord::definitions, JsonWord::schemas});
}

JsonNode::Index JsonDocuments::originOf(Index node) const
{
    Index made = node;
    while (isMade(made)) {
        if (!tree.is(tree[made].firstChild, JsonNode::alias))
            return node;
        made = tree.target(tree[made].firstChild);
    }
    return made;
}

void JsonDocuments::refuse(Index node, const CString& reason) const
{
    const CString& file = report.fileNameOf(tree[node].place.file);
    throw SourceRefusal{file + ": " + reason + ".", {file, reason}};
}

void JsonDocuments::note(SourceReport::Construct construct, Index node, std::string_view name)
{
    CString words(name);
    node = originOf(node);
    const bool isReference = tree.keyOf(node) == JsonWord::ref; // reported at the schema that holds it
    if (++pointers <= kMaxPointers)
        words += (words.empty() ? "" : " at ") + tree.pointerTo(isReference ? tree[node].parent : node);
    report.add(construct, tree[node].place, words);
}
