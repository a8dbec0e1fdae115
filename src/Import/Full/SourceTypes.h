#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"
#include "Import/SourceReport.h"

#include <deque>
#include <map>
#include <memory_resource>
#include <span>
#include <unordered_map>

/// The types that a source declares, by index, before they have their final names: records with fields, enumerations,
/// and the elements that a message may start with. A reader fills it; SourceNames names, MainElement chooses,
/// FullMessage declares.
class SourceTypes
{
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = 0xFFFFFFFF;

    enum Kind : std::uint8_t
    {
        kindText,
        kindNumber,
        kindTime,
        kindEnumeration,
        kindRecord,
        kindTable ///< made of fields that repeat when they are named; not for readers
    };

    /// A kind; for the last three with the index of what it is.
    struct Type
    {
        Kind kind = kindText;
        Index index = kNone;

        friend bool operator==(const Type&, const Type&) = default;
    };

    enum Role : std::uint8_t
    {
        roleValue, ///< the text beside fields
        roleElement,
        roleAttribute
    };

    struct Field
    {
        std::string_view name; ///< as the source says it; lives as long as the types, see keep()
        std::string_view description{};
        Type type{};
        Role role = roleElement;
        std::uint16_t repeats = 0; ///< how many tables inside each other hold its values
    };

    struct Record
    {
        std::string_view name;
        std::string_view description{};
        SourcePlace place{};
        Index home = kNone; ///< the record inside which it is declared, whose name goes before a name that is taken
        Index space = 0;    ///< see spaceOf()
        Index firstField = 0;
        Index fieldCount = 0;
    };

    struct Enumeration
    {
        std::string_view name;
        std::string_view description{};
        bool isNamed = false; ///< has the name of a declared type, and is imported even when no field has it
        SourcePlace place{};  ///< of that type
        Index space = 0;      ///< see spaceOf()
        Index firstConstant = 0;
        Index constantCount = 0;
    };

    struct Table
    {
        std::string_view name; ///< with its "t_"
        Type component;
        Index space = 0; ///< of the records whose fields are of it
    };

    /// What a message may start with: an element that is declared at the top.
    struct Candidate
    {
        std::string_view name;
        Type type;
        bool isAbstract = false;
        SourcePlace place{};
        bool hasAbstractType = false;
        std::string_view uri{};    ///< its namespace
        Index source = 0;          ///< the source of a set that declares it; kNone: a document that a source names does
        bool isType = false;       ///< a type rather than an element; it is a main type only where it is asked for
        Index space = 0;           ///< see spaceOf()
        std::uint16_t repeats = 0; ///< as of a field
        std::string_view description{};
        Index message = kNone; ///< its number among the main types that the sources themselves name, if it is one
        Index choice = kNone;  ///< among `choices`, if its type is abstract
    };

    /// A namespace in which types have their names to themselves.
    struct Space
    {
        std::string_view uri;
        CString folder; ///< as the caller wants it; "" where the URI says it
    };

    /// The folders that namespaces get by their URIs; types of URIs that share a folder share their names.
    using Folders = std::map<CString, CString>;

    /// `sourceName` is what a refusal names. With `folders` the namespaces of types are kept apart.
    explicit SourceTypes(const CString& sourceName, const Folders* folders = nullptr) :
        sourceName(sourceName), folders(folders)
    {}

    /// The index in `spaces` of a namespace, in which a type has its name to itself. 0, which is none, where types of
    /// all namespaces are kept together.
    Index spaceOf(std::string_view uri);

    /// The namespace whose types lie in a folder, which is made where there is none.
    Index spaceIn(const CString& folder);

    /// Gives each record and each enumeration the number that it has in these, wherever one is referred to.
    void renumber(std::span<const Index> newRecords, std::span<const Index> newEnumerations);

    /// A copy of `text` that lives as long as the types.
    std::string_view keep(std::string_view text);

    /// The same for `first`, "_" and `second`.
    std::string_view join(std::string_view first, std::string_view second);

    /// Keeps a whole text as long as the types live.
    std::string_view adopt(CString&& text) { return texts.emplace_back(std::move(text)); }

    /// A record without fields; it gets them by setFields(), so that a type may refer to one that is still being read.
    Index addRecord(const Record& record);

    /// Gives a record its fields, in their order, each name once in its namespace; once for each record. A million
    /// fields in all are the bound: what passes it throws SourceRefusal.
    void setFields(Index record, std::span<const Field> fields);

    /// Throws SourceRefusal when `count` more fields would pass the bound.
    void checkFields(std::size_t count) const;

    /// Throws SourceRefusal: the source has more than `what`.
    [[noreturn]] void refuse(const CString& what) const
    {
        const CString reason = "more than " + what + ", which is the bound";
        throw SourceRefusal{sourceName + ": " + reason + ".", {"", reason}};
    }

    /// The enumeration of these constants under this name, which is made when there is none like it yet. A million
    /// constants in all are the bound. `descriptions` has one for each constant, or none at all.
    Index addEnumeration(std::string_view name, std::span<const std::string_view> constants, bool isNamed,
                         std::string_view description = {}, SourcePlace place = {}, Index space = 0,
                         std::span<const std::string_view> descriptions = {});

    /// Counts text that the types take: 256 MB in all are the bound, what passes it throws SourceRefusal.
    void spend(std::size_t bytes);

    /// Notes an element that a message may start with, in the order of declaration.
    void addCandidate(const Candidate& candidate) { candidates.push_back(candidate); }

    std::size_t fieldCount() const { return fields.size(); }

    /// True when there is nothing to import.
    bool empty() const { return records.empty() && enumerations.empty() && candidates.empty(); }

    std::span<Field> fieldsOf(Index record)
    {
        return std::span(fields).subspan(records[record].firstField, records[record].fieldCount);
    }
    std::span<const Field> fieldsOf(Index record) const
    {
        return std::span(fields).subspan(records[record].firstField, records[record].fieldCount);
    }
    std::span<const std::string_view> constantsOf(Index enumeration) const
    {
        return std::span(constants).subspan(enumerations[enumeration].firstConstant,
                                            enumerations[enumeration].constantCount);
    }

    /// The description of one of them, counted from 0; empty if it has none.
    std::string_view describeConstant(Index enumeration, std::size_t constant) const
    {
        const std::size_t at = enumerations[enumeration].firstConstant + constant;
        return at < constantDescriptions.size() ? constantDescriptions[at] : std::string_view();
    }

    std::vector<Record> records;
    std::vector<Enumeration> enumerations;
    std::vector<Table> tables;
    std::vector<Candidate> candidates;
    std::vector<std::vector<Index>> choices;       ///< the records that may stand for one of an abstract type
    std::vector<std::pair<Index, Index>> choosers; ///< records, each with a choice that its fields offer
    std::vector<Space> spaces{{}};
    Index common = kNone; ///< the one for what several declare alike, if that is to be one type
    std::vector<std::pair<std::string_view, std::string_view>>
        prefixes{}; ///< that the sources declare, with their URIs

private:
    std::size_t nameSize(Type type) const;

    CString sourceName;
    const Folders* folders;
    std::unordered_map<std::string_view, Index, KeyHash> spacesByUri;
    std::size_t spent = 0;
    Arena memory;
    std::deque<CString> texts;
    std::vector<Field> fields;
    std::vector<std::string_view> constants;
    std::vector<std::string_view> constantDescriptions; // shorter where the last ones have none
    std::unordered_multimap<std::size_t, Index> enumerationsByHash;
};
