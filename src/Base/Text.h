#pragma once

#include <cstdint>
#include <initializer_list>
#include <list>
#include <string>
#include <string_view>

// The platform's plain types, as far as signatures name them.
using CString = std::string; ///< 8-bit text; its code page is UTF-8
using CStringList = std::list<CString>;
using UINT = unsigned int;
using BOOL = int;
using LONG = std::int32_t;
using DWORD = std::uint32_t;
using LRESULT = long;

/// A text in two pieces, the second often empty: what is only written need not be joined first.
struct TextPieces
{
    template <class Text>
    TextPieces(const Text& text) : first(text)
    {}
    TextPieces(std::string_view first, std::string_view rest) : first(first), rest(rest) {}

    /// The whole, which lies in `room` if there are two.
    std::string_view joined(CString& room) const { return rest.empty() ? first : room.assign(first).append(rest); }

    std::string_view first;
    std::string_view rest{};
};

/// White space as importers trim it: space, tab, line feed, carriage return, vertical tab, form feed.
inline constexpr std::string_view kWhitespace = " \t\n\r\v\f";

/// `text` without the characters of `set` at either end; a view into `text`.
std::string_view trimmed(std::string_view text, std::string_view set);

/// The same for white space. Nearly every text comes back as it is, which is told by its two ends.
inline std::string_view trimmed(std::string_view text)
{
    const bool isTight = !text.empty() && text.front() > ' ' && text.back() > ' ';
    return isTight ? text : trimmed(text, kWhitespace);
}

/// Letters of ASCII in the other case; every other byte stays, so that UTF-8 does.
constexpr char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char upperAscii(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
CString lowerAscii(std::string_view text);
CString upperAscii(std::string_view text);

/// True for texts that differ in nothing but the case of ASCII letters.
bool isSameAscii(std::string_view a, std::string_view b);

/// True if `text` ends with `ending`, but for the case of ASCII letters.
bool endsWithAscii(std::string_view text, std::string_view ending);

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> words);

/// printf into a text of any length.
[[gnu::format(printf, 1, 2)]] CString formatText(const char* format, ...);

/// "1 loss", "2 losses".
CString countInWords(std::size_t count, std::string_view singular, std::string_view plural);

/// `format` with its first "%s" replaced by `value`; a format without one comes back unchanged.
CString fillText(std::string_view format, std::string_view value);

/// The same, written into `out`, whose storage is kept: for loops that fill one format many times.
void fillText(CString& out, std::string_view format, std::string_view value);

/// Makes any bytes fit for an XML document: UTF-8 stays, a text that isn't valid UTF-8 is read whole as Windows-1252,
/// and a character outside of XML 1.0's Char production (https://www.w3.org/TR/xml/#charsets) becomes U+FFFD.
CString toXmlText(std::string_view bytes);

/// True when all bytes are printable ASCII and none of & < > ": such a text stands in XML as it is, also in an
/// attribute value. False may be answered for any other text.
bool isPlainXmlText(std::string_view bytes);

/// True when toXmlText() would change nothing, so that the text can be used where it stands.
bool isXmlText(std::string_view bytes);

/// Appends a character as UTF-8; false, and nothing, for one that XML can't hold.
bool appendCharacter(CString& out, std::uint32_t code);

/// `text` as a terminal may be shown it, on one line: fit for XML, a blank for each control character, separator of
/// lines, and mark that turns the direction of writing.
CString shownText(std::string_view text);

/// True for a text that can be the name of an XML element (the Name production of XML 1.0, fifth edition).
bool isXmlName(std::string_view text);

/// The name of an XML element that is most like `text`: each character that can't stand at its place in a name is a
/// "_". "_" for the empty text.
CString toXmlName(std::string_view text);
