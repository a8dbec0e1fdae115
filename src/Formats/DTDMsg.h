#pragma once

#include "Formats/DTDText.h"
#include "Formats/MsgBase.h"
#include "Utils/KeyedTable.h"

#include <deque>
#include <vector>

/// One name that a DTD mentions, and the names that it holds. Texts are views: they live as long as the text that is
/// being parsed.
class DTDElement
{
public:
    explicit DTDElement(std::string_view name) : name(name) {}

    std::string_view queryName() const { return name; }

    /// Appends a child; the same name may stand more than once.
    void addChild(std::string_view child) { childNames.push_back(child); }

    /// Puts the cursor on the first child; nonzero when there is one.
    int beginEnum();

    /// 0 at the end, else 1 with the child under the cursor in `out`.
    int enumNext(CString& out);

private:
    std::string_view name;
    std::vector<std::string_view> childNames;
    std::size_t cursor = 0;
};

/// The importer of DTD files. It reads ELEMENT and ATTLIST declarations and nothing else: every name that has children
/// or attributes becomes a record, a child marked '*' or '+' repeats, each attribute is a text field.
///
/// Statements run from the k-th '<' to the k-th '>', so where one of them stands inside a comment or an entity value,
/// starts and ends drift apart and a statement spans several declarations. Names of such statements are registered as
/// they stand, but no part of the text is scanned anew for each statement.
class DTDMessage : public MsgBase
{
public:
    DTDMessage() : MsgBase(1) {}

    static MsgBase* New() { return new DTDMessage; }

    int parse(const CString& source, const CString& basePath, const CString& fileName) override;
    CString queryMainTypeName() const override { return mainType; }
    MsgUIDescriptor* queryDescriptor() const override { return &m_descr; }

    static MsgUIDescriptor m_descr;

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
        std::size_t lastClose = kNowhere; // the last ')' before closeSeen
        std::size_t closeSeen = 0;
    };

    void scan();
    bool isComment(std::size_t start) const;
    std::size_t endFrom(std::size_t start, std::size_t from) const;
    void doParse(std::size_t start, std::size_t end);
    void doParseElement(std::size_t start, std::size_t end);
    bool holdsTextOnly(std::size_t open, std::size_t end);
    std::size_t lastCloseBefore(std::size_t end);
    void doParseField(std::size_t start, std::size_t end, DTDElement* parent);
    void formatField(std::string_view content, std::string_view mark, DTDElement* parent);
    void doParseAttlist(std::size_t start, std::size_t end);
    DTDElement& addDTDElement(std::string_view child, DTDElement* parent);
    void declareRecord(DTDElement& record, const CString& path);
    static Modifiers getModifiers(CString& name);

    CString mainType; // the first element that this importer ever read
    KeyedTable<DTDElement, &DTDElement::queryName> dtdElements;
    std::deque<DTDElement> ownedElements;
    std::deque<CString> madeNames; // names that do not stand in the text as they are
    Text* text = nullptr;
};
