#include "Import/Json/JsonPredictor.h"

#include "Base/Utf8.h"
#include "Import/Json/IsoTime.h"
#include "Import/Json/JsonScanner.h"

#include <algorithm>
#include <cstring>

namespace {

using Kind = JsonPredictor::Kind;

constexpr std::size_t kBlock = sizeof(std::uint64_t);

std::uint64_t load(const char* bytes)
{
    std::uint64_t block = 0;
    std::memcpy(&block, bytes, kBlock);
    return block;
}

// Returns whether `text` begins with `expected`. Most texts between values have few bytes, for which a call of memcmp
// costs more than the comparison.
bool beginsWith(std::string_view text, std::string_view expected)
{
    const std::size_t size = expected.size();
    if (text.size() < size)
        return false;
    const char *const one = text.data(), *const other = expected.data();
    if (size < kBlock)
        return std::equal(other, other + size, one);
    for (std::size_t i = 0; i + kBlock < size; i += kBlock)
        if (load(one + i) != load(other + i))
            return false;
    return load(one + size - kBlock) == load(other + size - kBlock); // may overlap the block before
}

constexpr std::uint64_t eachByte(unsigned char byte)
{
    return ~std::uint64_t{0} / 255 * byte;
}

// Returns whether eight bytes of a string are plain characters: ASCII, no control character, quote or backslash. Tests
// all eight at once (H. S. Warren, Hacker's Delight, 6-1); a false alarm only costs time.
bool arePlain(const char* bytes)
{
    const std::uint64_t block = load(bytes);
    const auto zeroIn = [](std::uint64_t x) { return (x - eachByte(1)) & ~x; };
    const std::uint64_t special =
        (block - eachByte(' ')) | zeroIn(block ^ eachByte('"')) | zeroIn(block ^ eachByte('\\')) | block;
    return (special & eachByte(0x80)) == 0;
}

// Skips one value. Each function moves `at` behind the part that it has checked. It returns false if that part is not
// JSON, is cut off by the end of the text, or is so rare that it is left to the scanner.
class Value
{
public:
    Value(std::string_view text, std::size_t at) : text(text), at(at) {}

    bool skip(std::uint8_t kinds)
    {
        switch (peek()) {
        case '"':
            return skipString(kinds);
        case '{':
            return (kinds & Kind::isObject) != 0 && skipWord("{}");
        case '[':
            return (kinds & Kind::isArray) != 0 && skipWord("[]");
        case 't':
            return (kinds & Kind::isText) != 0 && skipWord("true");
        case 'f':
            return (kinds & Kind::isText) != 0 && skipWord("false");
        case 'n': // fits any kind
            return skipWord("null");
        default:
            return (kinds & Kind::isNumber) != 0 && skipNumber();
        }
    }

    std::size_t end() const { return at; }

private:
    char peek() const { return at < text.size() ? text[at] : '\0'; }

    bool skipWord(std::string_view word)
    {
        if (text.substr(at, word.size()) != word)
            return false;
        at += word.size();
        return true;
    }

    // A number at the end of the text may go on after it.
    bool skipNumber()
    {
        return takeNumber([this] { return peek(); }, [this] { ++at; }) && at < text.size();
    }

    bool skipString(std::uint8_t kinds)
    {
        const std::size_t begin = ++at;
        bool hasEscapes = false;
        for (;;) {
            while (text.size() - at >= kBlock && arePlain(text.data() + at))
                at += kBlock;
            const char c = peek();
            if (c == '"')
                break;
            if (static_cast<unsigned char>(c) < ' ')
                return false;
            hasEscapes |= c == '\\';
            if (c == '\\' ? !skipEscape() : !skipCharacter())
                return false;
        }
        const std::string_view value = text.substr(begin, at++ - begin);
        constexpr std::uint8_t anyText = Kind::isTime | Kind::isText;
        if ((kinds & anyText) == anyText)
            return true;
        // With escapes it could be a time only if it begins with a digit, written as such or as an escape.
        if (hasEscapes && (isDigit(value[0]) || value[0] == '\\'))
            return false;
        return (kinds & (isIsoTime(value) ? Kind::isTime : Kind::isText)) != 0;
    }

    bool skipCharacter()
    {
        if (static_cast<unsigned char>(text[at]) >= 0x80)
            return decodeUtf8(text, at) != kInvalidUtf8;
        ++at;
        return true;
    }

    bool skipEscape()
    {
        constexpr std::string_view letters = "\"\\/bfnrt", hexDigits = "0123456789abcdefABCDEF";
        ++at;
        if (at == text.size())
            return false;
        if (text[at++] != 'u')
            return letters.find(text[at - 1]) != letters.npos;
        const std::string_view digits = text.substr(at, 4);
        at += digits.size();
        return digits.size() == 4 && digits.find_first_not_of(hexDigits) == digits.npos;
    }

    std::string_view text;
    std::size_t at;
};

} // namespace

const JsonPredictor::Edge* JsonPredictor::match(Position from, std::string_view text) const
{
    for (std::uint32_t edge = nodes[from].firstEdge; edge != 0; edge = edges[edge].next)
        if (beginsWith(text, edges[edge].text))
            return &edges[edge];
    return nullptr;
}

JsonPredictor::Skipped JsonPredictor::skip(Position around, std::string_view text)
{
    Skipped skipped, reached;
    Position position = around;
    while (const Edge* const edge = match(position, text.substr(reached.bytes))) {
        if (edge->lines > 0)
            reached.lineStart = reached.bytes + edge->lineStart;
        reached.lines += edge->lines;
        reached.bytes += edge->text.size();
        position = edge->target;
        if (position == around) {
            skipped = reached;
            ++hits;
            continue;
        }
        Value value(text, reached.bytes);
        if (!value.skip(nodes[position].kinds))
            break;
        reached.bytes = value.end();
    }
    ++misses;
    return skipped;
}

JsonPredictor::Position JsonPredictor::inside(Position around, std::uint32_t number)
{
    if (nodes.size() == kMaxNodes) {
        giveUp();
        return kOutside;
    }
    const auto [position, isNew] =
        positions.insert(static_cast<std::uint64_t>(around) << 32 | number, static_cast<Position>(nodes.size()));
    if (isNew)
        nodes.emplace_back();
    return position;
}

void JsonPredictor::learn(Position around, std::string_view text, std::uint64_t begin, const std::vector<Leaf>& leaves)
{
    if (text.empty() || !isLearning())
        return;
    Position from = around;
    std::uint64_t end = begin;
    for (const Leaf& leaf : leaves) {
        nodes[leaf.position].kinds |= leaf.kind;
        if (leaf.isForward)
            addEdge(from, text.substr(end - begin, leaf.begin - end), leaf.position);
        from = leaf.position;
        end = leaf.end;
    }
    addEdge(from, text.substr(end - begin), around);
}

// Longer texts are tried first, because the edge to a value is a prefix of an edge into the value if that is an object.
void JsonPredictor::addEdge(Position from, std::string_view text, Position target)
{
    std::uint32_t branches = 0, place = 0; // the edge before the new one; 0: none
    for (std::uint32_t edge = nodes[from].firstEdge; edge != 0; edge = edges[edge].next, ++branches) {
        if (edges[edge].text == text)
            return;
        if (edges[edge].text.size() > text.size())
            place = edge;
    }
    if (branches == kMaxBranches || textSize + text.size() > kMaxText)
        return;
    textSize += text.size();
    std::uint32_t& link = place == 0 ? nodes[from].firstEdge : edges[place].next;
    const Edge made{texts.keep(text), target, link, static_cast<std::uint32_t>(std::ranges::count(text, '\n')),
                    static_cast<std::uint32_t>(text.rfind('\n') + 1)};
    link = static_cast<std::uint32_t>(edges.size());
    edges.push_back(made);
}
