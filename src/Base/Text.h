#pragma once

#include <cstdarg>
#include <cstdint>
#include <initializer_list>
#include <list>
#include <string>
#include <string_view>

// The platform's plain types that signatures use.
using CString = std::string; ///< 8-bit text in UTF-8
using CStringList = std::list<CString>;
using UINT = unsigned int;
using BOOL = int;
using LONG = std::int32_t;
using DWORD = std::uint32_t;
using LRESULT = long;

/// Views of a text in two pieces, the second often empty. A text that is only written need not be joined first. Valid
/// as long as the texts that they view.
struct TextPieces
{
    template <class Text>
    TextPieces(const Text& text) : first(text)
    {}
    TextPieces(std::string_view first, std::string_view rest) : first(first), rest(rest) {}

    bool empty() const { return first.empty() && rest.empty(); }

    /// Returns the whole text, as a view of `room` if there are two pieces.
    std::string_view joined(CString& room) const { return rest.empty() ? first : room.assign(first).append(rest); }

    std::string_view first;
    std::string_view rest{};
};

/// White space as importers trim it: space, tab, line feed, carriage return, vertical tab, form feed. XML's own white
/// space is only the first four.
inline constexpr std::string_view kWhitespace = " \t\n\r\v\f";

/// Returns `text` without the characters of `set` at either end, as a view into `text`.
std::string_view trimmed(std::string_view text, std::string_view set);

/// Returns `text` without kWhitespace at either end, as a view. Fast path: nearly every text has none there.
inline std::string_view trimmed(std::string_view text)
{
    const auto isBlank = [](char c) { return c <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r')); };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Return ASCII letters in the given case. Other bytes stay, so UTF-8 stays valid.
constexpr char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upperAscii(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Return a copy in the given case.
CString lowerAscii(std::string_view text);
CString upperAscii(std::string_view text);

/// Returns whether two texts differ at most in the case of ASCII letters.
bool isSameAscii(std::string_view a, std::string_view b);

/// Returns whether `text` ends with `ending`, whatever the case of ASCII letters.
bool endsWithAscii(std::string_view text, std::string_view ending);

/// Returns whether `text` equals one of `words`.
bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words);

/// Return printf() output of any length, empty if the formatter fails. For formats of the string table. Texts from
/// elsewhere are arguments, never the format.
[[gnu::format(printf, 1, 2)]] CString formatText(const char* format, ...);
[[gnu::format(printf, 1, 0)]] CString formatList(const char* format, va_list arguments);

/// Returns a count with its noun: "1 loss", "2 losses".
CString countInWords(std::size_t count, std::string_view singular, std::string_view plural);

/// Returns `format` with its first "%s" replaced by `value`, unchanged if it has none. `value` is never read as a
/// format.
CString fillText(std::string_view format, std::string_view value);

/// Writes the same into `out` and reuses its storage, for loops that fill one format many times.
void fillText(CString& out, std::string_view format, std::string_view value);

/// Returns any bytes made fit for an XML document. Valid UTF-8 stays, any other text is read as Windows-1252 as a
/// whole. A character outside of XML 1.0's Char production (https://www.w3.org/TR/xml/#charsets) becomes U+FFFD.
CString toXmlText(std::string_view bytes);

/// Returns true if all bytes are ASCII characters from the blank on, DEL included, and none is & < > ". Such a text can
/// be written to XML unchanged, also in an attribute value. May return false for other texts that need no change.
bool isPlainXmlText(std::string_view bytes);

/// Returns whether toXmlText() would leave the text unchanged, so that no copy is needed.
bool isXmlText(std::string_view bytes);

/// Appends a character as UTF-8. Returns false and appends nothing if XML can't hold it, or if `code` is a surrogate or
/// above 0x10FFFF. For character references of a source.
bool appendCharacter(CString& out, std::uint32_t code);

/// Returns `text` made safe for a terminal, on one line: fit for XML, with a blank for each control character, line
/// separator and mark that changes the writing direction. Texts of sources, servers and drivers pass through it,
/// because control sequences could move the cursor or change what is already shown.
CString shownText(std::string_view text);

/// Returns whether a text can be the name of an XML element (the Name production of XML 1.0, fifth edition).
bool isXmlName(std::string_view text);

/// Returns `text` as the name of an XML element: each character that isn't allowed at its place becomes "_", also a
/// colon after other characters that no local name follows. Returns "_" for the empty text.
CString toXmlName(std::string_view text);
