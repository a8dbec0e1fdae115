#include "Import/Json/JsonDataMsg.h"

#include "Base/NameTable.h"
#include "Base/NumberTable.h"
#include "Base/Progress.h"
#include "Files/File.h"
#include "Files/FileFinder.h"
#include "Files/FileMessage.h"
#include "Import/Json/IsoTime.h"
#include "Import/Json/JsonPredictor.h"
#include "Import/Json/JsonScanner.h"
#include "Import/Json/JsonTypes.h"

#include <unordered_map>
#include <utility>

// One pass over the tokens of each file builds a tree of shapes: one for each path of keys, and one for the items of
// each array. A shape has the kinds of the values, not the values. declare() then makes types from the tree. Time is
// linear in the files, because most members are found by their position in the last object. Messages that add nothing
// to the shapes are skipped without being scanned.
namespace {

// Bounds objects whose keys are identifiers, which have a shape for each key.
constexpr std::size_t kMaxShapes = 2'000'000;
// In a message that the predictor learns. The text of a longer one would not be in the buffer.
constexpr std::size_t kMaxLeaves = 10'000;

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
        file = fileNumber;
        open.clear();
        leaves.clear();
        Index at = 0; // the shape of the next value
        CancelPoint cancelPoint(1 << 16);
        for (;;) {
            if (isBetweenMessages())
                skipKnown(scanner);
            const JsonScanner::Token token = scanner.next();
            if (token == JsonScanner::end)
                return;
            cancelPoint.pass();
            if (token == JsonScanner::key) {
                at = enterMember(scanner);
                continue;
            }
            if (token == JsonScanner::objectEnd || token == JsonScanner::arrayEnd) {
                if (const Open& closed = open.back(); closed.last == 0)
                    addLeaf(closed.position, closed.begin, scanner,
                            closed.number == 0 ? Kind::isArray : Kind::isObject);
                open.pop_back();
                continue;
            }
            if (open.empty())
                at = 0;
            else if (open.back().number == 0)
                at = open.back().last = itemsOf(open.back().shape);
            const JsonPredictor::Position position = isCollected() ? predictor.inside(around(), at) : 0;
            const std::uint8_t kind = kindOf(token, scanner);
            if (token != JsonScanner::objectBegin && token != JsonScanner::arrayBegin) {
                if (kind != 0)
                    note(at, kind, scanner);
                addLeaf(position, scanner.beginOffset(), scanner, kind);
                continue;
            }
            at = sharedShape(at, kind);
            note(at, kind, scanner);
            open.push_back({at, kind == Kind::isObject ? ++objects : 0, position, scanner.beginOffset()});
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
    using Kind = JsonPredictor::Kind;

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

    // An open container, and the member or item that came last in it.
    struct Open
    {
        Index shape;
        std::uint32_t number; // of the object; 0 for an array
        JsonPredictor::Position position;
        std::uint64_t begin; // its offset
        Index last = 0;      // 0 as long as it is empty
    };

    // Messages are the values of a file, or the items of an array that holds them all. The first item of an array is
    // scanned, because no comma is before it.
    bool isBetweenMessages() const
    {
        return open.empty() || (open.size() == 1 && open[0].number == 0 && open[0].last != 0);
    }

    JsonPredictor::Position around() const { return open.empty() ? JsonPredictor::kOutside : open.back().position; }

    // Lets the predictor learn the last message, then skips the messages that it knows. The next one is scanned.
    void skipKnown(JsonScanner& scanner)
    {
        if (isCollected() && !leaves.empty() && messageAround == around())
            predictor.learn(around(), scanner.bytesFrom(messageBegin), messageBegin, leaves);
        leaves.clear();
        isForward = true;
        isLearning = predictor.isLearning();
        if (isLearning) {
            const JsonPredictor::Skipped known = predictor.skip(around(), scanner.bytesAhead());
            scanner.skip(known.bytes, known.lines, known.lineStart);
        }
        messageAround = around();
        messageBegin = scanner.endOffset();
    }

    bool isCollected() const { return isLearning && leaves.size() <= kMaxLeaves; }

    void addLeaf(JsonPredictor::Position position, std::uint64_t begin, const JsonScanner& scanner, std::uint8_t kind)
    {
        if (isCollected())
            leaves.push_back({begin, scanner.endOffset(), position, kind, std::exchange(isForward, true)});
    }

    // Returns the shape of the member whose key was scanned.
    Index enterMember(const JsonScanner& scanner)
    {
        Open& object = open.back();
        const std::size_t before = shapes.size();
        const Index member = memberOf(object.shape, object.last, scanner.text());
        if (shapes.size() > before && scanner.hasLoneSurrogate())
            report.add(SourceReport::nameAdjusted, {file, scanner.line(), scanner.column()}, scanner.text());
        // Each object has a number, so comparing the last holder of the key finds a key that is given twice.
        if (std::exchange(shapes[member].holder, object.number) == object.number)
            report.add(SourceReport::keyTwice, {file, scanner.line(), scanner.column()}, scanner.text());
        isForward = isForward && member > object.last;
        return object.last = member;
    }

    // Returns 0 for null, which fits any kind.
    static std::uint8_t kindOf(JsonScanner::Token token, const JsonScanner& scanner)
    {
        switch (token) {
        case JsonScanner::null:
            return 0;
        case JsonScanner::objectBegin:
            return Kind::isObject;
        case JsonScanner::arrayBegin:
            return Kind::isArray;
        case JsonScanner::number:
            return Kind::isNumber;
        default:
            return token == JsonScanner::string && isIsoTime(scanner.text()) ? Kind::isTime : Kind::isText;
        }
    }

    // Adds a kind to a shape. Only the first value of each kind needs a place.
    void note(Index index, std::uint8_t kind, const JsonScanner& scanner)
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
    // recursive data such as trees gets a recursive type instead of endless nesting. The keys around are only compared
    // for the first value of a kind; the result is kept.
    Index sharedShape(Index member, std::uint8_t kind)
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

    // Returns the type of the values of a shape. For an array, it is that of its items, up to a bound of nesting. A
    // value that is an array in one example and single in another becomes text, unless it holds objects.
    JsonTypes::Shape typeOf(Index at, std::string_view name, SourceTypes::Index home)
    {
        constexpr std::uint16_t deepest = JsonTypes::kMaxDepth;
        const Shape unknown; // of the items of arrays that were empty in all documents
        const Shape* shape = &shapes[at];
        const Shape* mixed = nullptr; // an array, or a single value
        std::uint16_t depth = 0, mixedDepth = 0;
        for (; (shape->kinds & (Kind::isArray | Kind::isObject)) == Kind::isArray && depth < deepest; ++depth) {
            if (!mixed && shape->kinds != Kind::isArray) {
                mixed = shape;
                mixedDepth = depth;
            }
            shape = shape->items == 0 ? &unknown : &shapes[shape->items];
        }
        const std::uint8_t kinds = shape->kinds;
        const bool isRecord = (kinds & Kind::isObject) != 0 && shape->first != 0;
        // A time among texts is just text.
        const bool differs = (kinds & (kinds - 1)) != 0 && kinds != (Kind::isTime | Kind::isText);
        if (differs || mixed)
            report.add(SourceReport::kindsDiffer, (differs ? shape : mixed)->otherPlace, name);
        if (depth == deepest)
            report.add(SourceReport::cutShort, shapes[at].place, CString(name) + ", arrays inside each other");
        // A value that may also be an array of values becomes text, which doesn't repeat.
        if (!isRecord && (mixed || depth == deepest))
            depth = mixedDepth;
        if (!isRecord)
            return {{kinds == Kind::isNumber && !mixed ? SourceTypes::kindNumber
                     : kinds == Kind::isTime && !mixed ? SourceTypes::kindTime
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
    std::vector<Open> open;
    JsonPredictor predictor;
    std::vector<JsonPredictor::Leaf> leaves; // of the current message
    std::uint64_t messageBegin = 0;          // offset of the end of the message before it
    JsonPredictor::Position messageAround = JsonPredictor::kOutside;
    bool isLearning = false; // the current message
    bool isForward = true;   // the members since the last leaf are in the order of their shapes
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
