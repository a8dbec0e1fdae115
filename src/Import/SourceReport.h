#pragma once

#include "Base/Arena.h"
#include "Base/NumberTable.h"
#include "Base/SourceFault.h"

#include <array>
#include <compare>
#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

/// A place in a source.
struct SourcePlace
{
    std::uint32_t file = 0;   ///< number from SourceReport::addFile()
    std::uint32_t line = 0;   ///< counted from 1; 0 if unknown
    std::uint32_t column = 0; ///< counted from 1, in bytes; 0 if unknown

    // NOLINTNEXTLINE(modernize-use-nullptr): a false positive in version 14
    friend auto operator<=>(const SourcePlace&, const SourcePlace&) = default;
};

/// Ends an import; thrown by readers if a source can't be imported at all. `text` is the message to the user, `fault`
/// the same in parts. A fault without a file is about the file of the import.
struct SourceRefusal
{
    CString text;
    SourceFault fault;
};

/// The constructs of a source that were not carried over into the types, with their places and counts.
///
/// Each construct is a loss or a detail. A loss changes the meaning of types, and always has a place. A detail is
/// something that the model can't represent; some details are only counted. Repetitions of a construct at the same
/// place with the same name are dropped. Places are kept up to a memory bound for each sort; counts are always
/// complete.
///
/// Readers add constructs as they read them, so entries are in the order of reading. A reader that doesn't know until
/// its end which declarations are imported holds constructs back, see hold().
class SourceReport
{
public:
    /// Whether a construct changes the meaning of types. Also an index of the lists below.
    enum Sort : std::uint8_t
    {
        loss,
        detail,
        sortCount
    };

    /// In the order of the table of constructs, see rowFor(). The id of a construct in reports never changes.
    enum Construct : std::uint8_t
    {
        // Losses.
        moduleMissing,
        moduleUnreadable,
        moduleIllFormed,
        moduleRemote,
        entityUndeclared,
        unresolvedReference, ///< to a type or an element; the reference became text
        unresolvedContent,   ///< to a group or a base type; its fields are missing
        unknownSection,
        unknownStatement,   ///< or a misspelt one, as xs:elem
        unknownAttribute,   ///< of a statement, as nam=
        misplacedStatement, ///< known, but without effect at its place
        invalidValue,       ///< of an attribute
        unterminated,       ///< a comment or a declaration
        malformedDeclaration,
        statementUnreadable,  ///< the importer also shows a message
        recursiveDeclaration, ///< the same
        inventedType,         ///< made of text that doesn't declare one
        declaredTwice,
        mainTypeAbstract,
        cutShort, ///< by a bound, which the name states
        impossibleName,
        entityNotExpanded,
        declarationSkipped,
        groupSkipped,
        extensionSkipped,
        simpleTypeSkipped,
        restrictionSkipped,
        substitutionSkipped,
        textSkipped, ///< beside fields
        typeUnknown,
        mergedByName, ///< with a different declaration of the same name
        repetitionSkipped,
        inventedRepetition, ///< a table of something that occurs once
        nameMissing,        ///< of a type, a field or a constant of a type document
        columnSkipped,
        emptyTable,
        tableGone,    ///< since the tables were listed
        tableUnnamed, ///< the name can't be passed on: it is empty, blank or has several lines
        severalTables,
        tableHidden,       ///< by another table of the same name, which was read instead
        kindsDiffer,       ///< of one value: a record if one of the kinds is, else text
        furtherProperties, ///< of any name, beside fields
        keyTwice,          ///< in one object: the last one stays
        bytesSkipped,      ///< a field that no type can hold
                           // Details.
        sgmlException,
        anyContent,
        mixedContent,
        anyElement,
        anyAttribute,
        abstractType,
        derivedType,     ///< may replace an abstract type in a message
        replaceableType, ///< by a type derived from it, which a message names
        typeAlternative, ///< which the attributes of an element choose
        sectionLeftOut,  ///< which an entity could include
        listType,
        unionOfKinds,
        elementNotAllowed,
        nameChanged,
        nameAdjusted,           ///< for a place that can't hold it
        attributeDeclaredTwice, ///< which XML allows: the first one stays
        entitySkipped,          ///< the declaration of an entity that nothing refers to, or of a notation
                                // Details that are only counted.
        optionality,
        occurrenceBounds, ///< other than once, at most once and any number
        alternatives,     ///< other than one, optional or any number
        anyOrder,
        facet,
        documentationCut, ///< text that was dropped or shortened
        nillable,
        defaultValue,
        derivationLimit, ///< final, block
        assertion,
        identityConstraint,
        generalEntity,
        notation,
        constructCount
    };

    /// Memory for the places of each sort. The bound for losses is large, so that lists of losses are complete for any
    /// plausible source.
    static constexpr std::size_t kMaxMegabytes[sortCount] = {64, 2};

    /// A row of the table of constructs. The texts live as long as the program.
    struct Row
    {
        const char* id;       ///< the stable id in JSON reports
        const char* words;    ///< the name in text reports
        Sort sort;            ///< losses always have places
        const char* singular; ///< the words after a count of one: "reference became text"
        const char* plural;   ///< the words after other counts; constructs with equal words are counted together
        bool isShown = false; ///< the importer also shows each one in a message
    };

    /// Returns the row of a construct in the table of constructs.
    static const Row& rowFor(Construct construct);
    static const char* wordsFor(Construct construct) { return rowFor(construct).words; }
    static bool isLoss(Construct construct) { return rowFor(construct).sort == loss; }

    /// Adds a file and returns its number for SourcePlace::file, counted from 0. A name added twice gets two numbers.
    std::uint32_t addFile(const CString& fileName);
    /// Returns the name of a file by its number.
    const CString& fileNameOf(std::uint32_t file) const { return files[file]; }
    /// Returns an error or a warning about the source at a place.
    SourceFault faultAt(SourcePlace place, const CString& reason, bool isWarning = false) const
    {
        return {fileNameOf(place.file), reason, static_cast<long>(place.line), static_cast<long>(place.column),
                isWarning};
    }
    std::uint32_t fileCount() const { return static_cast<std::uint32_t>(files.size()); }

    /// Adds a construct at a place. The name is copied; one of more than 200 bytes is cut.
    void add(Construct construct, SourcePlace place, std::string_view name);

    /// Adds a document that is not well-formed, by its fault. The name includes the place of the reference to the
    /// document, because the user may not know it.
    void addIllFormed(std::uint32_t file, const SourceFault& fault, SourcePlace namedAt);

    /// Counts a detail without a place.
    void count(Construct construct, std::size_t times = 1)
    {
        if (mode == reporting)
            counts[construct] += times;
        else if (mode == holding)
            holdBack(construct, times);
    }

    /// Sets whether add() and count() are ignored, and returns the setting before. Ends hold(); what was held back
    /// stays so until release().
    bool pause(bool on) { return std::exchange(mode, on ? paused : reporting) == paused; }

    /// The number that a reader gives to a declaration that types are made of; 0 for the source as a whole. The report
    /// only passes it back in release().
    using Component = std::uint32_t;

    /// Holds back what add() and count() get from now on, until release(), so that losses of declarations that are not
    /// imported don't count. Up to 64 MB of places are held back; further ones are reported at once.
    void hold() { mode = holding; }
    /// Returns whether hold() is in effect. Readers need components only then.
    bool isHolding() const { return mode == holding; }

    /// Sets the component that the following constructs belong to, and returns the one before. Documents that can't be
    /// read, and declarations without an end, always belong to the whole source.
    Component enter(Component number) { return std::exchange(component, number); }

    /// Reports what was held back, in order, for the whole source and for the components that were reached. An empty
    /// function reports all.
    void release(const std::function<bool(Component)>& isReached);

    /// A construct with its place. The name is valid until clear(), in UTF-8 on one line.
    struct Entry
    {
        std::string_view name;
        SourcePlace place;
        Construct construct;
    };

    /// Returns the entry as text: "CONSTRUCT: NAME".
    static CString inWords(const Entry& entry);

    /// Returns the places of one sort in the order of add(), up to the memory bound.
    const std::deque<Entry>& queryEntries(Sort sort) const { return places[sort].entries; }

    /// Returns how many places were dropped at the memory bound.
    std::size_t queryUnlisted(Sort sort) const { return places[sort].unlisted; }

    /// Returns how many constructs of one sort occurred, with and without places.
    std::size_t queryTotal(Sort sort) const;

    /// A construct, and how often it occurred.
    struct Count
    {
        Construct construct;
        std::size_t times;
    };

    /// Returns the constructs of one sort that occurred, most frequent first.
    std::vector<Count> queryCounts(Sort sort) const;

    /// Returns the same in words: "2 references became text". Constructs with equal words are counted together; the
    /// most frequent come first.
    std::vector<CString> countsInWords(Sort sort) const;

    /// Returns the losses in one line: "3 losses: 2 references became text, 1 document not found"; empty if there are
    /// none.
    CString lossesInWords() const;

    /// Removes everything.
    void clear();

private:
    // The entries of one sort.
    struct Places
    {
        std::deque<Entry> entries;
        std::size_t bytes = 0;    // memory of the entries, roughly
        std::size_t unlisted = 0; // dropped because the memory is full
    };

    // The treatment of added constructs: they are reported, held back, or ignored.
    enum Mode : std::uint8_t
    {
        reporting,
        holding,
        paused
    };

    // A place that is held back.
    struct HeldPlace
    {
        Entry entry;
        std::uint64_t hash; // of the entry with its whole name, which may be cut in `entry`
        Component component;
    };

    // A count that is held back.
    struct HeldCount
    {
        std::size_t times;
        Component component;
        Construct construct;
    };

    void holdBack(Construct construct, std::size_t times);
    bool countPlace(Construct construct, SourcePlace place, std::uint64_t hash);
    void list(const Entry& entry);

    std::deque<CString> files;
    Arena names;      // of all entries
    NumberTable seen; // hashes of the entries
    std::array<Places, sortCount> places;
    std::array<std::size_t, constructCount> counts{};
    Mode mode = reporting;
    Component component = 0; // see enter()
    std::deque<HeldPlace> heldPlaces;
    std::size_t heldBytes = 0; // memory of these places, roughly
    std::deque<HeldCount> heldCounts;
};
