#include "Formats/SourceUses.h"

#include "Formats/DTDText.h"
#include "Platform/Files/File.h"
#include "Platform/Xml/XmlParser.h"
#include "Resources/StringTable.h"

#include <algorithm>

namespace {

constexpr CharSet kBlank(" \t\r\n");

void addUse(CString& uses, bool isUsed, const char* words)
{
    if (isUsed)
        uses.append(uses.empty() ? "" : ", ").append(words);
}

// Whether one of the pieces that begin with `start` and stop before `end` passes `test`, which gets what is between.
template <class Test>
bool hasPiece(std::string_view text, std::string_view start, std::string_view end, Test test)
{
    for (std::size_t at = text.find(start); at != kNowhere; at = text.find(start, at)) {
        at += start.size();
        const std::size_t close = text.find(end, at);
        if (close == kNowhere)
            return false;
        if (test(kBlank.trim(text.substr(at, close - at))))
            return true;
        at = close;
    }
    return false;
}

// An ATTLIST that the literal reading takes: element, attribute, CDATA, #IMPLIED.
bool isPlainAttlist(std::string_view declaration)
{
    for (int names = 0; names < 2; ++names)
        declaration = kBlank.trim(declaration.substr(std::min(kBlank.in(declaration), declaration.size())));
    const std::size_t blank = std::min(kBlank.in(declaration), declaration.size());
    return declaration.substr(0, blank) == "CDATA" && kBlank.trim(declaration.substr(blank)) == "#IMPLIED";
}

// The root of a schema.
struct SchemaRoot : XmlHandler
{
    void startElement(XmlName name, XmlAttributes attributes) override
    {
        if (isSeen)
            return;
        isSeen = true;
        const std::string_view prefix = name.prefix ? name.prefix : "";
        hasOtherPrefix = name.local == std::string_view("schema") && prefix != "xs" && prefix != "xsd";
        for (std::size_t i = 0; i < attributes.size(); ++i)
            hasTarget |= !attributes[i].name.prefix && attributes[i].name.local == std::string_view("targetNamespace");
    }
    void endElement() override {}
    bool wantsText() const override { return false; }

    bool isSeen = false;
    bool hasOtherPrefix = false;
    bool hasTarget = false;
};

} // namespace

CString usesOfDtd(const CString& fileName)
{
    CString text, uses;
    if (readFile(fileName, text) != FileCause::none)
        return {};
    const auto isOfParameter = [](std::string_view entity) { return entity.starts_with('%'); };
    const auto hasMarkup = [](std::string_view comment) { return comment.find_first_of("<>") != kNowhere; };
    const auto isOther = [](std::string_view attlist) { return !isPlainAttlist(attlist); };
    addUse(uses, hasPiece(text, "<!ENTITY", ">", isOfParameter), "parameter entities");
    addUse(uses, hasPiece(text, "<!--", "-->", hasMarkup), "comments with markup");
    addUse(uses, hasPiece(text, "<!ATTLIST", ">", isOther), "attributes other than CDATA #IMPLIED");
    return uses;
}

CString usesOfSchema(const CString& fileName)
{
    CString uses;
    SchemaRoot root;
    if (parseXmlFile(fileName, root))
        return {};
    addUse(uses, root.hasTarget, "a target namespace");
    addUse(uses, root.hasOtherPrefix, "a prefix other than xs");
    return uses;
}

bool isErrorOfLiteralReading(std::string_view text)
{
    const std::string_view statement = loadText(IDS_DTD_STATEMENT);
    return text == loadText(IDS_NO_ROOT) || text.starts_with(statement.substr(0, statement.find('%')));
}
