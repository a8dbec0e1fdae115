#pragma once

#include "Import/Schema/SchemaGrammar.h"
#include "Import/SourceReport.h"
#include "Xml/XmlParser.h"

#include <array>
#include <string_view>
#include <vector>

/// Checks the statements of one schema document as they are parsed: identifies them, finds unknown ones and those
/// without effect at their place, and counts the details that no reading carries over. Both readings use it, so that
/// their reports agree. finish() passes the findings to the report, so that a document that is left out adds nothing to
/// it.
///
/// Only checks a statement and the open ones around it; the readings check references.
class SchemaStatements
{
public:
    /// An attribute of the language, which has no prefix.
    struct Attribute
    {
        SchemaAttribute name;
        std::string_view value;
        bool isAllowed; ///< false if the statement has no such attribute
    };

    /// `file` is the document's number in the report. Statements are identified by their namespace; with
    /// `knowsPrefixes` also by the prefixes xs and xsd.
    SchemaStatements(SourceReport& report, std::uint32_t file, bool knowsPrefixes) :
        report(report), file(file), knowsPrefixes(knowsPrefixes)
    {}

    /// Enters a start tag. Returns `none` if it is not a statement; an ignored one has its tag, see isIgnored().
    /// `component` is the number in the report if a top-level component begins here; 0 if the report doesn't hold
    /// constructs by component. An element that `isLeftOut` is ignored with all its contents.
    SchemaTag enter(XmlName name, XmlAttributes attributes, const XmlScope& scope,
                    SourceReport::Component component = 0, bool isLeftOut = false);
    /// Leaves the element that was entered last.
    void leave();

    /// Takes character data outside of documentation, possibly in pieces. Text that is not white space is a loss, once
    /// for each tag.
    void text(std::string_view text);

    /// Reports an entity that was left out of the document.
    void entityLeftOut(std::string_view name, XmlPlace at)
    {
        leaveComponent();
        addFinding(SourceReport::entityNotExpanded, at, CString(name));
    }

    /// Returns the attributes of the last statement that the language knows. Valid until the next enter().
    const std::vector<Attribute>& attributes() const { return known; }
    /// Returns the value of an attribute of the last statement; empty if it has none.
    std::string_view valueOf(SchemaAttribute name) const;

    /// Returns whether the statement has that attribute with a value; false if the statement is ignored.
    bool has(SchemaAttribute attribute) const { return (present & bitOf(attribute)) != 0; }

    /// Return whether the statement may occur at all, and more than once.
    bool mayOccur() const { return most != Occurrence::none; }
    bool mayRepeat() const { return most == Occurrence::often || most == Occurrence::unbounded; }

    /// Returns the tag that determines what the statement may hold: its own, or a special one for its context.
    SchemaTag holder() const { return open.back().holder; }

    /// Returns whether the last statement has no effect, because it is inside documentation or inside a faulty
    /// statement.
    bool isIgnored() const { return ignored > 0; }

    /// Returns the place of the last start tag.
    SourcePlace place() const { return placeOf(start); }

    /// Adds a finding at place(), for the open component.
    void addFinding(SourceReport::Construct construct, CString name) { addFinding(construct, start, std::move(name)); }
    /// Counts a detail of the open component for finish().
    void count(SourceReport::Construct detail) { ++details[detail]; }

    /// Reports all findings. Call it if the document is part of the schema.
    void finish();

    /// Returns whether an attribute's value is "true" or "1".
    static bool isTrue(std::string_view value);

    /// Returns whether a draft's `content` attribute allows text.
    static bool isTextContent(std::string_view content)
    {
        return trimmed(content) == "mixed" || trimmed(content) == "textOnly";
    }

private:
    // The values of `minOccurs` and `maxOccurs`.
    enum class Occurrence : std::uint8_t
    {
        none,
        once,
        often,
        unbounded,
        invalid // not a number
    };

    // An open statement.
    struct Level
    {
        XmlName name;
        SchemaTag holder = SchemaTag::none; // see holder()
        bool hasChild = false;              // has a child, or an attribute in its place
        bool hasContent = false;            // has simpleContent or complexContent
        bool hasFault = false;              // has a misspelt attribute, or a child without effect
        XmlPlace start;
    };

    struct Finding
    {
        SourceReport::Construct construct;
        XmlPlace place;
        CString name;
        SourceReport::Component component;
    };

    // The details of one component.
    struct Tally
    {
        SourceReport::Component component;
        SourceReport::Construct detail;
        std::size_t times;
    };

    // Returns whether "*" means any number, and maxOccurs is minOccurs by default, as in the draft of 1999. The literal
    // reading knows neither.
    bool knowsDraftBounds() const { return edition == SchemaEdition::draft && !knowsPrefixes; }

    // Returns the meaning of such a value. Leading zeros are allowed, white space is not.
    static Occurrence occurrenceOf(std::string_view value);
    SourcePlace placeOf(XmlPlace at) const { return {file, at.line, at.column}; }
    void addFinding(SourceReport::Construct construct, XmlPlace at, CString name);
    void flush();
    bool isAtTop() const;
    void enterComponent(SourceReport::Component number);
    void leaveComponent();
    void read(SchemaTag tag, XmlName name, XmlAttributes attributes);
    void checkForeign(const XmlAttribute& attribute, const char* uri, XmlName statement);
    void checkValue(const Attribute& attribute, XmlName called);
    void addInvalid(XmlName attribute, std::string_view value);
    bool isLeastAboveMost() const;
    void enterStatement(SchemaTag tag, Level& level);
    const char* missingIn(SchemaTag tag, SchemaTag holder, bool isTop) const;
    bool occursTooOften(const Level& holder, SchemaTag tag) const;
    void countStatement(SchemaTag tag);
    static std::uint64_t bitOf(SchemaAttribute attribute) { return std::uint64_t{1} << static_cast<int>(attribute); }

    SourceReport& report;
    const std::uint32_t file;
    const bool knowsPrefixes;
    SchemaGrammar grammar;
    std::vector<Level> open;
    std::size_t ignored = 0; // number of open elements without effect
    std::vector<Attribute> known;
    std::uint64_t present = 0; // the attributes with a value, one bit each
    Occurrence least = Occurrence::once, most = Occurrence::once;
    bool isMisspelt = false; // has an unknown attribute
    bool hasText = false;    // text was reported since the last tag
    XmlName current{};       // the last start tag
    XmlPlace start;
    const char* lastUri = nullptr; // compared by address, as namespaces are interned
    SchemaEdition edition = SchemaEdition::none;
    SourceReport::Component component = 0; // the open top-level one, else the last one
    std::vector<Finding> findings;
    std::array<std::size_t, SourceReport::constructCount> details{}; // of this component
    std::vector<Tally> tallies;                                      // of earlier ones
};
