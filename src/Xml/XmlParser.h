#pragma once

#include "Base/Text.h"
#include "Files/File.h"

#include <cstddef>
#include <optional>

/// Why a document could not be loaded: the first error that makes it not well-formed.
struct IXMLDOMParseError
{
    CString reason; ///< empty when nothing failed
    LONG line = 0;  ///< from 1; 0 when the file could not be read, the reason is then the system's
    LONG linepos = 0;
    int systemError = 0; ///< the errno value where the file could not be read, or there was no memory for it
};

/// A name in a document. Both parts are interned: while one parse lasts, equal names are equal pointers.
struct XmlName
{
    const char* local;
    const char* prefix; ///< null for a name without one

    friend bool operator==(const XmlName&, const XmlName&) = default;
};

struct XmlAttribute
{
    XmlName name;
    std::string_view value;
};

/// The attributes of a start tag, those that the internal subset supplies after the written ones, namespace
/// declarations left out. Valid while startElement() runs.
class XmlAttributes
{
public:
    XmlAttributes(const unsigned char** pointers, int size) : rows(pointers), count(static_cast<std::size_t>(size)) {}

    std::size_t size() const { return count; }
    XmlAttribute operator[](std::size_t index) const
    {
        const unsigned char** const row = rows + kRowSize * index;
        return {{text(row[0]), text(row[1])}, {text(row[3]), static_cast<std::size_t>(row[4] - row[3])}};
    }

    /// The value of the attribute of that name with or without a prefix, trimmed; empty if there is none.
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

    static constexpr int kRowSize = 5;

private:
    static const char* text(const unsigned char* bytes) { return reinterpret_cast<const char*>(bytes); }

    const unsigned char** rows; // as libxml2 hands them over: name, prefix, namespace, value, its end
    std::size_t count;
};

/// A place in a document, as the parser counts; in the text of an entity that of the outermost reference.
struct XmlPlace
{
    int line;   ///< from 1
    int column; ///< from 1, in characters; 0 if it is no longer known
};

/// What a start tag says of namespaces (https://www.w3.org/TR/xml-names/), and where it begins. Texts are interned as
/// those of names are.
struct XmlScope
{
    const char* uri;                    ///< the namespace of the element; null for none
    const unsigned char** declarations; ///< prefix (null for the default) and URI, one after the other, `count` times
    std::size_t count;
    XmlPlace place; ///< of its "<"
};

/// The longest name that a document may use, in bytes, its prefix and colon included.
inline constexpr std::size_t kMaxXmlName = 4096;

/// Thrown by a handler that refuses the document; becomes the error of the place that has been read.
struct XmlRefusal
{
    CString reason;
};

/// What a document holds, in its order. Names are split at their prefix whether that is declared or not; entities are
/// expanded, and one that is not known is left out. Texts are UTF-8 and valid while the call runs.
class XmlHandler
{
public:
    virtual ~XmlHandler() = default;

    virtual void startElement(XmlName name, XmlAttributes attributes) = 0;
    virtual void endElement() = 0;

    /// Comes before each startElement(), for a handler that wantsScopes(). Valid while the call runs.
    virtual void scope(const XmlScope&) {}

    /// A piece of character data; one text can come in many.
    virtual void text(std::string_view) {}
    virtual void cdata(std::string_view) {}
    virtual void comment(std::string_view) {}
    virtual void instruction(std::string_view /*target*/, std::string_view /*data*/) {}

    /// A reference to an entity that is not known, or lies outside of the document, and so is left out.
    virtual void entityLeftOut(std::string_view /*name*/, XmlPlace) {}

    /// False keeps text() and cdata() from being called at all.
    virtual bool wantsText() const { return true; }

    /// True has scope() called.
    virtual bool wantsScopes() const { return false; }
};

/// Reads an XML 1.0 document as a stream and hands it to `handler`. Answers nothing when it was well-formed
/// (https://www.w3.org/TR/xml/#sec-well-formed), else its first error; the handler has then got what stands before it.
/// External entities and subsets are never read. Entity expansion is bounded (ten times what has been read, and a
/// million bytes), so are nesting (256 levels in a document that declares entities, 200,000 else), what one start tag
/// may hold (10,000 attributes), names (4,096 bytes, and 100,000 different ones) and lists in which each member is
/// compared with all others (attributes, enumerations; 64 times for each byte that has been read): what passes a bound
/// is an error with its place. A file of more than `most` bytes is not read.
std::optional<IXMLDOMParseError> parseXmlFile(const CString& fileName, XmlHandler& handler,
                                              std::size_t most = kAnySize);

/// The same for a document that is in memory.
std::optional<IXMLDOMParseError> parseXmlText(std::string_view document, XmlHandler& handler);
