#include "Xml/XmlEscape.h"

#include <array>

namespace {

using Escapes = std::array<const char*, 256>;

// Attribute-value normalisation turns unescaped white space into blanks when the value is read back.
constexpr Escapes attributeEscapes()
{
    Escapes escapes = {};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['"'] = "&quot;";
    escapes['\t'] = "&#9;";
    escapes['\n'] = "&#10;";
    escapes['\r'] = "&#13;";
    return escapes;
}

// A literal carriage return would be read back as a line feed (https://www.w3.org/TR/xml/#sec-line-ends), and "]]>"
// must not occur in content.
constexpr Escapes textEscapes()
{
    Escapes escapes = {};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['\r'] = "&#13;";
    return escapes;
}

constexpr Escapes kAttributeEscapes = attributeEscapes();
constexpr Escapes kTextEscapes = textEscapes();

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
