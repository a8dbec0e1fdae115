#pragma once

#include "Base/NameTable.h"
#include "Import/Full/SourceTypes.h"
#include "Import/Json/JsonScanner.h"

#include <unordered_map>
#include <vector>

/// The shapes of example messages: which keys and kinds of values they have where, all examples together. Takes as much
/// memory as the shapes do, whatever the number and size of the examples.
class JsonShapes
{
public:
    JsonShapes() : shapes(1) {}

    /// Takes all values of a file. Throws JsonFault.
    void read(JsonScanner& scanner, std::uint32_t file);

    /// Declares the shapes as types, the whole one as what a message starts with, called `name`.
    void declare(std::string_view name, SourceTypes& types, SourceReport& report);

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
        std::uint8_t kinds = 0; // that were met
        NameTable::Id key = 0;
        Index parent = 0;
        Index items = 0; // of an array; 0: none were met
        Index first = 0; // of the members, in the order in which they were met
        Index last = 0;
        Index next = 0;         // member of the same object
        Index target = 0;       // for a member that holds what one around it of the same key holds: that one
        Index follower = 0;     // what came behind it last time
        SourcePlace place;      // of the first value
        SourcePlace otherPlace; // of the first one of another kind
    };

    Index add(Index parent, NameTable::Id key);
    Index memberOf(Index object, Index before, std::string_view key);
    Index itemsOf(Index array);
    void note(Index shape, Kind kind, const JsonScanner& scanner);
    SourceTypes::Type typeOf(Index shape, std::uint16_t& depth, std::string_view name, SourceTypes::Index home,
                             SourceTypes& types, SourceReport& report);

    std::uint32_t file = 0;
    NameTable names;
    std::vector<Shape> shapes; // the first one is that of whole messages
    std::unordered_map<std::uint64_t, Index> members;
    std::unordered_map<Index, SourceTypes::Index> records;
    std::vector<Index> pending;
};
