#include "Import/Schema/Full/SchemaSet.h"

#include "Import/Schema/Full/SchemaReader.h"
#include "Import/Schema/SchemaBuiltIns.h"
#include "Import/Schema/SchemaDocuments.h"

#include <algorithm>
#include <utility>

// The components of a document are added to the symbol tables once it has been read, before its references are
// followed. References are followed depth first, in document order. Of two components of one name, the first one in
// this walk takes precedence. Redefinitions are the exception: they replace components, and so are added when the
// document that they name has been followed completely.
//
// A file is parsed once. A document without a namespace is copied for each further namespace that includes it, so the
// work is linear in the nodes read and copied.

namespace {

// Nodes. Bounds the memory: a document without a namespace is copied for each namespace that includes it, so small
// files could multiply.
constexpr std::size_t kMaxCopied = 1'000'000;
// Levels. Without a limit, many notes in a deeply nested document would take quadratic time.
constexpr int kNearby = 100;

} // namespace

// Returns the kind of a component, nothing for other statements. Notations have no effect on types.
std::optional<SchemaSet::Kind> SchemaSet::kindOf(SchemaTag tag)
{
    switch (tag) {
    case SchemaTag::element:
        return element;
    case SchemaTag::attribute:
        return attribute;
    case SchemaTag::complexType:
    case SchemaTag::simpleType:
        return type;
    case SchemaTag::group:
        return group;
    case SchemaTag::attributeGroup:
        return attributeGroup;
    default:
        return std::nullopt;
    }
}

// Declares the components of a document, and of the documents that it refers to. A stack replaces recursion, because
// documents may include each other to any depth.
void SchemaSet::followAll(std::uint32_t document)
{
    std::vector<Following> waiting;
    declareAll(document, waiting);
    while (!waiting.empty()) {
        Following& top = waiting.back();
        if (top.redefine != 0) { // its document, with all that it refers to, has been read
            redefine(top);
            top.redefine = 0;
        }
        const Index reference = tree.firstOf(top.reference, SchemaTag::include, SchemaTag::import, SchemaTag::redefine);
        if (reference == 0) {
            waiting.pop_back();
            continue;
        }
        top.reference = tree[reference].next;
        top.redefine = tree[reference].tag == SchemaTag::redefine ? reference : 0;
        top.firstRead = static_cast<std::uint32_t>(tree.documents.size());
        follow(reference, waiting); // may move `top`
    }
}

// Adds a document without nodes, for the reader that is made next.
void SchemaSet::beginDocument(const CString& folder, std::uint32_t file)
{
    SchemaDocument& document = tree.documents.emplace_back();
    firstOfFile.push_back(static_cast<std::uint32_t>(tree.documents.size() - 1));
    document.folder = folder;
    document.file = file;
    document.end = static_cast<Index>(tree.size());
}

// Ends the last document, which stays without nodes if it could not be read. Returns `isRead`.
bool SchemaSet::endDocument(SchemaReader& reader, bool isRead)
{
    SchemaDocument& document = tree.documents.back();
    if (isRead) {
        reader.finish();
    } else {
        tree.dropFrom(document.end);
        document.root = 0;
    }
    document.end = static_cast<Index>(tree.size());
    return isRead;
}

// Returns the file of a document: by the catalogues, else by its location, else by its namespace. `path` is set to the
// path that led to it, else to that of its location. The location is looked up in the catalogues as written and as an
// absolute URI, because they may list either form. An entry that refers to no file is skipped.
std::optional<FoundFile> SchemaSet::locate(const Location& wanted, CString& path)
{
    const CString own = localPath(wanted.location);
    const auto listed = [&](std::string_view uri) {
        path = uri.empty() ? CString() : catalogs.findUri(uri).value_or(CString());
        return finder.find({}, path);
    };
    auto file = listed(wanted.location);
    if (!file && !own.empty() && !own.starts_with('/'))
        file = listed("file://" + wanted.folder + own);
    if (!file && !own.empty())
        file = finder.find(wanted.folder, path = own);
    if (!file)
        file = listed(wanted.space);
    if (!file)
        path = own;
    return file;
}

// Enters the document of an include, import or redefine, if it is new in its namespace.
void SchemaSet::follow(Index reference, std::vector<Following>& waiting)
{
    // Both references are dangling once a document has been read.
    const SchemaNode& node = tree[reference];
    const SchemaDocument& from = tree.documentOf(reference);
    // A document without a namespace takes that of the document that includes it, but not of one that imports it (XML
    // Schema Part 1, 4.2.1 and 4.2.3).
    const NameTable::Id includer = node.tag == SchemaTag::import ? 0 : from.space;
    CString path;
    const NameTable::Id wanted = node.tag == SchemaTag::import ? node.reference.space : 0;
    const auto file = locate({tree.text(node.name), from.folder, tree.text(wanted)}, path);
    if (!file && !node.hasName()) // an import may omit it; for the others that has been reported
        return;
    if (!file)
        return note(path.empty() ? SourceReport::moduleRemote : SourceReport::moduleMissing, reference);
    const auto [known, isNew] = parsed.try_emplace(file->id, static_cast<std::uint32_t>(tree.documents.size()));
    if (isNew)
        readNamed(*file, path, reference);
    std::uint32_t document = known->second;
    if (tree.documents[document].root == 0) // reported before
        return;
    const NameTable::Id space = tree.documents[document].hasTarget ? tree.documents[document].space : includer;
    const auto [place, isFirst] = entered.try_emplace(std::pair(file->id, space), document);
    if (isFirst) {
        if (isNew)
            tree.documents[document].space = space;
        else
            place->second = document = copy(document, space);
        declareAll(document, waiting);
    } else if (isInScope(place->second) && again.insert(place->second).second) {
        // The document is in the scope of an earlier schema, so its components are not among the common ones. They are
        // declared for this load, too.
        countCopied(place->second);
        declareAll(place->second, waiting);
    }
    documentsByReference[reference] = place->second;
}

// Reads the document at `path` that `reference` names. A document that is not a schema is left out. It keeps its number
// without nodes, so that further references to its file are not reported.
void SchemaSet::readNamed(const FoundFile& file, const CString& path, Index reference)
{
    const SchemaDocument& from = tree.documentOf(reference); // valid until beginDocument()
    const CString shownName = shownFrom(report.fileNameOf(from.file), from.folder, path, file);
    beginDocument(folderOf(file.name), report.addFile(shownName));
    SchemaReader reader(tree, report);
    XmlDocument xml;
    if (!endDocument(reader, xml.streamFile(file.name, reader, kMaxNamedFile) != 0))
        reportUnread({tree.documents.back().file, placeOf(reference), tree.text(tree[reference].name)}, xml, report);
    else if (tree.documents.back().root == 0)
        note(SourceReport::moduleUnreadable, reference);
}

// Bounds the nodes that are copied.
void SchemaSet::countCopied(std::uint32_t document)
{
    copied += tree.documents[document].end - tree.documents[document].root;
    if (copied > kMaxCopied)
        refuse(std::to_string(kMaxCopied) + " statements in copies of documents that several namespaces include");
}

// Copies a document. One without a namespace declares its components again in each namespace that includes it.
std::uint32_t SchemaSet::copy(std::uint32_t document, NameTable::Id space)
{
    countCopied(document);
    firstOfFile.push_back(firstOfFile[document]);
    return tree.adopt(document, space);
}

// Declares the components at the top of a document, and pushes it, so that its references are followed next. Also
// collects the elements with a head, because finding them later would visit all nodes again.
void SchemaSet::declareAll(std::uint32_t document, std::vector<Following>& waiting)
{
    const Index first = tree[tree.documents[document].root].firstChild;
    for (Index at = first; at != 0; at = tree[at].next) {
        declare(at, false);
        if (tree[at].tag == SchemaTag::element && tree[at].list != 0)
            substitutes.push_back(at);
    }
    waiting.push_back({document, first, 0, 0});
}

// Adds a component to the symbol table. A second declaration of a name is reported, unless it is an equal one in
// another file: many sets contain several copies of shared documents.
void SchemaSet::declare(Index component, bool redefines)
{
    const auto kind = kindOf(tree[component].tag);
    if (!kind || !tree[component].hasName())
        return;
    const auto [place, isFirst] = symbols[*kind].insert(nameOf(component).key(), component);
    if (isFirst)
        return;
    if (redefines)
        redefined[component] = std::exchange(place, component);
    else if (tree.documentOf(place).file == tree.documentOf(component).file || !tree.areEqual(place, component))
        note(SourceReport::declaredTwice, component);
}

// Declares the components of a redefine or override. Those of an override replace the ones of its document and of the
// documents that this one includes or overrides (XML Schema 1.1 Part 1, 4.2.5); if it is missing, they are added.
// Most of these documents are read for it; the others are only searched for if a component is in one read before.
void SchemaSet::redefine(const Following& redefinition)
{
    const SchemaNode& reference = tree[redefinition.redefine];
    const auto target = documentsByReference.find(redefinition.redefine);
    const bool overrides = reference.is(SchemaNode::isOverride) && target != documentsByReference.end();
    std::vector<std::uint32_t> documents;
    const auto isTarget = [&](Index at) {
        if (tree[at].document >= redefinition.firstRead)
            return true;
        if (documents.empty()) {
            documents = includedDocuments(target->second);
            std::ranges::sort(documents);
        }
        return std::ranges::binary_search(documents, tree[at].document);
    };
    for (Index at = reference.firstChild; at != 0; at = tree[at].next) {
        if (overrides)
            overrideIf(isTarget, at);
        else
            declare(at, true);
        if (tree[at].tag == SchemaTag::element && tree[at].list != 0)
            substitutes.push_back(at);
    }
}

// Replaces the component of that kind and name in a target. If there is none, the override has no effect. It has none
// either, which is a loss, if another override has replaced the component.
void SchemaSet::overrideIf(const std::function<bool(Index)>& isTarget, Index component)
{
    const auto kind = kindOf(tree[component].tag);
    if (!kind || !tree[component].hasName())
        return;
    const std::uint64_t key = nameOf(component).key();
    const Index* const found = symbols[*kind].find(key);
    if (found && isTarget(*found)) {
        overridden[component] = std::exchange(symbols[*kind].insert(key, component).first, component);
        return;
    }
    auto earlier = overridden.find(found ? *found : 0);
    while (earlier != overridden.end() && !isTarget(earlier->second))
        earlier = overridden.find(earlier->second);
    note(earlier == overridden.end() ? SourceReport::elementNotAllowed : SourceReport::declaredTwice, component);
}

SchemaSet::Index SchemaSet::find(Kind kind, SchemaName name, Index from) const
{
    const Index* const found = lookUp(kind, name, from);
    if (!found)
        return 0;
    if (redefined.empty() || !redefined.contains(*found))
        return *found;
    // The table holds the last redefinition. Where a redefinition of this name refers to what it redefines, the name
    // refers to the component before it. That is the base of a type, and any reference inside of a group (XML Schema
    // Part 1, 4.2.2). A component may be redefined several times in turn.
    Index component = from;
    while (component != 0 && tree[tree[component].parent].tag != SchemaTag::redefine)
        component = tree[component].parent;
    const bool isBase = tree[from].parent == component || tree.derivationOf(component) == from;
    const bool isOwnName =
        component != 0 && kindOf(tree[component].tag) == kind && nameOf(component) == name && (kind != type || isBase);
    const auto earlier = isOwnName ? redefined.find(component) : redefined.end();
    return earlier == redefined.end() ? *found : earlier->second;
}

// Returns the scope of a document; null if its components are the common ones. Scopes don't overlap and are in the
// order of their documents, which allows a binary search.
const SchemaSet::Scope* SchemaSet::scopeOf(std::uint32_t document) const
{
    const auto scope = std::ranges::upper_bound(scopes, document, {}, &Scope::end);
    return scope == scopes.end() || document < scope->begin ? nullptr : &*scope;
}

// Returns the component of that name in the scope of `from`, else the common one.
const SchemaSet::Index* SchemaSet::lookUp(Kind kind, SchemaName name, Index from) const
{
    if (const Scope* const scope = scopes.empty() ? nullptr : scopeOf(tree[from].document))
        if (const Index* const own = scope->symbols[kind].find(name.key()))
            return own;
    return symbols[kind].find(name.key());
}

// The encodings of SOAP declare base64, and types with the names of built-in ones, which they extend by attributes.
std::optional<SourceTypes::Kind> SchemaSet::builtInKind(SchemaName name) const
{
    const bool isSoap = SchemaTree::isSoapEncoding(name.space);
    if (isSoap && tree.text(name.local) == "base64")
        return SourceTypes::kindText;
    return isSoap || SchemaTree::isSchemaLanguage(name.space) ? ::builtInKind(tree.text(name.local)) : std::nullopt;
}

// Collects the elements that may replace a head (XML Schema Part 1, 2.2.2.2). An element is left out if references to
// its name lead to another declaration.
void SchemaSet::collectMembers()
{
    std::ranges::sort(substitutes); // into the order of declaration
    substitutes.erase(std::unique(substitutes.begin(), substitutes.end()), substitutes.end());
    for (const Index at : substitutes) {
        if (find(element, nameOf(at), at) != at)
            continue;
        for (const SchemaName name : tree.listOf(at))
            if (const Index head = find(element, name, at); head != 0)
                members[head].push_back(at);
            else
                note(SourceReport::unresolvedReference, at, name.local);
    }
}

const std::vector<SchemaSet::Index>& SchemaSet::membersOf(Index head) const
{
    static const std::vector<Index> none;
    const auto found = members.find(head);
    return found == members.end() ? none : found->second;
}

std::vector<SchemaSet::Index> SchemaSet::componentsOf(std::uint32_t main) const
{
    std::vector<Index> components;
    const auto add = [&](Index first) {
        for (Index at = first; at != 0; at = tree[at].next) {
            const auto kind = kindOf(tree[at].tag);
            if (!tree[at].hasName() || (kind != element && kind != type))
                continue;
            // Looked up by name, because references to it may lead to a redefinition or to an earlier declaration, and
            // from the parent, because inside of a redefinition the name refers to the redefined component.
            if (const Index found = find(*kind, nameOf(at), tree[at].parent); found != 0) // 0 in an override
                components.push_back(found);
        }
    };
    const auto topOf = [&](std::uint32_t document) { return tree[tree.documents[document].root].firstChild; };
    const auto addRedefined = [&](std::uint32_t document) {
        for (Index at = topOf(document); (at = tree.firstOf(at, SchemaTag::redefine)) != 0; at = tree[at].next)
            add(tree[at].firstChild);
    };
    add(topOf(main));
    const bool holdsOwn =
        std::ranges::any_of(components, [&](Index at) { return tree[at].tag != SchemaTag::simpleType; });
    addRedefined(main);
    // If a document has no elements and complex types of its own, those of the included documents are taken.
    if (!holdsOwn)
        for (const std::uint32_t document : includedDocuments(main)) {
            add(topOf(document));
            addRedefined(document);
        }
    return components;
}

std::vector<SchemaSet::Index> SchemaSet::componentsCalled(std::string_view name)
{
    const NameTable::Id local = tree.names.intern(name);
    std::vector<Index> found;
    for (const NameTable::Id space : spaces)
        for (const Kind kind : {element, type})
            if (const Index at = find(kind, {space, local}, 0); at != 0 && tree[at].tag != SchemaTag::simpleType)
                found.push_back(at);
    return found;
}

// Returns a document with all documents that it includes, redefines or overrides, directly or indirectly, the nearest
// first.
std::vector<std::uint32_t> SchemaSet::includedDocuments(std::uint32_t main) const
{
    std::vector<std::uint32_t> documents{main};
    std::vector<bool> met(tree.documents.size());
    met[main] = true;
    for (std::size_t i = 0; i < documents.size(); ++i) {
        Index at = tree[tree.documents[documents[i]].root].firstChild;
        for (; (at = tree.firstOf(at, SchemaTag::include, SchemaTag::redefine)) != 0; at = tree[at].next) {
            const auto included = documentsByReference.find(at);
            if (included != documentsByReference.end() && !met[included->second]) {
                met[included->second] = true;
                documents.push_back(included->second);
            }
        }
    }
    return documents;
}

// Returns whether a derivation has elements of its own.
bool SchemaSet::holdsElements(Index derivation) const
{
    const Index group = tree.childOf(derivation, SchemaTag::sequence, SchemaTag::all, SchemaTag::choice);
    return tree.childOf(derivation, SchemaTag::element) != 0 || (group != 0 && tree[group].firstChild != 0);
}

void SchemaSet::note(SourceReport::Construct construct, Index node, NameTable::Id name)
{
    if (construct == SourceReport::unresolvedContent && SchemaTree::isSoapEncoding(tree[node].reference.space) &&
        holdsElements(node))
        return; // an array that declares its items
    notes.emplace(node, construct, name);
}

// Passes the notes to the report in the order of nodes. It only needs their components while it holds constructs back.
void SchemaSet::reportNotes()
{
    const std::vector<Index> components = report.isHolding() ? findComponents() : std::vector<Index>();
    for (const auto& [node, construct, name] : notes) {
        const bool isReference =
            construct == SourceReport::unresolvedReference || construct == SourceReport::unresolvedContent;
        const NameTable::Id own = isReference ? tree[node].reference.local : tree[namedAround(node)].name;
        if (report.isHolding())
            report.enter(components[node]);
        report.add(construct, placeOf(node), tree.text(name != 0 ? name : own));
    }
    report.enter(0);
    notes.clear();
}

SchemaSet::Index SchemaSet::namedAround(Index node) const
{
    for (int steps = 0; steps < kNearby && !tree[node].hasName(); ++steps)
        node = tree[node].parent;
    return node;
}
