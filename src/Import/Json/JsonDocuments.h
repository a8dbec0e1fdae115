#pragma once

#include "Files/FileFinder.h"
#include "Import/Full/DocumentLinks.h"
#include "Import/Json/JsonTree.h"

#include <map>
#include <optional>

/// The documents of one import and what references in them lead to. Another document is a local file, read once.
class JsonDocuments
{
public:
    using Index = JsonNode::Index;

    JsonDocuments(SourceTypes& types, SourceReport& report) : types(types), report(report) {}

    /// Reads a source and returns its value; 0 if the file was read before. Throws SourceRefusal.
    Index load(const CString& fileName);

    /// What the `reference` that stands at `holder` leads to, by identifiers and anchors, else by file and pointer
    /// (RFC 6901). 0, and a loss, if that is nothing.
    Index resolve(Index holder, NameTable::Id reference);

    /// Whether a "$ref" is all that counts in its schema, as up to draft 7.
    bool ignoresSiblings(Index node) const { return documents[tree[node].document].ignoresSiblings; }

    /// Says that for the document of `node`, and for those that it refers to and that say nothing themselves.
    void setIgnoresSiblings(Index node, bool ignores) { documents[tree[node].document].ignoresSiblings = ignores; }

    /// Notes that what stands at `holder` is told by what stands at `node`.
    void link(Index holder, Index node) { links.add(tree[holder].document, tree[node].document); }

    /// Those of these values, by position and in order, whose documents no other one refers to. 0 is none.
    std::vector<std::size_t> findTops(std::span<const Index> roots) const;

    /// The value that the document of `node` is.
    Index rootOf(Index node) const { return documents[tree[node].document].root; }

    /// The name of the document's file without folder and suffix.
    CString nameOf(Index node) const;

    /// Notes what is not carried over, called `name` or else by its place in the document.
    void note(SourceReport::Construct construct, Index node, std::string_view name = {});

    JsonTree tree;

private:
    struct Document
    {
        Index root = 0;
        CString folder;
        CString uri; // by which relative identifiers are resolved
        bool ignoresSiblings = false;
    };

    // What a reference leads to, or why to nothing.
    struct Resolved
    {
        Index node = 0;
        SourceReport::Construct fault = SourceReport::unresolvedReference;
    };

    Index read(const CString& fileName, const CString& shownName, std::size_t most, bool ignoresSiblings);
    void findIdentifiers(Index first, bool isDraft4);
    void keepIdentifier(Index node, bool isDraft4);
    const CString& uriOf(Index resource) const;
    Index resourceOf(Index node) const;
    void lookUp(Index holder, std::string_view reference, Resolved& found);
    Index findDocument(Index holder, Index resource, std::string_view uri, SourceReport::Construct& fault);
    Index readNamed(const FoundFile& file, const CString& path, Index holder);
    Index followFragment(Index resource, std::string_view fragment) const;
    Index followPointer(Index from, std::string_view pointer) const;

    SourceTypes& types;
    SourceReport& report;
    FileFinder finder;
    DocumentLinks links;
    std::vector<Document> documents;                      // by their numbers in the report
    std::map<FileId, Index> parsed;                       // the value of each file; 0 for one that can't be read
    std::unordered_map<CString, Index> resources;         // by URI
    std::unordered_map<Index, CString> uris;              // of embedded resources
    std::unordered_map<std::uint64_t, Index> anchors;     // by resource and name
    std::unordered_map<std::uint64_t, Resolved> resolved; // by resource and reference
    std::size_t noted = 0;
};
