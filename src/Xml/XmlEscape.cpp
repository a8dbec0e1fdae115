#include "Xml/XmlEscape.h"

#include <array>

namespace {

// The escape of each byte, null for a byte that stays. Bytes of UTF-8 above ASCII stay.
using Escapes = std::array<const char*, 256>;

// A literal carriage return would be read back as a line feed (https://www.w3.org/TR/xml/#sec-line-ends), and "]]>"
// must not occur in content. Attribute-value normalisation turns other white space into blanks as well.
constexpr Escapes makeEscapes(bool inAttribute)
{
    Escapes escapes = {};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['\r'] = "&#13;";
    if (inAttribute) {
        escapes['"'] = "&quot;";
        escapes['\t'] = "&#9;";
        escapes['\n'] = "&#10;";
    }
    return escapes;
}

constexpr Escapes kAttributeEscapes = makeEscapes(true);
constexpr Escapes kTextEscapes = makeEscapes(false);

// Copies the stretches between escapes as a whole.
void appendEscaped(CString& out, std::string_view text, const Escapes& escapes)
{
    std::size_t done = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char* const escape = escapes[static_cast<unsigned char>(text[at])];
        if (!escape)
            continue;
        out.append(text, done, at - done);
        out += escape;
        done = at + 1;
    }
    out.append(text, done);
}

} // namespace

void appendXmlValue(CString& out, std::string_view value)
{
    appendEscaped(out, value, kAttributeEscapes);
}

void appendXmlContent(CString& out, std::string_view text)
{
    appendEscaped(out, text, kTextEscapes);
}
