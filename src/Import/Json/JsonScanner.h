#pragma once

#include "Base/Text.h"
#include "Import/SourceReport.h"

#include <algorithm>
#include <cstdint>
#include <vector>

class InputFile;

/// The reason why a text is not JSON or YAML, with its place.
struct JsonFault
{
    CString reason;
    std::uint32_t line = 0;   ///< counted from 1
    std::uint32_t column = 0; ///< counted from 1, in bytes
};

/// Returns the refusal of a file because of a fault in it.
SourceRefusal refusalOf(const CString& fileName, const JsonFault& fault);

/// Returns whether a text begins with a comment as in JavaScript.
inline bool beginsWithComment(std::string_view text)
{
    return text.starts_with("/*") || text.starts_with("//");
}

/// Returns whether a text without white space before it begins like JSON: an array, or an object whose first key is in
/// quotes. An object with a plain key is a flow mapping of YAML.
inline bool beginsLikeJson(std::string_view text)
{
    const std::string_view first = trimmed(text.substr(std::min<std::size_t>(text.size(), 1)));
    return text.starts_with('[') || beginsWithComment(text) ||
           (text.starts_with('{') && (first.empty() || std::string_view("\"}/").find(first.front()) != first.npos));
}

/// Returns whether a character is a digit of a JSON number.
inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Moves a cursor behind the number of JSON that it is at (RFC 8259, 6). `peek` returns the character at the cursor,
/// `\0` at the end; `advance` moves it by one. Returns false at the first wrong character. The value is not computed,
/// so it may be larger than any type can hold.
template <typename Peek, typename Advance>
bool takeNumber(const Peek& peek, const Advance& advance)
{
    const auto takeDigits = [&] {
        if (!isDigit(peek()))
            return false;
        while (isDigit(peek()))
            advance();
        return true;
    };
    if (peek() == '-')
        advance();
    // A zero at the start is the whole integer part.
    if (peek() == '0')
        advance();
    else if (!takeDigits())
        return false;
    if (peek() == '.') {
        advance();
        if (!takeDigits())
            return false;
    }
    if (peek() != 'e' && peek() != 'E')
        return true;
    advance();
    if (peek() == '+' || peek() == '-')
        advance();
    return takeDigits();
}

/// Scans JSON (RFC 8259) token by token, without recursion. Numbers, strings and keys may have any length. Throws the
/// first fault as a JsonFault. docs/adr/json-scanner.md explains why no library is used.
class JsonScanner
{
public:
    /// An object or array is a pair of tokens, with those of its members or items in between; any other value is one
    /// token. Commas and colons are no tokens.
    enum Token : std::uint8_t
    {
        end,
        objectBegin,
        objectEnd,
        arrayBegin,
        arrayEnd,
        key,
        string,
        number,
        boolean,
        null
    };

    /// The maximum nesting of arrays and objects.
    static constexpr std::size_t kMaxDepth = 1000;

    /// Scans one value. The text has no byte order mark, and must outlive the scanner. With `withComments` those of
    /// JavaScript are skipped; JSON has none. An empty text is a fault.
    JsonScanner(std::string_view text, bool withComments) : withComments(withComments), data(text) {}

    /// Scans a file with any number of values, one after another, separated by any white space or none. Memory is
    /// bounded by the longest key or number; only the beginning of a long string is kept, up to about the size of the
    /// buffer. The file must outlive the scanner. A byte order mark is skipped.
    explicit JsonScanner(InputFile& file);

    /// Returns the next token; `end` after the last value. Throws JsonFault; the scanner must not be used after that.
    Token next();

    /// Returns a key or string without quotes and escapes, or a number or boolean as written. Valid until the next call
    /// of next().
    std::string_view text() const { return token; }

    /// Returns whether a key or string contains U+FFFD instead of a surrogate without its other half, which UTF-8 can't
    /// hold.
    bool hasLoneSurrogate() const { return isReplaced; }

    /// Return the place of the token, counted from 1; columns in bytes.
    std::uint32_t line() const { return tokenLine; }
    std::uint32_t column() const { return tokenColumn; }

    /// Return offsets in the source: of the first byte of the token, unless it is a key, and one past its last byte.
    std::uint64_t beginOffset() const { return lineOffset + tokenColumn - 1; }
    std::uint64_t endOffset() const { return consumed + at; }

    /// Returns the bytes from an offset to the end of the token; empty if they are no longer in the buffer.
    std::string_view bytesFrom(std::uint64_t offset) const
    {
        return offset < consumed ? std::string_view() : data.substr(offset - consumed, at - (offset - consumed));
    }

    /// Returns the bytes after the token that are in the buffer.
    std::string_view bytesAhead() const { return data.substr(at); }

    /// Skips `bytes` of these, which end with a value in the same container. They contain `lineFeeds` line feeds, the
    /// last one right before their offset `lineStart`.
    void skip(std::size_t bytes, std::uint32_t lineFeeds, std::size_t lineStart)
    {
        if (lineFeeds > 0)
            lineOffset = consumed + at + lineStart;
        lines += lineFeeds;
        at += bytes;
    }

private:
    // What the scanner expects next. Together with the stack of open containers it replaces a recursive grammar.
    enum State : std::uint8_t
    {
        value,
        firstValue, // or the end of the array
        firstKey,   // or the end of the object
        nextKey,
        afterValue
    };

    // Each scans a part of the grammar from the cursor on, and moves the cursor behind it.
    Token scanValue();
    Token scanKey();
    Token open(bool isObject);
    Token close();
    void scanString(bool isKey);
    void scanEscape();
    std::uint32_t scanHex();
    void scanNumber();
    void skipSpace();
    void skipComment();
    void beginLine() // after the line feed at the cursor
    {
        ++lines;
        lineOffset = consumed + at + 1;
    }
    void notePlace();
    // Access to the buffer. A text is never refilled, and its end is that of `data`.
    bool refill();
    bool isAtEnd() { return at == data.size() && !refill(); }
    char peek() { return isAtEnd() ? '\0' : data[at]; }
    [[noreturn]] void fail(const CString& reason);

    const bool withComments = false;
    std::string_view data; // the text, or the part of the file in the buffer
    InputFile* file = nullptr;
    std::vector<char> buffer;         // of a file
    std::size_t at = 0;               // cursor in `data`
    std::size_t kept = CString::npos; // start of the bytes that refill() must keep; npos if none
    std::uint64_t consumed = 0;       // bytes of the file before the buffer
    std::uint64_t lineOffset = 0;     // of the current line, in the file
    std::uint32_t lines = 1;          // number of the current line
    std::uint32_t tokenLine = 1;
    std::uint32_t tokenColumn = 1;
    std::string_view token;
    CString unescaped;          // holds the token if it isn't in the text as it is
    bool isReplaced = false;    // see hasLoneSurrogate()
    std::vector<bool> isObject; // for each open container
    State state = value;
};
