#include "Import/Json/JsonDataMsg.h"

#include "Base/NameTable.h"
#include "Base/NumberTable.h"
#include "Base/Progress.h"
#include "Files/File.h"
#include "Files/FileFinder.h"
#include "Files/FileMessage.h"
#include "Import/Json/JsonScanner.h"
#include "Import/Json/JsonTypes.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <unordered_map>
#include <utility>

// One pass over the tokens of each file builds a tree of shapes: one for each path of keys, and one for the items of
// each array. It keeps kinds of values, not values. declare() then turns the tree into types. Time is linear in the
// files, because most members are found where the last object had them.
namespace {

constexpr std::size_t kMaxShapes = 2'000'000; // an object with identifiers as keys makes one for each

// Removes a number of `digits` digits from the start. Returns nothing if there is none, or it is more than `most`.
std::optional<unsigned> takeNumber(std::string_view& text, std::size_t digits, unsigned most)
{
    unsigned number = 0;
    const char* const end = text.data() + std::min(digits, text.size());
    if (text.size() < digits || std::from_chars(text.data(), end, number).ptr != end || number > most)
        return std::nullopt;
    text.remove_prefix(digits);
    return number;
}

bool takeMark(std::string_view& text, char mark)
{
    if (!text.starts_with(mark))
        return false;
    text.remove_prefix(1);
    return true;
}

bool takeDate(std::string_view& text)
{
    const auto year = takeNumber(text, 4, 9999);
    const auto month = takeMark(text, '-') ? takeNumber(text, 2, 12) : std::nullopt;
    const auto day = takeMark(text, '-') ? takeNumber(text, 2, 31) : std::nullopt;
    return year && month && day &&
           (std::chrono::year(static_cast<int>(*year)) / std::chrono::month(*month) / std::chrono::day(*day)).ok();
}

// Takes a time with its fraction and offset. Seconds are optional, as ISO 8601 allows; so are minutes of the offset, as
// some databases write it.
bool takeTime(std::string_view& text)
{
    const bool isMidnight = text.starts_with("24:00"); // the end of a day
    if (!takeNumber(text, 2, isMidnight ? 24 : 23) || !takeMark(text, ':') || !takeNumber(text, 2, 59))
        return false;
    // 60 is a leap second.
    if (takeMark(text, ':') && !takeNumber(text, 2, 60))
        return false;
    if (takeMark(text, '.') || takeMark(text, ',')) {
        const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
        if (end == 0)
            return false;
        text.remove_prefix(end);
    }
    if (takeMark(text, 'Z') || takeMark(text, 'z') || text.empty())
        return true;
    if ((!takeMark(text, '+') && !takeMark(text, '-')) || !takeNumber(text, 2, 23))
        return false;
    const bool hasMinutes = takeMark(text, ':') || !text.empty();
    return !hasMinutes || takeNumber(text, 2, 59);
}

// Returns whether a text is a date, a time or both in the extended format of ISO 8601.
bool isIsoTime(std::string_view text)
{
    // "12:34" is the shortest. The longest allows for any sensible fraction of a second.
    constexpr std::size_t shortest = 5, longest = 40;
    if (text.size() < shortest || text.size() > longest || text[0] < '0' || text[0] > '9')
        return false;
    if (text[2] == ':')
        return takeTime(text) && text.empty();
    if (!takeDate(text))
        return false;
    return text.empty() ||
           ((takeMark(text, 'T') || takeMark(text, 't') || takeMark(text, ' ')) && takeTime(text) && text.empty());
}

// Collects the shapes of example messages: the keys and kinds of values at each place, over all examples. Memory grows
// with the number of different shapes, not with the examples.
class JsonShapes
{
public:
    JsonShapes(SourceTypes& types, SourceReport& report) : types(types), report(report), shapes(1) {}

    // Adds all values of a file; `file` is its number in the report. A key given twice in one object is a loss. Throws
    // JsonFault.
    void read(JsonScanner& scanner, std::uint32_t fileNumber)
    {
        // An open container, and the member that came last in it.
        struct Open
        {
            Index shape;
            std::uint32_t number; // of the object; 0 for an array
            Index last = 0;
        };
        file = fileNumber;
        std::vector<Open> open;
        Index at = 0; // the shape of the next value
        CancelPoint cancelPoint(1 << 16);
        for (JsonScanner::Token token; (token = scanner.next()) != JsonScanner::end;) {
            cancelPoint.pass();
            if (token == JsonScanner::key) {
                Open& object = open.back();
                object.last = memberOf(object.shape, object.last, scanner.text());
                // Each object has a number of its own, so the last holder of a key tells whether this object had it
                // before.
                if (std::exchange(shapes[object.last].holder, object.number) == object.number)
                    report.add(SourceReport::keyTwice, {file, scanner.line(), scanner.column()}, scanner.text());
                at = object.last;
                continue;
            }
            if (token == JsonScanner::objectEnd || token == JsonScanner::arrayEnd) {
                open.pop_back();
                continue;
            }
            if (open.empty())
                at = 0;
            else if (open.back().number == 0)
                at = itemsOf(open.back().shape);
            if (token == JsonScanner::null) // fits any kind
                continue;
            const Kind kind = token == JsonScanner::objectBegin                           ? isObject
                              : token == JsonScanner::arrayBegin                          ? isArray
                              : token == JsonScanner::number                              ? isNumber
                              : token == JsonScanner::string && isIsoTime(scanner.text()) ? isTime
                                                                                          : isText;
            const bool isContainer = (kind & (isObject | isArray)) != 0;
            if (isContainer)
                at = sharedShape(at, kind);
            note(at, kind, scanner);
            if (isContainer)
                open.push_back({at, kind == isObject ? ++objects : 0});
        }
    }

    // Adds the shapes as types. The shape of whole messages becomes the candidate for the main type, under `name`.
    void declare(std::string_view name)
    {
        const auto [type, depth] = typeOf(0, name, SourceTypes::kNone);
        if (shapes[0].kinds != 0)
            types.addCandidate({.name = name, .type = type, .place = shapes[0].place, .repeats = depth});
        std::vector<SourceTypes::Field> fields;
        for (std::size_t i = 0; i < pending.size(); ++i) {
            const Index object = pending[i];
            fields.clear();
            for (Index at = shapes[object].first; at != 0; at = shapes[at].next) {
                const std::string_view called =
                    JsonTypes::toModelName(names[shapes[at].key], shapes[at].place, types, report);
                const Index shape = shapes[at].target == 0 ? at : shapes[at].target;
                // The member has a shared shape, but also values of its own, such as texts.
                if (shape != at && shapes[at].kinds != 0)
                    report.add(SourceReport::kindsDiffer, shapes[at].place, called);
                const auto [field, tables] = typeOf(shape, called, records[object]);
                fields.push_back({called, {}, field, SourceTypes::roleElement, tables});
            }
            types.setFields(records[object], fields);
        }
    }

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

    // Adds a kind to a shape. Places are worked out for the first value of each kind only.
    void note(Index index, Kind kind, const JsonScanner& scanner)
    {
        Shape& shape = shapes[index];
        if ((shape.kinds & kind) != 0)
            return;
        const SourcePlace place{file, scanner.line(), scanner.column()};
        (shape.kinds == 0 ? shape.place : shape.otherPlace) = place;
        shape.kinds = static_cast<std::uint8_t>(shape.kinds | kind);
    }

    Index add(Index parent, NameTable::Id key)
    {
        if (shapes.size() == kMaxShapes)
            throw JsonFault{"more than " + std::to_string(kMaxShapes) +
                            " keys in different places, which is the limit"};
        Shape& shape = shapes.emplace_back();
        shape.parent = parent;
        shape.key = key;
        return static_cast<Index>(shapes.size() - 1);
    }

    Index itemsOf(Index array)
    {
        if (shapes[array].items == 0)
            shapes[array].items = add(array, 0); // done before the left side is evaluated
        return shapes[array].items;
    }

    // Returns the shape of an object or array. One nested in another of the same key shares that one's shape, so
    // recursive data such as trees gets a recursive type instead of endless nesting. Only the first value of a kind is
    // compared with the keys around it; the result is kept.
    Index sharedShape(Index member, Kind kind)
    {
        Shape& shape = shapes[member];
        const bool isFirst = shape.target == 0 && (shape.kinds & kind) == 0;
        for (Index at = isFirst && shape.key != 0 ? shape.parent : 0; at != 0 && shape.target == 0;
             at = shapes[at].parent)
            if (shapes[at].key == shape.key && (shapes[at].kinds & kind) != 0)
                shape.target = at;
        return shape.target != 0 && (shapes[shape.target].kinds & kind) != 0 ? shape.target : member;
    }

    // Returns the shape of a member, added if it is new. The guess succeeds for most objects, because they repeat the
    // keys and the order of the last one.
    Index memberOf(Index object, Index before, std::string_view key)
    {
        const Index guess = before == 0 ? shapes[object].first : shapes[before].follower;
        if (guess != 0 && names[shapes[guess].key] == key)
            return guess;
        const NameTable::Id id = names.intern(key);
        const auto [member, isNew] = members.insert(joined(object, id), static_cast<Index>(shapes.size()));
        if (isNew) {
            add(object, id);
            Shape& holder = shapes[object];
            (holder.last == 0 ? holder.first : shapes[holder.last].next) = member;
            holder.last = member;
        }
        if (before != 0)
            shapes[before].follower = member;
        return member;
    }

    // Returns the type of the values of a shape. An array leads on to its items, up to a bound. A value that is an
    // array in one example and single in another becomes text, unless it holds objects.
    JsonTypes::Shape typeOf(Index at, std::string_view name, SourceTypes::Index home)
    {
        constexpr std::uint16_t deepest = 100;
        const Shape unknown; // of the items of arrays that were empty in all documents
        const Shape* shape = &shapes[at];
        const Shape* mixed = nullptr; // an array, or a single value
        std::uint16_t depth = 0, mixedDepth = 0;
        for (; (shape->kinds & (isArray | isObject)) == isArray && depth < deepest; ++depth) {
            if (!mixed && shape->kinds != isArray) {
                mixed = shape;
                mixedDepth = depth;
            }
            shape = shape->items == 0 ? &unknown : &shapes[shape->items];
        }
        const std::uint8_t kinds = shape->kinds;
        const bool isRecord = (kinds & isObject) != 0 && shape->first != 0;
        // A time among texts is just text.
        const bool differs = (kinds & (kinds - 1)) != 0 && kinds != (isTime | isText);
        if (differs || mixed)
            report.add(SourceReport::kindsDiffer, (differs ? shape : mixed)->otherPlace, name);
        if (depth == deepest)
            report.add(SourceReport::cutShort, shapes[at].place, CString(name) + ", arrays inside each other");
        // A value that may also be an array of values becomes text, which doesn't repeat.
        if (!isRecord && (mixed || depth == deepest))
            depth = mixedDepth;
        if (!isRecord)
            return {{kinds == isNumber && !mixed ? SourceTypes::kindNumber
                     : kinds == isTime && !mixed ? SourceTypes::kindTime
                                                 : SourceTypes::kindText},
                    depth};
        const auto object = static_cast<Index>(shape - shapes.data());
        const auto [known, isNew] = records.try_emplace(object);
        if (isNew) {
            known->second = types.addRecord({name, {}, shape->place, home});
            pending.push_back(object);
        }
        return {{SourceTypes::kindRecord, known->second}, depth};
    }

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

} // namespace

// All files are one set of examples, with one main type.
void JsonDataMessage::read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report)
{
    std::vector<CString> files{source};
    files.insert(files.end(), furtherExamples.begin(), furtherExamples.end());
    JsonShapes shapes(types, report);
    for (const CString& name : files) {
        const std::uint32_t number = report.addFile(name);
        InputFile file(name);
        if (file.queryError() != 0)
            throw SourceRefusal{cantOpen(name, fileCauseOf(file.queryError())), {name, inWords(file.queryError())}};
        try {
            JsonScanner scanner(file);
            shapes.read(scanner, number);
        } catch (const JsonFault& fault) {
            throw refusalOf(name, fault);
        }
    }
    shapes.declare(types.keep(toXmlName(givenName.empty() ? CString(stemOf(fileName)) : givenName)));
}
