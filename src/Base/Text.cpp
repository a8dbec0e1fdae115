#include "Base/Text.h"

#include "Base/LoadBytes.h"
#include "Base/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The characters of Windows-1252 for 0x80 to 0x9F. The five bytes that it leaves undefined become the C1 controls of
// the same value.
constexpr std::array<char16_t, 32> kWindows1252 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                   0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                   0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                   0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The Char production. Surrogates and codes above 0x10FFFF are left to the caller, because decodeUtf8() returns none.
bool isXmlChar(char32_t code)
{
    if (code < 0x20)
        return code == '\t' || code == '\n' || code == '\r';
    return code != 0xFFFE && code != 0xFFFF;
}

struct CodeRange
{
    char32_t first;
    char32_t last;
};

// The characters that begin a name (https://www.w3.org/TR/xml/#NT-NameStartChar), and those that may only follow
// (NameChar).
constexpr CodeRange kNameStart[] = {{':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
                                    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr CodeRange kNameRest[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t N>
constexpr bool isIn(const CodeRange (&ranges)[N], char32_t code)
{
    for (const CodeRange& range : ranges)
        if (code >= range.first && code <= range.last)
            return true;
    return false;
}

// The places in a name at which a character is allowed.
enum InNames : std::uint8_t
{
    notInNames,
    notFirstInNames,
    anywhereInNames
};

constexpr std::array<InNames, 128> makeAsciiInNames()
{
    std::array<InNames, 128> table{};
    for (char32_t c = 0; c < table.size(); ++c)
        table[c] = isIn(kNameStart, c) ? anywhereInNames : isIn(kNameRest, c) ? notFirstInNames : notInNames;
    return table;
}

// The entry of each ASCII character. A table, because nearly all names are ASCII: isXmlName() took a tenth of an import
// when each digit went through the decoder and the ranges.
constexpr std::array<InNames, 128> kAsciiInNames = makeAsciiInNames();

using Bytes8 = std::uint64_t; // eight characters

constexpr Bytes8 repeated(unsigned char c)
{
    return c * Bytes8{0x0101010101010101};
}

// Sixteen characters in one register. They are signed, so that bytes outside of ASCII are below the blank.
using Bytes16 [[gnu::vector_size(16)]] = signed char;

Bytes16 bytes16Of(Bytes8 first, Bytes8 second)
{
    const Bytes8 both[] = {first, second};
    Bytes16 joined;
    std::memcpy(&joined, both, sizeof joined);
    return joined;
}

// Returns whether one of the bytes is a control character, not ASCII, or one of & < > ". '&' and '"', and '<' and '>',
// differ in one bit each: with that bit set, one comparison finds both.
bool hasSpecial(Bytes16 bytes)
{
    const Bytes16 specials = (bytes < ' ') | ((bytes | ('&' ^ '"')) == '&') | ((bytes | ('<' ^ '>')) == '>');
    Bytes8 halves[2];
    std::memcpy(halves, &specials, sizeof halves);
    return (halves[0] | halves[1]) != 0;
}

// Returns whether a local name can begin at this place of UTF-8 text. In a QName (Namespaces in XML 1.0, production
// [7]), a local name without a colon must follow the colon.
bool beginsLocalName(std::string_view text, std::size_t at)
{
    if (at == text.size() || text[at] == ':')
        return false;
    return isIn(kNameStart, decodeUtf8(text, at));
}

} // namespace

std::string_view trimmed(std::string_view text, std::string_view set)
{
    const std::size_t first = text.find_first_not_of(set);
    if (first == std::string_view::npos)
        return text.substr(0, 0);
    return text.substr(first, text.find_last_not_of(set) - first + 1);
}

CString lowerAscii(std::string_view text)
{
    CString lower(text);
    for (char& c : lower)
        c = lowerAscii(c);
    return lower;
}

CString upperAscii(std::string_view text)
{
    CString upper(text);
    for (char& c : upper)
        c = upperAscii(c);
    return upper;
}

bool isSameAscii(std::string_view a, std::string_view b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lowerAscii(x) == lowerAscii(y); });
}

bool endsWithAscii(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() && isSameAscii(text.substr(text.size() - ending.size()), ending);
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words)
{
    return std::ranges::find(words, text) != words.end();
}

CString formatText(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    CString text = formatList(format, arguments);
    va_end(arguments);
    return text;
}

CString formatList(const char* format, va_list arguments)
{
    // vsnprintf() uses up the list of arguments, so the first run, which only measures, gets a copy.
    va_list copy;
    va_copy(copy, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    CString out(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0)
        std::vsnprintf(out.data(), out.size() + 1, format, arguments);
    return out;
}

void fillText(CString& out, std::string_view format, std::string_view value)
{
    const std::size_t place = format.find("%s");
    out.assign(format.substr(0, place));
    if (place == std::string_view::npos)
        return;
    out.append(value);
    out.append(format.substr(place + 2));
}

CString countInWords(std::size_t count, std::string_view singular, std::string_view plural)
{
    return std::to_string(count).append(" ").append(count == 1 ? singular : plural);
}

CString fillText(std::string_view format, std::string_view value)
{
    CString out;
    fillText(out, format, value);
    return out;
}

// Most names have eight to sixteen bytes and are checked at each place where they are written. Such a text takes one
// comparison of two overlapping loads, and a longer one a comparison for each sixteen bytes.
bool isPlainXmlText(std::string_view bytes)
{
    const char* at = bytes.data();
    std::size_t left = bytes.size();
    if (left == 0)
        return true;
    if (left < sizeof(Bytes8)) {
        const Bytes8 padded = loadPartial(at, left) | repeated(' ') << 8 * left; // blanks are plain
        return !hasSpecial(bytes16Of(padded, padded));
    }
    // Leaves 1 to 16 bytes for the check below.
    for (; left > sizeof(Bytes16); at += sizeof(Bytes16), left -= sizeof(Bytes16))
        if (hasSpecial(bytes16Of(loadBytes<Bytes8>(at), loadBytes<Bytes8>(at + sizeof(Bytes8)))))
            return false;
    if (left < sizeof(Bytes8)) { // go back, over some bytes that are checked already
        at -= sizeof(Bytes8) - left;
        left = sizeof(Bytes8);
    }
    return !hasSpecial(bytes16Of(loadBytes<Bytes8>(at), loadBytes<Bytes8>(at + left - sizeof(Bytes8))));
}

bool isXmlText(std::string_view bytes)
{
    for (std::size_t at = 0; at < bytes.size();) {
        if (bytes.size() - at >= sizeof(Bytes8)) { // fast path: nearly every text is plain ASCII
            // The high bit of a byte is set in `block` if it is not ASCII, and in the difference if it is below the
            // blank. A borrow changes another byte only after a byte that is found in any case. A block with such a
            // byte is decoded below, where tabs and line ends are allowed.
            const Bytes8 block = loadBytes<Bytes8>(bytes.data() + at);
            if (((block | (block - repeated(0x20))) & repeated(0x80)) == 0) {
                at += sizeof block;
                continue;
            }
        }
        const char32_t code = decodeUtf8(bytes, at);
        if (code == kInvalidUtf8 || !isXmlChar(code))
            return false;
    }
    return true;
}

// The encoding is chosen for the text as a whole. Otherwise, two bytes of a Windows-1252 text that happen to form UTF-8
// would become another character.
CString toXmlText(std::string_view bytes)
{
    if (isXmlText(bytes))
        return CString(bytes);
    CString out;
    // Characters of Windows-1252 outside of ASCII take two or three bytes in UTF-8.
    out.reserve(bytes.size() + bytes.size() / 2);
    const bool utf8 = isUtf8(bytes);
    for (std::size_t at = 0; at < bytes.size();) {
        char32_t code;
        if (utf8) {
            code = decodeUtf8(bytes, at);
        } else {
            code = static_cast<unsigned char>(bytes[at++]);
            if (code >= 0x80 && code < 0xA0)
                code = kWindows1252[code - 0x80];
        }
        appendUtf8(out, isXmlChar(code) ? code : kReplacement);
    }
    return out;
}

bool appendCharacter(CString& out, std::uint32_t code)
{
    if (!isXmlChar(code) || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return false;
    appendUtf8(out, code);
    return true;
}

CString shownText(std::string_view text)
{
    // C1 controls, line separators and bidirectional controls (https://unicode.org/reports/tr9/). They could make a
    // terminal show a text other than the one that was written.
    static constexpr CodeRange hidden[] = {{0x80, 0x9F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
    CString shown(text);
    // First, so that toXmlText() does not turn a control character into U+FFFD.
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, ' ');
    if (isPlainXmlText(shown))
        return shown;
    const CString whole = toXmlText(shown);
    shown.clear();
    for (std::size_t at = 0; at < whole.size();) {
        const char32_t code = decodeUtf8(whole, at);
        appendUtf8(shown, isIn(hidden, code) ? U' ' : code);
    }
    return shown;
}

// Each character that isn't allowed is replaced alone, so names that differ only in such characters become equal.
CString toXmlName(std::string_view text)
{
    const CString whole = toXmlText(text);
    CString name;
    for (std::size_t at = 0; at < whole.size();) {
        const std::size_t start = at;
        const char32_t code = decodeUtf8(whole, at);
        const bool isColonAlone = code == ':' && start > 0 && !beginsLocalName(whole, at);
        if (!isColonAlone && (isIn(kNameStart, code) || (start > 0 && isIn(kNameRest, code))))
            name.append(whole, start, at - start);
        else
            name += '_';
    }
    return name.empty() ? "_" : name;
}

bool isXmlName(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        const bool isFirst = at == 0;
        if (const auto c = static_cast<unsigned char>(text[at]); c < 0x80) { // fast path: nearly all are ASCII
            if (kAsciiInNames[c] == notInNames || (isFirst && kAsciiInNames[c] == notFirstInNames))
                return false;
            ++at;
            continue;
        }
        const char32_t code = decodeUtf8(text, at);
        if (code == kInvalidUtf8 || (!isIn(kNameStart, code) && (isFirst || !isIn(kNameRest, code))))
            return false;
    }
    return !text.empty();
}
