#pragma once

#include "Base/Text.h"

#include <cstddef>
#include <memory>
#include <string_view>

class XmlSource;
struct _xmlCharEncodingHandler; // of libxml2

/// The longest allowed name, in bytes, prefix and colon included.
inline constexpr std::size_t kMaxXmlName = 4096;

/// Counts the work of libxml2 that grows faster than the document, and enforces the limits that parseXmlFile() lists.
/// Each function returns an error text once a limit is exceeded, else null. libxml2's own limits are off until a
/// document declares an entity, because they also refuse long texts. The limits of expansion and of comparisons grow
/// with the bytes read, so that a large document is not refused for its size.
class XmlLimits
{
public:
    explicit XmlLimits(const XmlSource& document) : source(document) {}

    /// Counts bytes that the document's own text doesn't hold: those of an entity or of a default attribute. Each
    /// reference counts, also those inside of entities.
    const char* addExpansion(std::size_t bytes);

    /// Counts a list of which libxml2 compares each member with all before it.
    const char* addList(std::size_t members);

    /// Counts the values of enumerations in the prolog, by the '|' between them. libxml2 calls back only when it has
    /// compared them all, so they are counted as they are read. Takes the next piece, and counts those before it.
    /// `encoding` is that of the document, null for UTF-8. Only its name is used, because decoding changes its state.
    const char* addProlog(std::string_view piece, const _xmlCharEncodingHandler* encoding);

    /// Checks a start tag: its attributes, the namespaces in scope, the different names of the document, its depth.
    /// Also called inside a tag, with the numbers so far.
    static const char* checkTag(int attributes, int namespaces, int names, std::size_t depth);

    /// Checks the length of a name; `prefix` is null if it has none.
    static const char* checkName(const char* local, const char* prefix);

    /// Returns libxml2's reason of an error; if that advises to set XML_PARSE_HUGE, the text states that a limit is
    /// exceeded instead.
    static CString reasonInWords(std::string_view reason);

private:
    struct CloseDecoder
    {
        void operator()(_xmlCharEncodingHandler* decoder) const noexcept;
    };

    CString takeWaiting(const _xmlCharEncodingHandler* encoding);

    const XmlSource& source;
    CString waiting; // bytes of the prolog that are not yet counted
    std::unique_ptr<_xmlCharEncodingHandler, CloseDecoder> decoder;
    std::size_t expanded = 0;
    std::size_t comparisons = 0;
    bool inList = false;  // the prolog is inside of parentheses
    std::size_t bars = 0; // '|' since the last '('
};
