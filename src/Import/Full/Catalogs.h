#pragma once

#include "Files/FileFinder.h"
#include "Import/SourceReport.h"

#include <map>
#include <optional>
#include <set>
#include <unordered_map>

/// XML Catalogs (OASIS Standard 1.1, 2005): which local files stand for public and system identifiers, and for URIs.
/// Nothing is fetched over a network, and no other catalogue than the given ones and those that they name is read.
/// 1,000 catalogues and 100,000 entries are the bounds.
class Catalogs
{
public:
    explicit Catalogs(SourceReport& report) : report(report) {}

    /// Reads a catalogue and those that it names, each once. Throws SourceRefusal if it can't be read or is none; one
    /// that another one names is then left out, which the report says.
    void load(const CString& fileName);

    void clear();

    /// The absolute path for an external identifier; either may be empty. Nothing if no catalogue has an entry for it;
    /// "" if the entry names no local file.
    std::optional<CString> findExternal(std::string_view publicId, std::string_view systemId) const;

    /// The same for a URI: a namespace, or the location of a document, which may be listed as a system identifier, too.
    std::optional<CString> findUri(std::string_view uri) const;

private:
    friend class CatalogReader;

    enum Kind
    {
        system,
        rewriteSystem,
        systemSuffix,
        delegateSystem,
        publicIdentifier,
        delegatePublic,
        uri,
        rewriteUri,
        uriSuffix,
        delegateUri,
        nextCatalog,
        kindCount
    };

    // What relative references are relative to: a folder, or a place elsewhere.
    struct Base
    {
        CString folder;
        bool isRemote = false;
    };

    struct Entry
    {
        CString target; // a reference
        Base base;
        bool prefersPublic = true;
        std::optional<std::uint32_t> catalog; // of a delegate, once that has been read
    };

    // The entries of one kind; of two for the same the first one holds.
    struct Table
    {
        std::unordered_map<CString, Entry> entries;
        std::set<std::size_t, std::greater<>> lengths; // of their keys
    };

    struct Catalog
    {
        std::array<Table, kindCount> tables;
        std::vector<std::uint32_t> next;
    };

    // A catalogue that another one names.
    struct Named
    {
        std::uint32_t from;
        Kind kind;
        CString key;
        CString reference; // as it is written
        Base base;
        SourcePlace place;
    };

    struct Question
    {
        std::string_view publicId, systemId, uri;
        std::vector<bool> isAsked; // by catalogue
        bool isOver = false;       // what was found, or that nothing was, is final
    };

    static CString normalizedPublicId(std::string_view publicId);
    static CString pathOf(const CString& reference, const Base& base);
    std::uint32_t read(const FoundFile& file, const CString& shownName, const Named* named);
    void readNamed(const Named& named);
    std::optional<CString> ask(std::uint32_t catalog, Question& question) const;
    std::optional<CString> askOne(const Catalog& catalog, Question& question) const;
    std::optional<CString> askTable(const Table& table, std::string_view text) const;
    std::optional<CString> askRewrite(const Table& table, std::string_view text) const;
    std::optional<CString> askSuffix(const Table& table, std::string_view text) const;
    std::optional<CString> askDelegates(const Table& table, std::string_view text, Question& question,
                                        bool isPublic = false) const;
    std::optional<CString> askAll(Question question) const;

    SourceReport& report;
    std::vector<Catalog> catalogs;
    std::vector<std::uint32_t> given; // in their order
    std::map<FileId, std::uint32_t> known;
    std::vector<Named> waiting;
    std::size_t entryCount = 0;
    FileFinder finder;
};
