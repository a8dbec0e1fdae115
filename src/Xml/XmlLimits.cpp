#include "Xml/XmlLimits.h"

#include "Xml/XmlSource.h"

#include <libxml/encoding.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

// A document may always use the free amounts. Beyond them its cost must stay in proportion to the bytes read. libxml2
// 2.9 compares each attribute of a tag with those before it, and searches all namespaces in scope for a prefix, at each
// tag.
constexpr std::size_t kMaxDepth = 200'000;
constexpr int kMaxAttributes = 10'000;
constexpr int kMaxNamespaces = 4'096;                 // in scope at once
constexpr int kMaxNames = 100'000;                    // different ones; libxml2's hash table for them has a fixed size
constexpr std::size_t kFreeComparisons = 100'000'000; // of members of a list
constexpr std::size_t kMaxComparisons = 64;           // per byte read
constexpr std::size_t kFreeExpansion = 1'000'000;
constexpr std::size_t kMaxExpansionRatio = 10;

} // namespace

const char* XmlLimits::addExpansion(std::size_t bytes)
{
    expanded += bytes;
    // Divided, so that no product can overflow.
    if (expanded <= kFreeExpansion || expanded / kMaxExpansionRatio <= source.queryCount())
        return nullptr;
    return "The entities and default attributes of the document expand to more than 10 times its size, which is the "
           "limit";
}

const char* XmlLimits::addList(std::size_t members)
{
    comparisons += members * members / 2;
    if (comparisons <= kFreeComparisons || comparisons / kMaxComparisons <= source.queryCount())
        return nullptr;
    return "The document has too many lists with too many members: the limit is 64 comparisons for each byte";
}

void XmlLimits::CloseDecoder::operator()(_xmlCharEncodingHandler* decoder) const noexcept
{
    xmlCharEncCloseFunc(decoder);
}

// Returns the waiting bytes as UTF-8. In other encodings a byte of a name can look like a '>', and a '|' be another
// byte. Bytes of a character that is not yet complete stay.
CString XmlLimits::takeWaiting(const _xmlCharEncodingHandler* encoding)
{
    if (encoding && !decoder)
        decoder.reset(xmlFindCharEncodingHandler(encoding->name));
    if (!decoder)
        return std::exchange(waiting, {});
    using Buffer = std::unique_ptr<xmlBuffer, decltype([](xmlBufferPtr buffer) { xmlBufferFree(buffer); })>;
    const Buffer bytes(xmlBufferCreate()), text(xmlBufferCreate());
    const auto view = [](const Buffer& buffer) {
        return std::string_view(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
                                static_cast<std::size_t>(xmlBufferLength(buffer.get())));
    };
    xmlBufferAdd(bytes.get(), reinterpret_cast<const xmlChar*>(waiting.data()), static_cast<int>(waiting.size()));
    while (xmlCharEncInFunc(decoder.get(), text.get(), bytes.get()) > 0) {
    }
    waiting = view(bytes);
    return CString(view(text));
}

const char* XmlLimits::addProlog(std::string_view piece, const _xmlCharEncodingHandler* encoding)
{
    // libxml2 knows the encoding of the first piece when it asks for the second.
    const CString text = takeWaiting(encoding);
    waiting += piece;
    for (const char c : text) {
        // The values are between parentheses, which hold no '>'. A '|' elsewhere, as in a comment, costs nothing. That
        // of a content model is counted, too.
        if (c == '(')
            bars = 0;
        if (c == '(' || c == ')' || c == '>')
            inList = c == '(';
        else if (c == '|' && inList)
            comparisons += ++bars;
    }
    return addList(0);
}

const char* XmlLimits::checkTag(int attributes, int namespaces, int names, std::size_t depth)
{
    if (attributes > kMaxAttributes)
        return "An element has more than 10,000 attributes, which is the limit";
    if (namespaces > kMaxNamespaces)
        return "More than 4,096 namespaces are declared at once, which is the limit";
    if (names > kMaxNames)
        return "The document has more than 100,000 different names, which is the limit";
    if (depth >= kMaxDepth)
        return "The elements are nested more than 200,000 levels deep, which is the limit";
    return nullptr;
}

const char* XmlLimits::checkName(const char* local, const char* prefix)
{
    // Measures no name beyond the limit, because every name of a long tag is checked.
    const std::size_t size = prefix ? ::strnlen(prefix, kMaxXmlName) + 1 : 0;
    if (size + ::strnlen(local, kMaxXmlName + 1) <= kMaxXmlName)
        return nullptr;
    return "A name has more than 4,096 bytes, which is the limit";
}

CString XmlLimits::reasonInWords(std::string_view reason)
{
    // The words of libxml2 2.9 and later. They advise to lift the limit, which doesn't help a user.
    constexpr std::string_view option = "XML_PARSE_HUGE", kinds[] = {"too long", "too big", "Huge ", "huge ", option};
    const auto isIn = [&](std::string_view kind) { return reason.find(kind) != reason.npos; };
    if (isIn("entity reference loop")) // libxml2 reports this for any depth over 40, and for text that grows too much
        return CString(reason) + ", or entities that exceed the limit of nesting or of expanded text";
    if (!std::ranges::any_of(kinds, isIn))
        return CString(reason);
    reason = reason.substr(0, reason.find(option));
    if (reason.ends_with("use "))
        reason.remove_suffix(4);
    return CString(trimmed(reason, ", ")) + ", which exceeds the limit for documents that declare entities";
}
