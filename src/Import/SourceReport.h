#pragma once

#include "Base/MessageBox.h"

#include <array>
#include <deque>
#include <vector>

/// Where a source says something.
struct SourcePlace
{
    std::uint32_t file = 0; ///< as SourceReport::addFile() numbered it
    std::uint32_t line = 0; ///< counted from 1; 0 where none is known
};

/// Ends an import: thrown by what reads a source where that can't be imported at all. `text` is what the user is shown,
/// `fault` the same in parts, its file that of the import where it names none.
struct SourceRefusal
{
    CString text;
    SourceFault fault;
};

/// What of a source was not carried over into the types: each construct with its place, and how often it occurred.
/// Places are kept up to a bound, counts are always complete.
class SourceReport
{
public:
    enum Construct : std::uint8_t
    {
        moduleMissing,
        moduleUnreadable,
        moduleIllFormed,
        moduleRemote,
        entityUndeclared,
        unresolvedReference,
        unknownSection,
        senselessDeclaration,
        declaredTwice,
        sgmlException,
        anyContent,
        mixedContent,
        anyElement,
        anyAttribute,
        abstractType,
        listType,
        unionOfKinds,
        elementNotAllowed,
        nameChanged,
        // Of the literal readings.
        entityNotExpanded,
        statementUnreadable,
        impossibleName,
        declarationPassedOver,
        groupPassedOver,
        extensionPassedOver,
        simpleTypePassedOver,
        typeUnknown,
        emptyTable,
        columnPassedOver,
        // From here on without places.
        facet,
        nillable,
        defaultValue,
        identityConstraint,
        generalEntity,
        notation,
        constructCount
    };

    /// The number under which places refer to a file of that name.
    std::uint32_t addFile(const CString& fileName);
    const CString& fileNameOf(std::uint32_t file) const { return files[file]; }
    std::uint32_t fileCount() const { return static_cast<std::uint32_t>(files.size()); }

    /// Notes a construct at its place. Of a long name only the beginning is kept.
    void add(Construct construct, SourcePlace place, std::string_view name);

    /// Notes a construct that is only counted.
    void count(Construct construct, std::size_t times = 1) { counts[construct] += times; }

    /// The constructs that have places, also those beyond the bound.
    std::size_t queryPlaced() const;

    /// A construct at its place. The bound on places leaves the rest to the counts.
    struct Entry
    {
        Construct construct;
        SourcePlace place;
        CString name;
    };

    /// In the order in which they were noted.
    const std::vector<Entry>& queryEntries() const { return entries; }

    struct Count
    {
        Construct construct;
        std::size_t times;
    };

    /// The constructs that occurred, most frequent first.
    std::vector<Count> queryCounts() const;

    /// What a construct is called.
    static const char* wordsFor(Construct construct);

    /// Empties the report.
    void clear()
    {
        files.clear();
        entries.clear();
        counts = {};
    }

private:
    std::deque<CString> files;
    std::vector<Entry> entries;
    std::array<std::size_t, constructCount> counts{};
};
