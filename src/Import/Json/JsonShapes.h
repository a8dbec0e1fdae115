#pragma once

#include "Base/NameTable.h"
#include "Base/NumberTable.h"
#include "Import/Full/SourceTypes.h"
#include "Import/Json/JsonScanner.h"

#include <unordered_map>
#include <vector>

/// Collects the shapes of example messages: the keys and kinds of values at each place, over all examples. Memory grows
/// with the number of different shapes, not with the examples.
class JsonShapes
{
public:
    JsonShapes(SourceTypes& types, SourceReport& report) : types(types), report(report), shapes(1) {}

    /// Adds all values of a file; `file` is its number in the report. A key given twice in one object is a loss. Throws
    /// JsonFault.
    void read(JsonScanner& scanner, std::uint32_t file);

    /// Adds the shapes as types. The shape of whole messages becomes the candidate for the main type, under `name`.
    void declare(std::string_view name);

private:
    using Index = std::uint32_t;

    enum Kind : std::uint8_t
    {
        isObject = 1,
        isArray = 2,
        isNumber = 4,
        isTime = 8,
        isText = 16
    };

    struct Shape
    {
        std::uint8_t kinds = 0; // a set of Kind
        NameTable::Id key = 0;
        Index parent = 0;
        Index items = 0; // shape of an array's items; 0 if there were none
        Index first = 0; // of the members, in order of first occurrence
        Index last = 0;
        Index next = 0;           // the next member of the same object
        Index target = 0;         // the enclosing member of the same key, whose shape is shared; else 0
        Index follower = 0;       // the member that followed last time
        std::uint32_t holder = 0; // number of the object that had it last
        SourcePlace place;        // of the first value
        SourcePlace otherPlace;   // of the first value of another kind
    };

    Index add(Index parent, NameTable::Id key);
    Index memberOf(Index object, Index before, std::string_view key);
    Index itemsOf(Index array);
    Index sharedShape(Index member, Kind kind);
    void note(Index shape, Kind kind, const JsonScanner& scanner);
    SourceTypes::Type typeOf(Index shape, std::uint16_t& depth, std::string_view name, SourceTypes::Index home);

    SourceTypes& types;
    SourceReport& report;
    std::uint32_t file = 0;
    std::uint32_t objects = 0; // read so far
    NameTable names;
    std::vector<Shape> shapes; // the first one is for whole messages
    NumberTable members;       // by object and key
    std::unordered_map<Index, SourceTypes::Index> records;
    std::vector<Index> pending; // objects whose fields are not yet declared
};
