#pragma once

#include "Import/Schema/SchemaGrammar.h"
#include "Import/SourceReport.h"
#include "Xml/XmlParser.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

/// Takes the start tags of one schema document: says which statements they are, finds what the language doesn't know or
/// what has no effect where it stands, and counts the details that no reading carries over. What it has found gets into
/// the report by finish(), so that a document that is left out leaves nothing there.
class SchemaStatements
{
public:
    /// An attribute of the language, without a prefix, on a statement.
    struct Attribute
    {
        SchemaAttribute name;
        std::string_view value;
        bool isItsOwn; ///< false if the statement has no such attribute
    };

    /// `file` is the document's number in the report. Statements are known by their namespaces; where `knowsPrefixes`,
    /// by the prefixes xs and xsd too.
    SchemaStatements(SourceReport& report, std::uint32_t file, bool knowsPrefixes) :
        report(report), file(file), knowsPrefixes(knowsPrefixes)
    {}

    /// Comes before each enter(), as XmlHandler::scope() does.
    void scope(const XmlScope& scope);

    /// Takes a start tag. none for one that is no statement.
    SchemaTag enter(XmlName name, XmlAttributes attributes);
    void leave();

    /// Takes character data that stands in no documentation.
    void text(std::string_view text);

    /// An entity that was left out of the document.
    void entityLeftOut(std::string_view name, XmlPlace at) { find(SourceReport::entityNotExpanded, at, CString(name)); }

    /// What the statement that was entered last says, as far as the language knows it. Until the next enter().
    const std::vector<Attribute>& attributes() const { return known; }
    std::string_view valueOf(SchemaAttribute name) const;

    /// Whether the statement has that attribute and says something there; false for one that is ignored.
    bool has(SchemaAttribute attribute) const { return (said & bitOf(attribute)) != 0; }

    /// Whether it may occur at all, and more than once.
    bool mayOccur() const { return most != Occurrence::none; }
    bool mayRepeat() const { return most == Occurrence::often || most == Occurrence::unbounded; }

    /// What decides what may stand in it: its tag, or what that means here.
    SchemaTag holder() const { return open.back().holder; }

    /// Whether the statement that was entered last has no effect: it stands in a documentation, or inside of something
    /// that was found to be wrong.
    bool isIgnored() const { return ignored > 0; }

    /// Where the start tag stands that was entered last.
    SourcePlace place() const { return placeOf(start); }

    /// Notes something at that place.
    void find(SourceReport::Construct construct, CString name) { find(construct, start, std::move(name)); }
    void count(SourceReport::Construct detail) { ++details[detail]; }

    /// Reports all that was found: the document is a part of the schema.
    void finish();

    static bool isTrue(std::string_view value);

    /// Calls `take` with each name of a list.
    template <class Take>
    static void forEachName(std::string_view list, Take take)
    {
        for (list = trimmed(list); !list.empty(); list = trimmed(list)) {
            const std::size_t end = std::min(list.find_first_of(kWhitespace), list.size());
            take(list.substr(0, end));
            list.remove_prefix(end);
        }
    }

    /// How often a `minOccurs` or `maxOccurs` lets something occur.
    enum class Occurrence : std::uint8_t
    {
        none,
        once,
        often,
        unbounded,
        senseless ///< no number
    };
    static Occurrence occurrenceOf(std::string_view value);

private:
    // A statement that is open.
    struct Level
    {
        XmlName name;
        SchemaTag holder = SchemaTag::none; // what decides what may stand in it
        bool hasChild = false;              // or an attribute that says the same
        bool hasContent = false;            // simpleContent or complexContent
        XmlPlace start{};
    };

    struct Finding
    {
        SourceReport::Construct construct;
        XmlPlace place;
        CString name;
    };

    SourcePlace placeOf(XmlPlace at) const
    {
        return {file, static_cast<std::uint32_t>(at.line), static_cast<std::uint32_t>(at.column)};
    }
    void find(SourceReport::Construct construct, XmlPlace at, CString name);
    void flush();
    void read(SchemaTag tag, XmlName name, XmlAttributes attributes);
    void checkForeign(XmlName called, const char* uri, XmlName statement);
    void checkValue(const Attribute& attribute, XmlName called);
    void enterStatement(SchemaTag tag, Level& level);
    const char* missingIn(SchemaTag tag, SchemaTag holder, bool isTop) const;
    bool isTooMany(const Level& holder, SchemaTag tag) const;
    void countStatement(SchemaTag tag);
    static std::uint64_t bitOf(SchemaAttribute attribute) { return std::uint64_t{1} << static_cast<int>(attribute); }

    SourceReport& report;
    const std::uint32_t file;
    const bool knowsPrefixes;
    SchemaGrammar grammar;
    std::vector<Level> open;
    std::size_t ignored = 0; // how many elements are open from one on whose content has no effect
    std::vector<Attribute> known;
    std::uint64_t said = 0; // the attributes that say something, by bit
    Occurrence least = Occurrence::once, most = Occurrence::once;
    bool isMisspelt = false; // one of the attributes is unknown
    bool hasText = false;    // that was found, since the last tag
    XmlName current{};       // what was entered last
    XmlPlace start{};
    const char* lastUri = nullptr; // equal ones are one
    SchemaEdition edition = SchemaEdition::none;
    std::vector<Finding> findings;
    std::array<std::size_t, SourceReport::constructCount> details{};
};
