#pragma once

#include "Base/Progress.h"
#include "Import/Dtd/DTDTokens.h"
#include "Import/Full/ContentModel.h"

/// Reads the declarations of a DTD and makes types from them. An element with children or attributes is a record, its
/// children and attributes are the fields. The first declaration of a name takes precedence.
class DTDReader
{
public:
    DTDReader(SourceTypes& types, SourceReport& report) : types(types), report(report) {}

    /// Reads one DTD. Further calls add further DTDs of the same set.
    void read(DTDTokens& source);

    /// Makes the types after everything is read. `sources` holds, by the number of a DTD in order of reading, its
    /// number among the sources. With `roots`, only the elements that these reach are reported, because the others are
    /// not imported; hold() of the report must have been called before read().
    void finish(std::span<const SourceTypes::Index> sources, std::span<const CString> roots);

private:
    using Index = SourceTypes::Index;
    using Handler = void (DTDReader::*)();

    struct Declaration
    {
        std::string_view keyword;
        Handler read;
    };

    struct Element
    {
        std::string_view name;
        SourcePlace place; // of its declaration, else of the first reference to it, else of its attributes
        Index index;
        bool isName;
        Index firstContent = 0;
        Index contentCount = 0;
        Index firstAttribute = SourceTypes::kNone;
        Index lastAttribute = SourceTypes::kNone;
        Index record = SourceTypes::kNone;
        Index source = 0; // number of the DTD that declares it
        bool isDeclared = false;
        bool isReferred = false; // an element contains it
        bool holdsText = false;

        std::string_view queryName() const { return name; }
    };

    struct AttributeKey
    {
        Index element;
        std::string_view name;

        friend bool operator==(const AttributeKey&, const AttributeKey&) = default;
        friend std::size_t keyHash(const AttributeKey& key) { return ::keyHash(key.name) ^ key.element * 0x9E3779B1u; }
    };

    struct Attribute
    {
        AttributeKey key;
        SourceTypes::Type type;
        Index next; // index of the element's next attribute, or kNone
        Index source;

        AttributeKey queryKey() const { return key; }
    };

    static const Declaration kDeclarations[];

    void readDeclaration();
    void readElement();
    void readAttlist();
    void readEntity();
    bool readExternalId(std::string_view& publicId, std::string_view& systemId);
    void readNotation();
    void readDoctype();
    bool readNames();
    bool readNameGroup();
    SourceReport::Component enterComponent(std::span<const std::string_view> elementNames);
    void noteFor(const Element& element, SourceReport::Construct construct, std::string_view name);
    bool isReached(SourceReport::Component component, const std::vector<bool>& reached) const;
    bool readContent(bool& holdsText);
    bool readGroup(bool& holdsText);
    void readGroupMark(char mark, std::size_t& depth);
    void readChild();
    bool readMark();
    void declareElement(Element& element, Index firstContent, bool holdsText);
    bool readAttribute();
    SourceTypes::Type readAttributeType(std::string_view attribute);
    SourceTypes::Type readConstants(std::string_view attribute);
    void readDefault();
    void addAttribute(Element& element, std::string_view name, SourceTypes::Type type);
    Element& elementNamed(std::string_view name);
    void noteMalformed(std::string_view what) { note(SourceReport::malformedDeclaration, what); }
    void note(SourceReport::Construct construct, std::string_view name);

    std::vector<bool> findReached(std::span<const CString> roots) const;
    SourceTypes::Type typeOf(const Element& element) const;
    void makeFields(const Element& element, std::vector<SourceTypes::Field>& fields);

    DTDTokens* tokens = nullptr; // of the current DTD
    Index sourceCount = 0;       // DTDs read before the current one
    SourceTypes& types;
    SourceReport& report;
    std::deque<Element> elements; // in order of first mention
    KeyedTable<Element, &Element::queryName> elementsByName;
    std::vector<Index> declared; // in the order of declaration
    std::vector<ContentModel::Entry> contents;
    std::deque<Attribute> attributes;
    KeyedTable<Attribute, &Attribute::queryKey, AttributeKey> attributesByKey;
    ContentModel model;
    CancelPoint cancelPoint{4096};            // passed at each field
    std::vector<std::string_view> names;      // the names that the current declaration is for
    std::vector<std::string_view> components; // in the report: lists of names, each ended by an empty one
    std::vector<std::string_view> constants;
    bool isNoted = false; // the current declaration has been reported
};
