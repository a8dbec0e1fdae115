#pragma once

#include "Base/Text.h"

#include <cstdint>
#include <vector>

class InputFile;

/// Why a text is no JSON or YAML, and where.
struct JsonFault
{
    CString reason;
    std::uint32_t line = 0;   ///< counted from 1
    std::uint32_t column = 0; ///< counted from 1, in bytes
};

/// Reads JSON (RFC 8259) token by token, without recursion. Numbers, strings and keys may have any length. The first
/// fault is thrown as a JsonFault.
class JsonScanner
{
public:
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

    /// Containers nest this deep at most.
    static constexpr std::size_t kMaxDepth = 1000;

    /// Reads one value. The text outlives the scanner.
    explicit JsonScanner(std::string_view text);

    /// Reads a file of any number of values, one after another, in constant memory. Of a long string that is no key
    /// only the beginning is kept.
    explicit JsonScanner(InputFile& file);

    /// The next token; `end` behind the last value.
    Token next();

    /// A key or string without quotes and escapes, a number or boolean as written. Valid until the next call.
    std::string_view text() const { return token; }

    /// Where the token begins.
    std::uint32_t line() const { return tokenLine; }
    std::uint32_t column() const { return tokenColumn; }

    /// How many bytes have been read.
    std::uint64_t offset() const { return consumed + at; }

private:
    enum State : std::uint8_t
    {
        value,
        firstValue, // or the end of the array
        firstKey,   // or the end of the object
        nextKey,
        afterValue
    };

    Token scanValue();
    Token scanKey();
    Token open(bool isObject);
    Token close();
    void scanString(bool isKey);
    void scanEscape();
    std::uint32_t scanHex();
    void scanNumber();
    void scanDigits();
    void scanWord(std::string_view word);
    void skipSpace();
    void notePlace();
    bool refill();
    bool isAtEnd() { return at == data.size() && !refill(); }
    char peek() { return isAtEnd() ? '\0' : data[at]; }
    [[noreturn]] void fail(const CString& reason);

    std::string_view data; // the text, or what of the file is in the buffer
    InputFile* file = nullptr;
    std::vector<char> buffer;
    std::size_t at = 0;
    std::size_t kept = CString::npos; // from here on the bytes of the buffer are still needed
    std::uint64_t consumed = 0;       // bytes of the file before the buffer
    std::uint64_t lineOffset = 0;
    std::uint32_t lines = 1;
    std::uint32_t tokenLine = 1;
    std::uint32_t tokenColumn = 1;
    std::string_view token;
    CString unescaped;
    std::vector<bool> isObject; // of the open containers
    State state = value;
};
