#pragma once

#include "Base/Arena.h"
#include "Base/MessageBox.h"

#include <array>
#include <cstdint>
#include <deque>
#include <unordered_set>
#include <vector>

/// Where a source says something.
struct SourcePlace
{
    std::uint32_t file = 0;   ///< as SourceReport::addFile() numbered it
    std::uint32_t line = 0;   ///< counted from 1; 0 if unknown
    std::uint32_t column = 0; ///< counted from 1, in bytes; 0 if unknown
};

/// Ends an import: thrown by what reads a source where that can't be imported at all. `text` is what the user is shown,
/// `fault` the same in parts, its file that of the import where it names none.
struct SourceRefusal
{
    CString text;
    SourceFault fault;
};

/// What of a source was not carried over into the types: each construct with its place, and how often it occurred.
///
/// Each construct is a loss or a detail. A loss changes what types mean, and has a place always. A detail is what the
/// model has no room for; some details are only counted. The same construct at the same place with the same name is
/// noted once. Places are kept up to a bound for each sort; counts are always complete.
class SourceReport
{
public:
    enum Sort : std::uint8_t
    {
        loss,
        detail,
        sortCount
    };

    enum Construct : std::uint8_t
    {
        // Losses.
        moduleMissing,
        moduleUnreadable,
        moduleIllFormed,
        moduleRemote,
        entityUndeclared,
        unresolvedReference, ///< to a type or an element: what refers to it is text
        unresolvedContent,   ///< to what fields come from, a group or a base type: there are none of it
        unknownSection,
        unknownStatement,   ///< or misspelt, as xs:elem
        unknownAttribute,   ///< of a statement, as nam=
        misplacedStatement, ///< known, but without an effect where it stands
        senselessValue,     ///< of an attribute
        unterminated,       ///< a comment or a declaration
        senselessDeclaration,
        statementUnreadable, ///< shown in a message of its own
        insideItself,        ///< the same
        inventedType,        ///< made of what is no declaration of it
        declaredTwice,
        mainTypeAbstract,
        cutShort, ///< by a bound; the name says by which
        impossibleName,
        entityNotExpanded,
        declarationPassedOver,
        groupPassedOver,
        extensionPassedOver,
        simpleTypePassedOver,
        restrictionPassedOver,
        substitutionPassedOver,
        textPassedOver, ///< beside fields
        typeUnknown,
        mergedByName, ///< with a declaration of the same name that says something else
        repetitionPassedOver,
        inventedRepetition, ///< a table of what occurs once
        nameMissing,        ///< of a type, a field or a constant of a type document
        columnPassedOver,
        emptyTable,
        tableGone,    ///< since the tables were listed
        tableUnnamed, ///< it can't be asked for: its name is empty, blank or of several lines
        severalTables,
        tableHidden,       ///< by another one of its name, which was read instead
        kindsDiffer,       ///< of one value: it is a record if one of them is, else text
        furtherProperties, ///< of any name, beside fields
        keyTwice,          ///< in one object: the last one holds
        bytesPassedOver,   ///< a field that no type can hold
                           // Details.
        sgmlException,
        anyContent,
        mixedContent,
        anyElement,
        anyAttribute,
        abstractType,
        derivedType,    ///< may stand for an abstract one in a message
        sectionLeftOut, ///< that an entity could have read
        listType,
        unionOfKinds,
        elementNotAllowed,
        nameChanged,
        nameMadeFit,            ///< for a place that can't hold it
        attributeDeclaredTwice, ///< which XML allows: the first one holds
        entityPassedOver,       ///< the declaration of an entity that nothing read refers to, or of a notation
                                // Details that are only counted.
        optionality,
        occurrenceBounds, ///< other than once, at most once and any number
        alternatives,     ///< a choice between fields
        anyOrder,
        facet,
        documentationCut, ///< text that describes nothing, or only in part
        nillable,
        defaultValue,
        derivationLimit, ///< final, block
        typeAlternative,
        assertion,
        identityConstraint,
        generalEntity,
        notation,
        constructCount
    };

    /// How much the places of each sort may take. Losses are to be complete for every source that means well.
    static constexpr std::size_t kMaxMegabytes[sortCount] = {64, 2};

    /// A row of the table of constructs.
    struct Row
    {
        const char* id;       ///< what one is called for other programs; never changes
        const char* words;    ///< what one is called in the report
        Sort sort;            ///< a loss has places
        const char* singular; ///< what one that is counted is called: "reference became text"
        const char* plural;   ///< the same of several; equal words are counted together
        bool isShown = false; ///< the importer itself shows each in a message
    };

    static const Row& rowFor(Construct construct);
    static const char* wordsFor(Construct construct) { return rowFor(construct).words; }
    static bool isLoss(Construct construct) { return rowFor(construct).sort == loss; }

    /// The number under which places refer to a file of that name.
    std::uint32_t addFile(const CString& fileName);
    const CString& fileNameOf(std::uint32_t file) const { return files[file]; }
    std::uint32_t fileCount() const { return static_cast<std::uint32_t>(files.size()); }

    /// Notes a construct at its place. Of a long name only the beginning is kept.
    void add(Construct construct, SourcePlace place, std::string_view name);

    /// Notes a detail that is only counted.
    void count(Construct construct, std::size_t times = 1) { counts[construct] += times; }

    /// A construct at its place. The name lasts until clear().
    struct Entry
    {
        std::string_view name;
        SourcePlace place;
        Construct construct;
    };

    /// What the entry says: "CONSTRUCT: NAME".
    static CString inWords(const Entry& entry);

    /// The places of one sort in the order in which they were noted, as far as its bound goes.
    const std::deque<Entry>& queryEntries(Sort sort) const { return places[sort].entries; }

    /// How many more there were than queryEntries() holds, past the bound.
    std::size_t queryUnlisted(Sort sort) const { return places[sort].unlisted; }

    /// How many of one sort occurred, with and without places.
    std::size_t queryTotal(Sort sort) const;

    struct Count
    {
        Construct construct;
        std::size_t times;
    };

    /// The constructs of one sort that occurred, most frequent first.
    std::vector<Count> queryCounts(Sort sort) const;

    /// The same in words, constructs with equal ones together: "2 references became text".
    std::vector<CString> countsInWords(Sort sort) const;

    /// The losses in one line: "3 losses: 2 references became text, 1 document not found"; "" if there are none.
    CString lossesInWords() const;

    /// Empties the report.
    void clear();

private:
    struct Places
    {
        std::deque<Entry> entries;
        std::size_t bytes = 0; // that they take, roughly
        std::size_t unlisted = 0;
    };

    std::deque<CString> files;
    Arena names;
    std::unordered_set<std::uint64_t> noted; // hashes of the entries
    std::array<Places, sortCount> places;
    std::array<std::size_t, constructCount> counts{};
};
