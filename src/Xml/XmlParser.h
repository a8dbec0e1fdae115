#pragma once

#include "Base/Text.h"
#include "Files/File.h"
#include "Xml/XmlPlace.h"

#include <cstddef>
#include <optional>

/// The first error that makes a document not well-formed, or the system's error.
struct IXMLDOMParseError
{
    CString reason;      ///< empty if nothing failed
    LONG line = 0;       ///< from 1; 0 if the file could not be read, and the reason is the system's
    LONG linepos = 0;    ///< the column, as `line`
    int systemError = 0; ///< the errno value if the file could not be read; ENOMEM without memory; else 0
};

/// A name in a document. Both parts are interned: during one parse, equal names are equal pointers. Valid until the
/// parse ends.
struct XmlName
{
    const char* local;
    const char* prefix; ///< null if there is none

    /// Returns the name as it is written in the document.
    CString qualified() const { return prefix ? CString(prefix) + ":" + local : local; }

    friend bool operator==(const XmlName&, const XmlName&) = default;
};

/// An attribute. Its value is normalised (XML 1.0, section 3.3.3) and not terminated by NUL.
struct XmlAttribute
{
    XmlName name;
    std::string_view value;
};

/// The attributes of a start tag, without namespace declarations. Those that the internal subset supplies come last.
/// Valid until startElement() returns.
class XmlAttributes
{
public:
    /// Takes the arrays of libxml2's startElementNs callback.
    XmlAttributes(const unsigned char** pointers, int size) : rows(pointers), count(static_cast<std::size_t>(size)) {}

    std::size_t size() const { return count; }
    /// `index` must be less than size().
    XmlAttribute operator[](std::size_t index) const
    {
        const unsigned char** const row = rows + kRowSize * index;
        return {{text(row[0]), text(row[1])}, {text(row[3]), static_cast<std::size_t>(row[4] - row[3])}};
    }

    /// Returns the trimmed value of the attribute with this local name, which has a prefix if `hasPrefix`, else none.
    /// Empty if there is no such attribute. Linear in the attributes.
    std::string_view valueOf(std::string_view local, bool hasPrefix = false) const
    {
        for (std::size_t i = 0; i < count; ++i)
            if (const XmlAttribute attribute = (*this)[i];
                attribute.name.local == local && (attribute.name.prefix != nullptr) == hasPrefix)
                return trimmed(attribute.value);
        return {};
    }

    /// The namespace of an attribute's name; null for none.
    const char* uriOf(std::size_t index) const { return text(rows[kRowSize * index + 2]); }

    // Pointers for each attribute.
    static constexpr int kRowSize = 5;

private:
    static const char* text(const unsigned char* bytes) { return reinterpret_cast<const char*>(bytes); }

    const unsigned char** rows; // libxml2's rows: name, prefix, namespace, value, end of value
    std::size_t count;
};

/// Tells a handler where the parser is. A place is computed only on request, because that is costly. The parser
/// implements it.
class XmlLocator
{
public:
    /// Returns where the last start tag begins. Call it in startElement(). The column is 0 if the line is so long that
    /// its beginning is no longer in memory.
    virtual XmlPlace tagStart() const = 0;

protected:
    ~XmlLocator() = default;
};

/// A namespace declaration. Both texts are interned like names, and never null. The prefix of the default namespace is
/// "".
struct XmlNamespace
{
    const char* prefix;
    const char* uri;
};

/// The namespaces of a start tag (https://www.w3.org/TR/xml-names/), and where it begins. Texts are interned like
/// names. Valid until startElement() returns.
struct XmlScope
{
    const char* uri;                    ///< the namespace of the element; null if it has none
    const unsigned char** declarations; ///< `count` pairs: prefix (null for the default) and URI
    std::size_t count;
    const XmlLocator& locator;

    /// Returns one of the declarations; `index` must be less than `count`.
    XmlNamespace operator[](std::size_t index) const
    {
        const auto text = [](const unsigned char* bytes) { return bytes ? reinterpret_cast<const char*>(bytes) : ""; };
        return {text(declarations[2 * index]), text(declarations[2 * index + 1])};
    }

    /// Returns the place of the tag's "<".
    XmlPlace place() const { return locator.tagStart(); }
};

/// Thrown by a handler that refuses the document. `reason` becomes the parse error at the current place.
struct XmlRefusal
{
    CString reason;
};

/// Receives the content of a document in order. Names are split at their prefix whether it is declared or not. Entities
/// are expanded; unknown ones are left out. Texts are UTF-8 and valid until the call returns. Called in the thread that
/// parses. Any call may throw, which ends the parse.
class XmlHandler
{
public:
    virtual ~XmlHandler() = default;

    /// Called at each start tag, and endElement() at its end tag. An empty element has both.
    virtual void startElement(XmlName name, XmlAttributes attributes, const XmlScope& scope) = 0;
    virtual void endElement() = 0;

    /// A piece of character data; one text can arrive in several pieces.
    virtual void text(std::string_view) {}
    /// Each section, comment and instruction arrives whole. Those of the internal subset do not arrive. A section is
    /// passed to text() by default.
    virtual void cdata(std::string_view data) { text(data); }
    virtual void comment(std::string_view) {}
    virtual void instruction(std::string_view /*target*/, std::string_view /*data*/) {}

    /// Called for a reference to an entity that is unknown or external, which is left out.
    virtual void entityLeftOut(std::string_view /*name*/, XmlPlace) {}

    /// Returns whether text() and cdata() are called. Leaving them out is faster.
    virtual bool wantsText() const { return true; }
};

/// Parses an XML 1.0 document as a stream into calls of `handler`. Returns nothing if it is well-formed
/// (https://www.w3.org/TR/xml/#sec-well-formed), else its first error; the handler has then received the content before
/// the error. A file of more than `most` bytes is not read. External entities and subsets are never read. An exception
/// of the handler ends the parse and passes through; XmlRefusal and std::bad_alloc become the error instead.
///
/// Bounds, whose violation is an error with its place: entity expansion (ten times the bytes read, at least a million
/// bytes); nesting (200,000 levels, 256 in a document that declares entities); attributes of one tag (10,000); names
/// (4,096 bytes, and 100,000 different ones); namespaces in scope (4,096); and lists whose members libxml2 compares
/// pairwise, that is attributes and enumerations (64 comparisons for each byte read, at least 10^8). The progress
/// handler is called while bytes are read, and its refusal throws Cancelled.
///
/// libxml2 was chosen over expat, which is slower here, because it copies each name and value (docs/adr/xml-parser.md).
std::optional<IXMLDOMParseError> parseXmlFile(const CString& fileName, XmlHandler& handler,
                                              std::size_t most = kAnySize);

/// Parses a document in memory in the same way. With `firstLine` it is text inside of another document: lines count
/// from there, and the encoding that it declares is ignored, because it is UTF-8. Throws std::bad_alloc.
std::optional<IXMLDOMParseError> parseXmlText(std::string_view document, XmlHandler& handler, int firstLine = 0);
