#pragma once

#include "Base/NumberTable.h"
#include "Files/FileFinder.h"
#include "Import/Full/Catalogs.h"
#include "Import/Full/SourceTypes.h"
#include "Import/Schema/Full/SchemaTree.h"
#include "Import/Schema/Full/WsdlReader.h"

#include <array>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

class XmlDocument;

/// The components of a schema and of all that it includes, imports and redefines
/// (https://www.w3.org/TR/xmlschema-1/#layer2), by kind, namespace and name. If two have the same key, the first one
/// takes precedence.
///
/// Use it in three steps: load() for each source, finish(), then all other functions. find() resolves references by
/// name when all documents are read, so documents may refer to each other in any order and in cycles.
class SchemaSet
{
public:
    using Index = SchemaNode::Index;

    /// The symbol spaces of XML Schema (Part 1, 2.5): names of different kinds don't collide.
    enum Kind
    {
        element,
        attribute,
        type,
        group,
        attributeGroup,
        kindCount
    };

    /// All three must outlive the set. `types` is only used for refusals.
    SchemaSet(const SourceTypes& types, SourceReport& report, const Catalogs& catalogs) :
        types(types), report(report), catalogs(catalogs)
    {}

    /// Reads a schema or WSDL, and the documents that it refers to, each once. These must be local regular files;
    /// missing ones are reported. Further calls add further schemas of the same set. Throws SourceRefusal if the schema
    /// itself, or an existing document, can't be read, or if a further file is not a schema. If the first file is not a
    /// schema, no types result, which the caller reports.
    void load(const CString& fileName);

    /// A schema inside of a document of another language. `text` must outlive the set.
    struct Embedded
    {
        std::string_view text; ///< the schema, or a reference to its file
        bool isReference;
        bool isLiteral; ///< the lines of the text are those of the document, from the line after `place` on
        SourcePlace place;
        CString folder; ///< of the document, the base of relative references
        CString name;   ///< its name in the document
    };

    /// Reads such a schema and the documents that it refers to. Returns its document; nothing if it is missing or no
    /// schema, which is reported. If it declares a name of an earlier schema differently, its own references lead to
    /// its own components.
    std::optional<std::uint32_t> load(const Embedded& schema);

    /// A document whose components belong to a source.
    struct Source
    {
        std::uint32_t document;
        std::uint32_t number; ///< number of the source, in the order of load()
    };

    /// Returns the documents of the sources; a WSDL has several. Leaves out those that another one of the set refers
    /// to, and repetitions of a file; of documents in a cycle the first one stays. Also collects the substitution
    /// groups and reports impossible names. Call it once, after all is loaded.
    std::vector<Source> finish();

    /// Returns the component that `name` refers to at the node `from`; 0 if there is none. The base of a redefined
    /// type, and the own name inside of a redefined group, are the component before (XML Schema Part 1, 4.2.2).
    Index find(Kind kind, SchemaName name, Index from) const;

    /// Records from now on which components are reached, so that the report can leave out the others. `withMessages`
    /// counts all messages as reached. Call it after finish(), because nodes that are added later have no place.
    void recordReached(bool withMessages);

    /// Records that a top-level component is reached; 0 for none. Does nothing before recordReached().
    void reach(Index component)
    {
        if (component != 0 && !reached.empty())
            markReached(component);
    }

    /// The same as find(), and records that the component is reached.
    Index reach(Kind kind, SchemaName name, Index from)
    {
        const Index found = find(kind, name, from);
        reach(found);
        return found;
    }

    /// Returns whether a component of the report is reached, or the one that references to its name lead to: the first
    /// declaration or a redefinition.
    bool isReached(SourceReport::Component component) const;

    /// Returns the kind of a built-in type; nothing for other names. Built-in types take precedence over declared ones,
    /// because the schema for schemas declares them, too.
    std::optional<SourceTypes::Kind> builtInKind(SchemaName name) const;

    /// Returns the direct members of the substitution group of the element `head`, in order of declaration.
    const std::vector<Index>& membersOf(Index head) const;

    /// Returns the top-level elements, complex types and simple types of a document, and those inside of redefinitions.
    /// A component that is declared twice is listed twice. If no element or complex type is outside of a redefinition,
    /// those of the included documents are added.
    std::vector<Index> componentsOf(std::uint32_t document) const;

    /// Returns the top-level elements and complex types of that name in any document, in the order in which their
    /// namespaces are first used. Components of embedded schemas that are kept apart are not found.
    std::vector<Index> componentsCalled(std::string_view name);

    /// Returns whether a WSDL is among the sources.
    bool holdsWsdl() const { return hasWsdl; }

    /// The element of a WSDL's message, and the number of its source.
    struct Message
    {
        Index element;
        std::uint32_t source;
    };

    /// Returns the messages of the WSDLs among the sources, each element once. Reports names of WSDLs that refer to
    /// nothing.
    std::vector<Message> findMessages();

    /// Returns the full name of a top-level component, in the namespace of its document.
    SchemaName nameOf(Index component) const { return {tree.documentOf(component).space, tree[component].name}; }

    /// Returns the place of a node.
    SourcePlace placeOf(Index node) const { return {tree.documentOf(node).file, tree[node].line, tree[node].column}; }

    /// Keeps a loss or detail for reportNotes(), with `name`, else the name of the node or of its reference. Types are
    /// worked out in any order, some of them twice; reportNotes() reports each note once, in the order of the source.
    void note(SourceReport::Construct construct, Index node, NameTable::Id name = 0);

    /// The same with a text as the name.
    void noteText(SourceReport::Construct construct, Index node, std::string_view name)
    {
        note(construct, node, tree.names.intern(name));
    }

    /// Drops everything kept by note().
    void dropNotes() { notes.clear(); }

    /// Returns the node or its nearest ancestor that has a name. The search is limited to the depth of real schemas.
    Index namedAround(Index node) const;

    /// Passes everything kept by note() to the report, in the order of reading, without repetitions.
    void reportNotes();

    /// Throws SourceRefusal: the schema has more than `what`.
    [[noreturn]] void refuse(const CString& what) const { types.refuse(what); }

    const SchemaTree& queryTree() const { return tree; }

private:
    // A document whose references are being followed: a level of the depth-first walk.
    struct Following
    {
        std::uint32_t document;
        Index reference;         // the next reference
        Index redefine;          // the reference whose document is being read, if it is a redefine
        std::uint32_t firstRead; // the first document that is read for it
    };

    // A file that was given, or that a WSDL refers to.
    struct SourceFile
    {
        CString name;
        CString shownName;
        SourcePlace namedAt;
        CString location; // the location as written in the WSDL; "" if the file was given
    };

    // A reference of a document to another one.
    struct Location
    {
        std::string_view location; // a reference
        const CString& folder;     // base of a relative location
        std::string_view space;    // namespace of the other document; "" if unknown
    };

    // The node comes first, because the order of nodes is that of reading.
    using Note = std::tuple<Index, SourceReport::Construct, NameTable::Id>; // a node and the name to report

    using Names = NumberTable;
    using Symbols = std::array<Names, kindCount>;

    // The components of embedded schemas that are kept apart from the others, and their documents: from `begin` up to
    // `end`, without it.
    struct Scope
    {
        std::uint32_t begin, end;
        Symbols symbols;
    };

    static std::optional<Kind> kindOf(SchemaTag tag);
    void followAll(std::uint32_t document);
    void loadOne(const SourceFile& file, std::vector<SourceFile>& files);
    std::vector<WsdlReader::Import> readSource(const SourceFile& file);
    void beginDocument(const CString& folder, std::uint32_t file);
    bool endDocument(SchemaReader& reader, bool isRead);
    void readText(const Embedded& schema);
    std::optional<std::uint32_t> loadReferred(const Embedded& schema);
    void follow(Index reference, std::vector<Following>& waiting);
    std::optional<FoundFile> locate(const Location& wanted, CString& path);
    void readNamed(const FoundFile& file, const CString& path, Index reference);
    void countCopied(std::uint32_t document);
    std::uint32_t copy(std::uint32_t document, NameTable::Id space);
    void declareAll(std::uint32_t document, std::vector<Following>& waiting);
    void declare(Index component, bool redefines);
    void redefine(const Following& redefinition);
    void overrideIf(const std::function<bool(Index)>& isTarget, Index component);
    template <class Visit>
    void visitLoaded(std::uint32_t begin, Visit visit) const;
    void endLoad(std::uint32_t begin, Symbols shared);
    const Scope* scopeOf(std::uint32_t document) const;
    bool isInScope(std::uint32_t document) const { return scopeOf(document) != nullptr; }
    const Index* lookUp(Kind kind, SchemaName name, Index from) const;
    void collectMembers();
    std::vector<std::uint32_t> includedDocuments(std::uint32_t document) const;
    bool holdsElements(Index derivation) const;
    void markReached(Index component);
    std::vector<Index> findComponents() const;

    SchemaTree tree;
    const SourceTypes& types;
    SourceReport& report;
    const Catalogs& catalogs;
    FileFinder finder;
    // A file is parsed once, even if that fails. It is entered once for each namespace: itself in the first one, a copy
    // in each further one.
    std::map<FileId, std::uint32_t> parsed; // first document by file
    std::map<std::pair<FileId, NameTable::Id>, std::uint32_t> entered;
    std::map<std::pair<std::string_view, std::uint32_t>, std::uint32_t> texts; // documents by text and file
    bool hasWsdl = false;
    std::vector<std::pair<WsdlReader::Root, std::uint32_t>> messages; // of WSDLs, with the number of the source
    std::unordered_set<NameTable::Id> wsdlNames;
    std::vector<WsdlReader::Use> wsdlUses;
    std::vector<Source> loaded;
    std::vector<NameTable::Id> spaces;      // namespaces of the documents, each once
    std::uint32_t loads = 0;                // number of load() calls so far
    std::vector<std::uint32_t> firstOfFile; // by document: the document that it is a copy of, else itself
    // The document by the include, import or redefine that refers to it. A reference to nothing has no entry.
    std::unordered_map<Index, std::uint32_t> documentsByReference;
    // While an embedded schema is loaded, only those of its own load.
    Symbols symbols;
    std::vector<Scope> scopes;                             // in order of their documents
    std::set<std::uint32_t> again;                         // documents of scopes that the schema being loaded refers to
    std::unordered_map<Index, Index> redefined;            // the redefined component by its redefinition
    std::unordered_map<Index, Index> overridden;           // the replaced component by the one of the override
    std::vector<Index> substitutes;                        // the top-level elements that name a head
    std::unordered_map<Index, std::vector<Index>> members; // by head
    std::size_t copied = 0;                                // number of copied nodes
    std::vector<bool> reached;                             // by node; empty until recordReached()
    std::unordered_set<NameTable::Id> reachedMessages;     // those of WSDLs, by name
    bool areMessagesReached = false;                       // all of them
    std::set<Note> notes;
};
