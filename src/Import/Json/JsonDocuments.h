#pragma once

#include "Base/NumberTable.h"
#include "Files/FileFinder.h"
#include "Import/Full/DocumentLinks.h"
#include "Import/Json/JsonTree.h"

#include <array>
#include <map>
#include <optional>

/// The documents of one import, with their references resolved. Other documents are local files, each read once.
///
/// A resource is a schema with an identifier of its own, or a document: references and anchors inside it are relative
/// to its URI (JSON Schema 2020-12, 8.2.1). A document without an identifier has its path as URI.
class JsonDocuments
{
public:
    using Index = JsonNode::Index;

    /// `types` and `report` must outlive this object; `types` is only used for bounds. `withComments` allows comments
    /// in JSON.
    JsonDocuments(SourceTypes& types, SourceReport& report, bool withComments) :
        types(types), report(report), withComments(withComments)
    {}

    /// Reads a source and returns its root; 0 if the file was read before. Throws SourceRefusal if it can't be read.
    Index load(const CString& fileName);

    /// Returns the node that the text of `holder`, a reference, leads to: by identifier or anchor, else by file and
    /// JSON pointer (RFC 6901). Returns 0 and reports a loss if there is none. It may be a string only with
    /// `mayBeText`. Can read further documents, and so move nodes of the tree.
    Index resolve(Index holder, bool mayBeText = false);

    /// Returns whether a "$ref" replaces all other keywords of its schema, as up to draft 7, in OpenAPI 3.0 and
    /// AsyncAPI.
    bool ignoresSiblings(Index node) const { return documents[tree[node].place.file].ignoresSiblings; }

    /// Sets that for the document of `node`. Documents it refers to inherit it, unless they declare a version.
    void setIgnoresSiblings(Index node, bool ignores) { documents[tree[node].place.file].ignoresSiblings = ignores; }

    /// Records that the document of `holder` refers to that of `node`.
    void link(Index holder, Index node) { links.add(tree[holder].place.file, tree[node].place.file); }

    /// Returns the positions, in order, of those roots whose documents no other document refers to. Zeros count as one
    /// document.
    std::vector<std::size_t> findTops(std::span<const Index> roots) const;

    /// Returns the root of the document of `node`.
    Index rootOf(Index node) const { return documents[tree[node].place.file].root; }

    /// Returns the objects that hold the definitions of a document; 0 for those that it lacks.
    std::array<Index, 3> definitionsOf(Index root) const
    {
        return {tree.find(root, JsonWord::defs), tree.find(root, JsonWord::definitions),
                tree.find(tree.find(root, JsonWord::components), JsonWord::schemas)};
    }

    /// Returns whether one of the documents read so far has a definition of that name.
    bool hasDefinition(std::string_view name) const;

    /// Returns whether a node was made by a reader: it has no parent, but is not the root of a document.
    bool isMade(Index node) const { return tree[node].parent == 0 && rootOf(node) != node; }

    /// Returns the first of the document's schemas that a made one combines; any other node itself.
    Index originOf(Index node) const;

    /// Returns whether a schema is declared by name, or is the whole document.
    bool isDeclared(Index schema) const;

    /// Returns the roots of the documents that were read, except those in `roots`, in order of reading.
    std::vector<Index> findOthers(std::span<const Index> roots) const;

    /// Returns the name of the document's file without folder and suffix.
    CString nameOf(Index node) const;

    /// Returns the folder of the document of `node`, the base of relative references.
    const CString& queryFolder(Index node) const { return documents[tree[node].place.file].folder; }

    /// Throws SourceRefusal: the document of `node` can't be imported for this reason.
    [[noreturn]] void refuse(Index node, const CString& reason) const;

    /// Reports a loss at `node`, with `name` and the node's JSON pointer.
    void note(SourceReport::Construct construct, Index node, std::string_view name = {});

    JsonTree tree;

private:
    // A document in the tree. It has no root if it can't be read, or if its number belongs to a file of another kind.
    struct Document
    {
        Index root = 0;
        CString folder;
        bool ignoresSiblings = false; // a "$ref" replaces the other keywords of its schema
    };

    // The target of a reference, else the reason why there is none.
    struct Resolved
    {
        Index node = 0;
        SourceReport::Construct fault = SourceReport::unresolvedReference;
    };

    Index read(const CString& fileName, const CString& shownName, std::string_view text, bool ignoresSiblings);
    void findIdentifiers(Index first, bool isDraft4);
    void keepIdentifier(Index node, bool isDraft4);
    Index resourceOf(Index node) const;
    Resolved lookUp(Index holder, std::string_view reference);
    Resolved findDocument(Index holder, Index resource, std::string_view uri);
    std::optional<FoundFile> findFile(const CString& folder, const CString& resolved, std::string_view uri,
                                      CString& path);
    Index readNamed(const FoundFile& file, const CString& path, Index holder);
    Index followFragment(Index resource, std::string_view fragment) const;
    Index followPointer(Index from, std::string_view pointer) const;

    SourceTypes& types;
    SourceReport& report;
    const bool withComments;
    FileFinder finder;
    DocumentLinks links;
    std::vector<Document> documents;                                    // by number in the report
    std::map<FileId, Index> parsed;                                     // root by file; 0 if the file can't be read
    std::unordered_map<CString, Index, KeyHash> resources;              // by URI
    std::unordered_map<Index, CString> uris;                            // of resources, the bases of references
    std::unordered_map<std::uint64_t, Index, NumberHash> anchors;       // by resource and name
    std::unordered_map<std::uint64_t, Resolved, NumberHash> references; // by resource and reference
    std::size_t pointers = 0;                                           // shown by the report so far
};
