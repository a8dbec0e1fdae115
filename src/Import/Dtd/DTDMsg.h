#pragma once

#include "Base/KeyedTable.h"
#include "Base/Progress.h"
#include "Import/Dtd/DTDText.h"
#include "Import/MsgBase.h"

#include <vector>

/// One name that a DTD mentions, and the names that it holds. Texts are views: they live as long as the text that is
/// being parsed.
class DTDElement
{
public:
    DTDElement(std::string_view name, std::size_t place, std::pmr::memory_resource* memory) :
        place(place), name(name), children(memory)
    {}

    std::string_view queryName() const { return name; }

    /// Appends a child; the same one may stand more than once. That it repeats is known when it stands twice: a third
    /// place, and all that statements give again which span each other, would only take room.
    void addChild(DTDElement* child);

    /// Puts the cursor on the first child; nonzero when there is one.
    int beginEnum();

    /// The child under the cursor, or null at the end.
    DTDElement* enumNext();

    /// What the message model has for the name, marks taken off; null until it was declared.
    Element* element = nullptr;

    std::size_t place = 0;    ///< in the text, of what mentions it first
    bool isDeclared = false;  ///< by an ELEMENT
    bool isAttribute = false; ///< is the field of one
    bool isNoted = false;     ///< the report has been told of it

private:
    std::string_view name;
    std::pmr::vector<DTDElement*> children;
    std::size_t cursor = 0;
    const DTDElement* lastParent = nullptr; // the one that got this name last as a child
    unsigned timesThere = 0;                // how often, since another one did
};

/// The importer of DTD files. It reads ELEMENT and ATTLIST declarations and nothing else: every name that has children
/// or attributes becomes a record, a child marked '*' or '+' repeats, each attribute is a text field.
///
/// Statements run from the k-th '<' to the k-th '>', so where one of them stands inside a comment or an entity value,
/// starts and ends drift apart and a statement spans several declarations. Names of such statements are registered as
/// they stand, but no part of the text is scanned anew for each statement. Where statements span each other so often
/// that together they are 16 times the text, and 128 MB, the import fails; so it does when the name of the main type,
/// which is in the folder of every type, has more than 4,096 bytes.
class DTDMessage : public MsgBase
{
public:
    DTDMessage() : MsgBase(1) {}

    static MsgBase* New() { return new DTDMessage; }

    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

protected:
    void onCancelled() override;

private:
    enum Modifiers
    {
        modNone = 0,
        modStar = 1,
        modPlus = 2,
        modOptional = 4
    };

    // What one parse knows of its text. Keywords, and what follows them, come in growing order from statement to
    // statement, so one search of each kind serves them all.
    struct Text
    {
        explicit Text(std::string_view whole);

        std::string_view whole;
        ForwardSearch<findElementKeyword> elementKeyword;
        ForwardSearch<findAttlistKeyword> attlistKeyword;
        ForwardSearch<skipWhitespace> nameStart;
        ForwardSearch<findNameEnd> nameEnd;
        ForwardSearch<skipWhitespace> firstInModel;
        ForwardSearch<skipWhitespace> behindTextKeyword;
        DTDGroups groups;
        ProgressMeter told;               // in bytes
        std::size_t lastClose = kNowhere; // the last ')' before closeSeen
        std::size_t closeSeen = 0;
        TextPlaces places;
    };

    int scan();
    void forget();
    void tellAt(std::size_t place) { text->told.step(place); }
    bool isComment(std::size_t start) const;
    std::size_t endFrom(std::size_t start, std::size_t from) const;
    int doParse(std::size_t start, std::size_t end);
    int doParseElement(std::size_t start, std::size_t end);
    bool holdsTextOnly(std::size_t open, std::size_t end);
    std::size_t lastCloseBefore(std::size_t end);
    void doParseField(std::size_t start, std::size_t end, DTDElement* parent);
    void formatField(std::string_view content, std::string_view mark, DTDElement* parent);
    void doParseAttlist(std::size_t start, std::size_t end);
    std::size_t placeOf(std::string_view part) const
    {
        return static_cast<std::size_t>(part.data() - text->whole.data());
    }
    DTDElement& addDTDElement(std::string_view child, std::size_t place, DTDElement* parent);
    DTDElement& addPiece(std::string_view piece, DTDElement* parent)
    {
        return addDTDElement(piece, placeOf(piece), parent);
    }
    DTDElement& addMarked(std::string_view piece, std::string_view mark, DTDElement* parent);
    DTDElement& addAttribute(std::string_view element, std::string_view attribute);
    void declareAll(const CString& path);
    void declareRecord(DTDElement& record, const CString& path);
    void declareField(DTDElement& child, const CString& path, RunningHash usageKey, Element* record);
    int refuse(std::string_view statement, const CString& bound);
    SourceFault faultAt(std::size_t at, const CString& words);
    void noteName(DTDElement& entry, const DTDElement& mention, const Element& element);
    void note(SourceReport::Construct construct, DTDElement& entry, std::size_t place, std::string_view name);
    static Modifiers getModifiers(std::string_view& name);

    CString sourceName;
    CString mainType;   // the first element that this importer ever read
    CString mainBefore; // what that was before the import in hand
    KeyedTable<DTDElement, &DTDElement::queryName> dtdElements;
    Arena memory; // of the entries and of the names that don't stand in the text as they are
    Text* text = nullptr;
    bool isFit = false; // no two names of the text become one in a document
    CString joined;     // a name that does not stand in the text as it is; kept for its room
};
