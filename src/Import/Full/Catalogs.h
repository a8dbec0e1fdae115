#pragma once

#include "Base/KeyedTable.h"
#include "Files/FileFinder.h"
#include "Import/SourceReport.h"

#include <map>
#include <optional>
#include <set>
#include <unordered_map>

/// Returns `files`, then the readable catalogues that the environment variable XML_CATALOG_FILES names, by their paths.
/// environmentCatalogErrors() returns the others.
std::vector<CString> withEnvironmentCatalogs(std::vector<CString> files);

/// Returns a line for each catalogue of the environment that can't be read: the variable, the catalogue and the reason.
std::vector<CString> environmentCatalogErrors();

/// XML Catalogs (OASIS Standard 1.1, 2005): map public and system identifiers and URIs to local files. Nothing is
/// fetched over a network. Only the given catalogues and those that they refer to are read; at most 1,000 catalogues
/// with 100,000 entries. Each import makes a new object, so that changed catalogues are read again.
class Catalogs
{
public:
    /// `report` must outlive this object. It gets the faults of catalogues that others refer to.
    explicit Catalogs(SourceReport& report) : report(report) {}

    /// Reads a catalogue and those that it refers to, each once. Throws SourceRefusal if it can't be read or is no
    /// catalogue, or if there are too many catalogues or entries. A faulty catalogue that another one refers to is left
    /// out and reported. Catalogues loaded first take precedence.
    void load(const CString& fileName);

    /// Returns the absolute path for an external identifier; one of the two parts may be empty. Nothing if no catalogue
    /// has an entry for it; "" if the entry leads to no local file. The file need not exist. Identifiers of more than
    /// 4,096 bytes are not looked up.
    std::optional<CString> findExternal(std::string_view publicId, std::string_view systemId) const;

    /// The same for a URI: a namespace, or the location of a document, which is also searched among the system
    /// identifiers.
    std::optional<CString> findUri(std::string_view uri) const;

private:
    friend class CatalogReader;

    // Named after the elements. The preferred ones are also entered as plain ones.
    enum Kind
    {
        system,
        rewriteSystem,
        systemSuffix,
        delegateSystem,
        publicIdentifier,
        preferredPublic, // where `prefer` is public
        delegatePublic,
        preferredDelegate,
        uri,
        rewriteUri,
        uriSuffix,
        delegateUri,
        nextCatalog,
        kindCount
    };

    // The folder of relative references, from xml:base or of the catalogue, with a slash at the end. No value for a
    // remote location.
    using Base = std::optional<CString>;

    // The target of an entry. Its key is in the table.
    struct Entry
    {
        CString target; // as written
        Base base;
        std::optional<std::uint32_t> catalog; // number of a delegate, once it has been read
    };

    // The entries of one kind. The first entry for a key takes precedence.
    struct Table
    {
        std::unordered_map<CString, Entry, KeyHash> entries;
        std::set<std::size_t, std::greater<>> lengths; // lengths of the keys, longest first

        const Entry* find(std::string_view key) const
        {
            const auto entry = entries.find(CString(key));
            return entry == entries.end() ? nullptr : &entry->second;
        }
    };

    // One file. Its tables are by Kind; that of nextCatalog stays empty, because these entries have no key.
    struct Catalog
    {
        std::array<Table, kindCount> tables;
        std::vector<std::uint32_t> next; // numbers of its nextCatalog entries that could be read
    };

    // A reference from one catalogue to another.
    struct Named
    {
        std::uint32_t from; // number of the catalogue that refers
        Kind kind;
        CString key;
        CString reference; // as written
        Base base;
        SourcePlace place; // of the entry
    };

    // What is looked up, and how far the search is.
    struct Lookup
    {
        std::string_view publicId, systemId, uri; // normalized; "" if not looked up
        std::vector<bool> isVisited;              // by catalogue
        bool isAlone = false;                     // only the identifier of a delegation is left
        bool isFinished = false;                  // the result is final
    };
    using Identifier = std::string_view Lookup::*;

    static CString normalizedPublicId(std::string_view publicId);
    static CString pathOf(const CString& reference, const Base& base);
    std::uint32_t read(const FoundFile& file, const Named* named);
    void readNamed(const Named& named);
    std::optional<CString> lookUp(std::vector<std::uint32_t> open, Lookup& lookup) const;
    std::optional<CString> lookUpOne(const Catalog& catalog, Lookup& lookup) const;
    std::optional<CString> lookUpExact(const Table& table, std::string_view text) const;
    std::optional<CString> lookUpRewrite(const Table& table, std::string_view text) const;
    std::optional<CString> lookUpSuffix(const Table& table, std::string_view text) const;
    std::optional<CString> lookUpDelegates(const Table& table, Identifier which, Lookup& lookup) const;
    std::optional<CString> lookUpAll(Lookup lookup) const;

    SourceReport& report;
    std::vector<Catalog> catalogs;           // by number; empty if it couldn't be read
    std::vector<std::uint32_t> mainCatalogs; // those of the caller, in order
    std::map<FileId, std::uint32_t> known;   // number of the catalogue by file
    std::vector<Named> waiting;              // references that haven't been read yet
    std::size_t entryCount = 0;
    FileFinder finder;
};
