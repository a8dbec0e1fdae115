#include "Import/Json/JsonScanner.h"

#include "Base/Utf8.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <array>
#include <cerrno>

// A text is scanned in place, a file through a buffer whose contents refill() moves. Data that must survive a refill is
// either after `kept` or copied. A document is scanned in one pass that ends at the first wrong character, so faults
// have its place.
//
// Tried without gain: searching for the end of a string by std::find_if, and a shorter path past blanks. Most tokens
// have fewer than ten bytes.
namespace {

constexpr std::size_t kBuffer = 1 << 18;     // bytes that are read at once
constexpr std::size_t kLongText = 1 << 12;   // bytes; once this much of a string is kept, further pieces are dropped
constexpr std::size_t kLongestCharacter = 4; // bytes of one in UTF-8

constexpr std::array<bool, 256> makeSpecial()
{
    std::array<bool, 256> special{};
    for (std::size_t c = 0; c < special.size(); ++c)
        special[c] = c < ' ' || c == '"' || c == '\\' || c >= 0x80;
    return special;
}

// The bytes that end a run of plain characters in a string: quotes, escapes, control characters, which are faults, and
// characters outside of ASCII, which must be valid UTF-8.
constexpr std::array<bool, 256> kSpecial = makeSpecial();

} // namespace

SourceRefusal refusalOf(const CString& fileName, const JsonFault& fault)
{
    return {formatText(loadText(IDS_PARSE_ERROR), static_cast<long>(fault.line), static_cast<long>(fault.column),
                       fault.reason.c_str()),
            {fileName, fault.reason, fault.line, fault.column}};
}

JsonScanner::JsonScanner(InputFile& file) : file(&file), buffer(kBuffer)
{
    // A pipe may return single bytes, so the mark may need several reads.
    while (data.size() < kByteOrderMark.size() && refill()) {
    }
    if (data.starts_with(kByteOrderMark))
        at = kByteOrderMark.size();
    lineOffset = at;
}

// Reads more of the file. The buffer keeps the bytes from `kept` on, and grows if a token fills it. Returns false at
// the end.
bool JsonScanner::refill()
{
    if (!file)
        return false;
    const std::size_t from = std::min(kept, at), left = data.size() - from;
    std::copy_n(data.data() + from, left, buffer.data());
    // Only a key or a number can fill it: strings are taken piece by piece.
    if (left == buffer.size())
        buffer.resize(2 * buffer.size());
    const ssize_t size = file->read(buffer.data() + left, buffer.size() - left);
    if (size < 0)
        fail(inWords(errno));
    consumed += from;
    at -= from;
    kept = kept == CString::npos ? kept : 0;
    data = {buffer.data(), left + static_cast<std::size_t>(size)};
    return size > 0;
}

void JsonScanner::fail(const CString& reason)
{
    notePlace();
    throw JsonFault{reason, tokenLine, tokenColumn};
}

// Skips blanks, and comments where they are allowed. Lines are counted here, in comments and in skip(), because no
// token contains a line feed.
void JsonScanner::skipSpace()
{
    while (!isAtEnd()) {
        const char c = data[at];
        if (c == '\n')
            beginLine();
        else if (c != ' ' && c != '\t' && c != '\r' && (c != '/' || !withComments))
            return;
        ++at;
        if (c == '/')
            skipComment();
    }
}

// Skips a comment from its second character on. Only a text has comments, and it is never refilled.
void JsonScanner::skipComment()
{
    const char kind = peek();
    if (kind != '*' && kind != '/')
        fail("a comment is expected after \"/\"");
    const std::size_t end = kind == '*' ? data.find("*/", at + 1) : data.find('\n', at);
    for (; at < std::min(end, data.size()); ++at)
        if (data[at] == '\n')
            beginLine();
    if (kind == '*' && end == data.npos)
        fail("the text ends in a comment");
    at += kind == '*' ? 2 : 0;
}

// Reads what separates values, then the value.
JsonScanner::Token JsonScanner::next()
{
    skipSpace();
    // A text holds a single value, a file any number of them.
    if (isObject.empty() && (state == afterValue || file)) {
        if (isAtEnd())
            return end;
        if (!file)
            fail(peek() == '{' || peek() == '[' ? "a second value follows; only the importer json reads several"
                                                : "text follows the end of the document");
        state = value;
    }
    if (state == afterValue) {
        if (peek() != ',')
            return close();
        ++at;
        skipSpace();
        state = isObject.back() ? nextKey : value;
    }
    notePlace();
    if (state == firstKey || state == nextKey)
        return state == firstKey && peek() == '}' ? close() : scanKey();
    return state == firstValue && peek() == ']' ? close() : scanValue();
}

void JsonScanner::notePlace()
{
    tokenLine = lines;
    tokenColumn = static_cast<std::uint32_t>(consumed + at - lineOffset + 1);
}

// Scans a key and its colon. The key is copied if looking for the colon might refill the buffer and so move it.
JsonScanner::Token JsonScanner::scanKey()
{
    if (peek() != '"')
        fail("a key is expected");
    scanString(true);
    if (file && (at == data.size() || data[at] != ':') && token.data() != unescaped.data())
        token = unescaped.assign(token);
    skipSpace();
    if (peek() != ':')
        fail("a colon is expected after the key");
    ++at;
    state = value;
    return key;
}

// Scans a value other than a key. `kept` marks its start, so that a refill in its middle leaves it in one piece.
JsonScanner::Token JsonScanner::scanValue()
{
    const char c = peek();
    if (c == '{' || c == '[')
        return open(c == '{');
    state = afterValue;
    if (c == '"') {
        scanString(false);
        return string;
    }
    kept = at;
    Token kind = number;
    if (c == 't' || c == 'f' || c == 'n') {
        for (const char expected : std::string_view(c == 't' ? "true" : c == 'f' ? "false" : "null")) {
            if (peek() != expected)
                fail("a value is expected");
            ++at;
        }
        kind = c == 'n' ? null : boolean;
    } else {
        scanNumber();
    }
    token = data.substr(kept, at - kept);
    kept = CString::npos;
    return kind;
}

JsonScanner::Token JsonScanner::open(bool object)
{
    if (isObject.size() == kMaxDepth)
        fail("more than " + std::to_string(kMaxDepth) + " levels of nesting, which is the limit");
    ++at;
    isObject.push_back(object);
    state = object ? firstKey : firstValue;
    return object ? objectBegin : arrayBegin;
}

// Ends a container, or reports the missing comma or bracket.
JsonScanner::Token JsonScanner::close()
{
    const bool object = isObject.back();
    if (peek() != (object ? '}' : ']'))
        fail(isAtEnd() ? CString("the text ends too early")
                       : CString("a comma or \"") + (object ? "}" : "]") + "\" is expected");
    notePlace();
    ++at;
    isObject.pop_back();
    state = afterValue;
    return object ? objectEnd : arrayEnd;
}

// Scans a string. Without escapes the token is a view of the text. Otherwise its pieces are joined in `unescaped`, as
// is the beginning of a long string of a file. All of the string is checked, even parts that aren't kept.
void JsonScanner::scanString(bool isKey)
{
    const std::size_t longest = file && !isKey ? kLongText : CString::npos;
    bool hasEscapes = false;
    unescaped.clear();
    isReplaced = false;
    kept = ++at;
    const auto takePiece = [&] {
        if (unescaped.size() < longest)
            unescaped.append(data, kept, at - kept);
        hasEscapes = true;
    };
    for (;;) {
        // Takes the bytes before a refill, which then needn't keep them.
        if (data.size() - at < kLongestCharacter && longest != CString::npos) {
            takePiece();
            kept = at;
        }
        if (isAtEnd())
            fail("the text ends inside a string");
        const std::size_t size = data.size();
        while (at < size && !kSpecial[static_cast<unsigned char>(data[at])])
            ++at;
        if (at == size)
            continue;
        const char c = data[at];
        if (c == '"')
            break;
        if (c == '\\') {
            takePiece();
            scanEscape();
            unescaped.resize(std::min(unescaped.size(), longest));
            kept = at;
        } else if (static_cast<unsigned char>(c) < ' ') {
            fail("a string holds a control character");
        } else {
            // The whole character must be in the buffer.
            while (data.size() - at < kLongestCharacter && refill()) {
            }
            if (decodeUtf8(data, at) == kInvalidUtf8)
                fail("the bytes are not UTF-8");
        }
    }
    if (hasEscapes)
        takePiece();
    token = hasEscapes ? std::string_view(unescaped) : data.substr(kept, at - kept);
    kept = CString::npos;
    ++at;
}

// Scans an escape. A surrogate without its other half becomes U+FFFD: RFC 8259, 8.2 allows such strings.
void JsonScanner::scanEscape()
{
    constexpr std::string_view letters = "\"\\/bfnrt", meanings = "\"\\/\b\f\n\r\t";
    kept = at++;
    const char c = peek();
    if (c != 'u') {
        const std::size_t which = letters.find(c);
        if (which == letters.npos)
            fail("the escape is unknown in JSON");
        unescaped += meanings[which];
        ++at;
        return;
    }
    ++at;
    constexpr std::uint32_t firstHigh = 0xD800, firstLow = 0xDC00, behindLow = 0xE000, replacement = 0xFFFD;
    const auto isSurrogate = [](std::uint32_t code) { return code >= firstHigh && code < behindLow; };
    const auto isEscapeNext = [this] {
        while (data.size() - at < 2 && refill()) {
        }
        return data.substr(at).starts_with("\\u");
    };
    std::uint32_t code = scanHex();
    // Only a high surrogate needs the escape after it.
    while (isSurrogate(code) && code < firstLow && isEscapeNext()) {
        kept = at += 2;
        const std::uint32_t low = scanHex();
        if (isSurrogate(low) && low >= firstLow) {
            code = 0x10000 + ((code - firstHigh) << 10) + (low - firstLow);
        } else {
            appendUtf8(unescaped, replacement);
            isReplaced = true;
            code = low;
        }
    }
    isReplaced |= isSurrogate(code);
    appendUtf8(unescaped, isSurrogate(code) ? replacement : code);
}

// Scans the digits of an escape. Any of them may be in the next piece of the file.
std::uint32_t JsonScanner::scanHex()
{
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i, ++at) {
        const char c = lowerAscii(peek());
        if (!isDigit(c) && (c < 'a' || c > 'f'))
            fail("four hexadecimal digits are expected");
        code = code << 4 | static_cast<std::uint32_t>(isDigit(c) ? c - '0' : c - 'a' + 10);
    }
    return code;
}

// Checks the syntax of a number, which begins at `kept`.
void JsonScanner::scanNumber()
{
    if (takeNumber([this] { return peek(); }, [this] { ++at; }))
        return;
    if (const std::string_view before = data.substr(kept, at - kept); !before.empty() && before != "-")
        fail("a digit is expected");
    if (isAtEnd())
        fail("the text ends too early");
    // The byte order mark of UTF-16 begins with such a byte. Such a text looks like JSON in an editor, so the error
    // names the encoding.
    fail(static_cast<unsigned char>(peek()) < 0x80 ? "a value is expected" : "a value is expected, in UTF-8");
}
