#pragma once

#include "Base/Arena.h"
#include "Base/KeyedTable.h"
#include "Base/LargePages.h"
#include "Import/SourceReport.h"

#include <deque>
#include <map>
#include <memory_resource>
#include <span>
#include <unordered_map>

/// The types that a source declares, by index, before they have their final names: records with fields, enumerations,
/// and candidates for main types. Readers fill it, MainElement chooses the main type, SourceNames gives names, and
/// FullMessage declares the types.
///
/// Indices are used because names aren't unique until SourceNames has run, and because they stay valid while lists
/// grow. Texts are views: of the source, of texts that adopt() has taken over, or of copies by keep().
class SourceTypes
{
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = 0xFFFFFFFF;

    /// The bounds of a source, also while a reader works the types out. The largest real sources have 22,000 fields.
    static constexpr std::size_t kMaxFields = 1'000'000, kMaxConstants = 1'000'000;

    /// The kind of a value. The first three kinds are plain; code relies on that order.
    enum Kind : std::uint8_t
    {
        kindText,
        kindNumber,
        kindTime,
        kindEnumeration,
        kindRecord,
        kindTable ///< made by SourceNames for repeating fields; readers don't use it
    };

    /// A kind; the last three kinds have the index of the type.
    struct Type
    {
        Kind kind = kindText;
        Index index = kNone; ///< in `enumerations`, `records` or `tables`

        friend bool operator==(const Type&, const Type&) = default;
    };

    /// The origin of a field. It decides which of two fields with the same name keeps the name, see SourceNames.
    enum Role : std::uint8_t
    {
        roleValue, ///< the text in addition to fields
        roleElement,
        roleAttribute
    };

    /// A field of a record. Optional and alternative fields are like all others, because the model doesn't distinguish
    /// them.
    struct Field
    {
        std::string_view name; ///< as in the source; a view that lives as long as the types, see keep()
        std::string_view description{};
        Type type{};
        Role role = roleElement;
        std::uint16_t repeats = 0; ///< number of nested tables around its values
    };

    /// A record. Its name is that of the source until SourceNames has run, then the final one, as for the other types.
    struct Record
    {
        std::string_view name;
        std::string_view description{};
        SourcePlace place{};
        Index home = kNone;   ///< the record that contains its declaration, used to make a taken name unique
        Index space = 0;      ///< see spaceOf()
        bool isNamed = false; ///< has the name of a declared type, which it keeps if others have no name of their own
        Index firstField = 0;
        Index fieldCount = 0;
    };

    /// An enumeration. constantsOf() returns its constants.
    struct Enumeration
    {
        std::string_view name;
        std::string_view description{};
        bool isNamed = false; ///< has the name of a declared type, so it is imported even if no field uses it
        SourcePlace place{};  ///< of that type
        Index space = 0;      ///< see spaceOf()
        Index firstConstant = 0;
        Index constantCount = 0;
    };

    /// A constant of an enumeration.
    struct Constant
    {
        std::string_view name;
        std::string_view description{};
    };

    /// A table, which fields of one name and type share.
    struct Table
    {
        std::string_view name; ///< with the prefix "t_"
        Type component;        ///< may be another table
        Index space = 0;       ///< namespace of the records that use it
    };

    /// A candidate for the main type: a top-level element, or a type that may be requested.
    struct Candidate
    {
        std::string_view name;
        Type type;
        bool isAbstract = false;
        SourcePlace place{};
        bool hasAbstractType = false;
        std::string_view uri{};    ///< its namespace
        Index source = 0;          ///< number of the source that declares it; kNone: a document that a source refers to
        bool isType = false;       ///< a type instead of an element; only a main type if requested
        Index space = 0;           ///< see spaceOf()
        std::uint16_t repeats = 0; ///< see Field::repeats
        std::string_view description{};
        Index message = kNone; ///< its number among the main types that the sources name; kNone if it is none
        Index choice = kNone;  ///< among `choices`, if its type is abstract
    };

    /// A namespace, in which type names are unique.
    struct Space
    {
        std::string_view uri;
        CString folder; ///< set by the caller; "" derives it from the URI
    };

    /// Folders by namespace URI. URIs with the same folder share a namespace.
    using Folders = std::map<CString, CString>;

    /// `sourceName` is used in error messages. With `folders` namespaces are kept apart.
    explicit SourceTypes(const CString& sourceName, const Folders* folders = nullptr) :
        sourceName(sourceName), folders(folders)
    {}

    /// Returns the index of a namespace in `spaces`; added if it is new. Always 0 (no namespace) if namespaces are not
    /// kept apart.
    Index spaceOf(std::string_view uri);

    /// Returns whether spaceOf() was called for a namespace while namespaces are kept apart.
    bool hasSpace(std::string_view uri) const { return spacesByUri.contains(uri); }

    /// Returns the namespace whose types are in a folder; added if it is new. Folders that will be derived from URIs
    /// are not known yet, so they are not compared.
    Index spaceIn(const CString& folder);

    /// Replaces the index of each record and enumeration by its entry in these lists, wherever a type refers to it.
    void renumber(std::span<const Index> newRecords, std::span<const Index> newEnumerations);

    /// Returns a copy of `text` that lives as long as the types. Throws SourceRefusal, see spend().
    std::string_view keep(std::string_view text);

    /// The same for `first` + "_" + `second`.
    std::string_view join(std::string_view first, std::string_view second);

    /// Takes over a text, and returns a view that lives as long as the types.
    std::string_view adopt(CString&& text) { return texts.emplace_back(std::move(text)); }

    /// Adds a record without fields and returns its index. setFields() adds the fields later, so that a type may refer
    /// to a record that is still being read.
    Index addRecord(const Record& record);

    /// Sets the fields of a record in their order; call it once for each record. Records and enumerations that they use
    /// must exist. Throws SourceRefusal beyond kMaxFields in total.
    void setFields(Index record, std::span<const Field> fields);

    /// Throws SourceRefusal if `count` more fields would exceed that bound. A reader that collects fields in a list of
    /// its own calls it while the list grows.
    void checkFields(std::size_t count) const;

    /// Throws SourceRefusal: the source has more than `what`.
    [[noreturn]] void refuse(const CString& what) const
    {
        const CString reason = "more than " + what + ", which is the limit";
        throw SourceRefusal{sourceName + ": " + reason + ".", {"", reason}};
    }

    /// Returns the enumeration with the name and namespace of `made` and with constants of these names. If there is
    /// none, adds `made` with these constants. Throws SourceRefusal beyond kMaxConstants in total.
    Index addEnumeration(Enumeration made, std::span<const Constant> constants);

    /// Adds to the memory used for names. Throws SourceRefusal beyond 256 MB in total. Texts that adopt() takes over
    /// don't count, because their sources have bounds of their own.
    void spend(std::size_t bytes);

    /// Adds a candidate for the main type; call it in order of declaration.
    void addCandidate(const Candidate& candidate) { candidates.push_back(candidate); }

    /// Returns the record of a candidate. A candidate of any other type gets a record with the field "value", which it
    /// keeps.
    Index recordOf(Index candidate);

    /// Returns the number of fields of all records.
    std::size_t fieldCount() const { return fields.size(); }

    /// Returns true if there is nothing to import.
    bool empty() const { return records.empty() && enumerations.empty() && candidates.empty(); }

    /// Returns the fields of a record, in their order. Valid until the next setFields().
    std::span<Field> fieldsOf(Index record)
    {
        return std::span(fields).subspan(records[record].firstField, records[record].fieldCount);
    }
    std::span<const Field> fieldsOf(Index record) const
    {
        return std::span(fields).subspan(records[record].firstField, records[record].fieldCount);
    }
    /// Returns the constants of an enumeration, in their order. Valid until the next addEnumeration().
    std::span<const Constant> constantsOf(Index enumeration) const
    {
        return std::span(constants).subspan(enumerations[enumeration].firstConstant,
                                            enumerations[enumeration].constantCount);
    }

    // Indices refer to these lists. Records and enumerations are added only by the functions above, which check the
    // bounds.
    std::vector<Record> records;
    std::vector<Enumeration> enumerations;
    std::vector<Table> tables;
    std::vector<Candidate> candidates;
    // If a schema has an abstract type, a message names a derived one by xsi:type. No field refers to these types;
    // choices and choosers make sure that they are imported.
    std::vector<std::vector<Index>> choices;       ///< the records that may replace an abstract type, for each choice
    std::vector<std::pair<Index, Index>> choosers; ///< pairs of a record and the index of a choice of one of its fields
    std::vector<Space> spaces{{}};                 ///< the first one stands for no namespace
    Index common = kNone;                          ///< the namespace of merged types; kNone if types are not merged
    std::vector<std::pair<std::string_view, std::string_view>>
        prefixes{}; ///< that the sources declare, with their URIs

private:
    CString sourceName;
    const Folders* folders;
    std::unordered_map<std::string_view, Index, KeyHash> spacesByUri;
    std::size_t spent = 0; // see spend()
    Arena memory;
    std::deque<CString> texts; // adopted; a deque doesn't move them, so views of short ones stay valid, too
    // All fields are in one list, which saves an allocation for each record. With large pages, an import of 500,000
    // fields has a third fewer page faults.
    std::vector<Field, LargePages<Field>> fields;
    std::vector<Constant> constants;
    std::unordered_multimap<std::size_t, Index> enumerationsByHash;
};
