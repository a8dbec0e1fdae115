#pragma once

#include "Base/Progress.h"
#include "Import/Dtd/DTDTokens.h"
#include "Import/Full/ContentModel.h"

/// Reads the declarations of a DTD and makes types from them. An element with children or attributes is a record, its
/// children and attributes are the fields. The first declaration of a name takes precedence.
///
/// Several DTDs share one reader: call read() for each, then finish() once. Names are views of the texts of the DTDs,
/// so these must live until finish() returns. The tokens of a DTD need not.
class DTDReader
{
public:
    /// Both must outlive this object. read() adds enumerations to `types`, finish() adds records and candidates.
    DTDReader(SourceTypes& types, SourceReport& report) : types(types), report(report) {}

    /// Reads one DTD. Further calls add further DTDs of the same set. Malformed declarations are reported and skipped.
    /// Throws SourceRefusal and Cancelled, as its tokens do.
    void read(DTDTokens& source);

    /// Makes the types after everything is read. `sources` holds, by the number of a DTD in order of reading, its
    /// number among the sources. With `roots`, only the elements that these reach are reported, because the others are
    /// not imported; hold() of the report must have been called before read(). Throws SourceRefusal if there are too
    /// many fields, and Cancelled.
    void finish(std::span<const SourceTypes::Index> sources, std::span<const CString> roots);

private:
    using Index = SourceTypes::Index;
    using Handler = void (DTDReader::*)();

    // A kind of declaration, and the function that reads it. The function stops at the first token that it doesn't
    // understand; readDeclaration() skips the rest.
    struct Declaration
    {
        std::string_view keyword;
        Handler read;
    };

    // An element that is declared, referred to, or has attributes. Its children are `contentCount` entries of
    // `contents` from `firstContent` on, which the other elements of the same declaration share. Attributes form a list
    // through Attribute::next, because several ATTLISTs may add to it.
    struct Element
    {
        std::string_view name;
        SourcePlace place; // of its declaration, else of the first reference to it, else of its attributes
        Index index;       // in `elements`
        bool isName;       // an XML name; others are reported, and get no type
        Index firstContent = 0;
        Index contentCount = 0;
        Index firstAttribute = SourceTypes::kNone;
        Index lastAttribute = SourceTypes::kNone;
        Index record = SourceTypes::kNone; // set in finish(); kNone: it becomes text
        Index source = 0; // number of the DTD that declares it; finish() makes it the number of the source
        bool isDeclared = false;
        bool isReferred = false; // an element contains it
        bool holdsText = false;

        std::string_view queryName() const { return name; }
    };

    // Attributes of all elements share one table.
    struct AttributeKey
    {
        Index element;
        std::string_view name;

        friend bool operator==(const AttributeKey&, const AttributeKey&) = default;
        friend std::size_t keyHash(const AttributeKey& key)
        {
            return ::keyHash(key.name) ^ RunningHash::of(key.element);
        }
    };

    // An attribute of an element. finish() names its field.
    struct Attribute
    {
        AttributeKey key;
        SourceTypes::Type type;
        Index next;   // index of the element's next attribute, or kNone
        Index source; // number of the DTD that declares it

        AttributeKey queryKey() const { return key; }
    };

    // The known declarations; all others are unknown statements.
    static const Declaration kDeclarations[];

    void readDeclaration();
    void readElement();
    void readAttlist();
    void readEntity();
    bool readExternalId(std::string_view& publicId, std::string_view& systemId);
    void readNotation() { report.count(SourceReport::notation); }
    // SGML's short references stand for general entities in messages.
    void readShortReference() { report.count(SourceReport::generalEntity); }
    void readDoctype();
    // The read functions read from the current token on, and stop at the first one that they don't understand. Those
    // that return bool return false for a fault, except readMark().
    bool readNames();
    bool readNameGroup();
    SourceReport::Component enterComponent(std::span<const std::string_view> elementNames);
    void noteFor(const Element& element, SourceReport::Construct construct, std::string_view name);
    bool isReached(SourceReport::Component component, const std::vector<bool>& reached) const;
    bool readContent(bool& holdsText);
    bool readGroup(bool& holdsText);
    bool connect(char connector);
    void readChild();
    bool readMark();
    void declareElement(Element& element, Index firstContent, bool holdsText);
    void noteIncomplete();
    bool readAttribute();
    SourceTypes::Type readAttributeType(std::string_view attribute);
    SourceTypes::Type readConstants(std::string_view attribute);
    void readDefault();
    void addAttribute(Element& element, std::string_view name, SourceTypes::Type type);
    Element& elementNamed(std::string_view name);
    void noteMalformed(std::string_view what) { note(SourceReport::malformedDeclaration, what); }
    void note(SourceReport::Construct construct, std::string_view name);

    // For finish(), when there are no more tokens.
    void matchWithoutCase();
    std::vector<bool> findReached(std::span<const CString> roots) const;
    SourceTypes::Type typeOf(const Element& element) const;
    void makeFields(const Element& element, std::vector<SourceTypes::Field>& fields);

    DTDTokens* tokens = nullptr; // of the current DTD
    Index sourceCount = 0;       // DTDs read before the current one
    SourceTypes& types;
    SourceReport& report;
    std::deque<Element> elements; // in order of first mention
    KeyedTable<Element, &Element::queryName> elementsByName;
    std::vector<Index> declared;               // in the order of declaration
    std::vector<ContentModel::Entry> contents; // of all declarations, one after the other
    std::deque<Attribute> attributes;
    KeyedTable<Attribute, &Attribute::queryKey, AttributeKey> attributesByKey;
    ContentModel model;                           // of the current declaration; its names are indices of `elements`
    CancelPoint cancelPoint{4096};                // passed at each field
    std::vector<std::string_view> names;          // the names that the current declaration is for
    std::vector<std::string_view> components;     // of the report: lists of names, each ended by an empty one
    std::vector<SourceTypes::Constant> constants; // of the current attribute; a buffer
    bool isNoted = false;                         // the current declaration has been reported
    bool omitsTags = false;                       // a declaration says which tags may be omitted, as only SGML can
};
