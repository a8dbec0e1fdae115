#include "Import/Schema/SchemaStatements.h"

#include "Base/Utf8.h"
#include "Import/Schema/SchemaConditions.h"

#include <algorithm>
#include <utility>

// A statement is checked against the one around it, its holder: the grammar defines what has an effect there, and the
// level of the holder stores what it contains already. Inside of an ignored statement, elements are only counted until
// its end, so one mistake is one finding. Details are counted for one component at a time, and moved to `tallies` when
// the component changes.

namespace {

using Tag = SchemaTag;
using Word = SchemaAttribute;

// Bounds the memory. Findings that are passed on at the bound are reported even if the document is left out later.
constexpr std::size_t kMaxFindings = 10'000; // findings kept until they are passed to the report
constexpr std::size_t kLongestValue = 100;   // characters of a value that a message shows

bool isBoolean(std::string_view value)
{
    return value == "true" || value == "false" || value == "1" || value == "0";
}

// The drafts have two further values, which define the meaning of `value`.
bool isUse(std::string_view value, SchemaEdition edition)
{
    return value == "required" || value == "optional" || value == "prohibited" ||
           (edition == SchemaEdition::draft && (value == "default" || value == "fixed"));
}

bool isCommonPrefix(const char* prefix)
{
    return prefix && (prefix == std::string_view("xs") || prefix == std::string_view("xsd"));
}

// Returns whether a text is a list of ways of derivation, as in `block` and `final`.
bool isDerivationList(std::string_view value)
{
    constexpr std::string_view known[] = {"#all", "extension", "restriction", "substitution", "list", "union"};
    bool isValid = true;
    forEachName(value, [&](std::string_view word) { isValid &= std::ranges::count(known, word) > 0; });
    return isValid;
}

} // namespace

SchemaStatements::Occurrence SchemaStatements::occurrenceOf(std::string_view value)
{
    if (value.size() == 1 && value.front() >= '0' && value.front() <= '9') // nearly always
        return value.front() == '0' ? Occurrence::none : value.front() == '1' ? Occurrence::once : Occurrence::often;
    if (value == "unbounded")
        return Occurrence::unbounded;
    if (value.empty() || value.find_first_not_of("0123456789") != value.npos)
        return Occurrence::invalid;
    value.remove_prefix(std::min(value.find_first_not_of('0'), value.size()));
    if (value.empty())
        return Occurrence::none;
    return value == "1" ? Occurrence::once : Occurrence::often;
}

bool SchemaStatements::isTrue(std::string_view value)
{
    value = trimmed(value);
    return value == "true" || value == "1";
}

// An ignored tag is identified, too, and its attributes are read, because both readings record it, too.
SchemaTag SchemaStatements::enter(XmlName name, XmlAttributes attributes, const XmlScope& scope,
                                  SourceReport::Component number, bool isLeftOut)
{
    start = scope.place();
    if (scope.uri != lastUri) // rarely: namespaces are interned
        edition = schemaEditionOf(scope.uri);
    lastUri = scope.uri;
    // In the literal reading, any statement with the prefix xs or xsd belongs to the language, whatever its namespace.
    const bool isOurs = edition != SchemaEdition::none || (knowsPrefixes && isCommonPrefix(name.prefix));
    const Tag tag = isOurs ? grammar.tagOf(name.local) : Tag::none;
    current = name;
    hasText = false;
    if (ignored == 0 && isLeftOut) {
        ignored = 1;
        return Tag::none;
    }
    if (number != 0 && isAtTop())
        enterComponent(tag >= Tag::element && tag <= Tag::attributeGroup ? number : 0);
    if (ignored > 0) {
        ++ignored;
    } else if (!open.empty()) {
        Level& holder = open.back();
        if (tag == Tag::none) {
            // Its children aren't reported, because the statement itself already is.
            addFinding(SourceReport::unknownStatement, name.qualified());
            ignored = 1;
        } else if (!SchemaGrammar::mayHold(holder.holder, tag) || occursTooOften(holder, tag)) {
            addFinding(SourceReport::misplacedStatement, name.qualified() + " inside " + holder.name.qualified());
            ignored = 1;
        }
        holder.hasFault |= ignored > 0;
    }
    read(tag, name, attributes);
    if (ignored > 0)
        return tag;
    // The root is checked like a schema, whatever it is. The readings report a root that isn't one.
    Level level{.name = name, .holder = open.empty() ? Tag::schema : tag, .start = start};
    if (!open.empty())
        enterStatement(tag, level);
    countStatement(tag);
    // Both may hold any markup, even that of schemas.
    if (tag == Tag::documentation || tag == Tag::appinfo)
        ignored = 1;
    else
        open.push_back(level);
    return tag;
}

// Documentation has no level; it counts as an ignored element.
void SchemaStatements::leave()
{
    hasText = false;
    if (ignored > 0) {
        --ignored;
        return;
    }
    const Level& level = open.back();
    if (const char* const lack = level.hasChild || level.hasFault ? nullptr : SchemaGrammar::emptinessOf(level.holder))
        addFinding(SourceReport::malformedDeclaration, level.start, lack);
    open.pop_back();
}

void SchemaStatements::text(std::string_view text)
{
    if (ignored > 0 || hasText || open.empty() || open.back().holder == Tag::annotation ||
        open.back().holder == Tag::path) // the drafts write a path there
        return;
    const std::string_view content = trimmed(text);
    if (content.empty())
        return;
    hasText = true;
    leaveComponent();
    addFinding(SourceReport::unknownStatement, CString(firstCharacters(content, kLongestValue)));
}

// Reads the attributes of a statement and checks their values. Those of `name` and `type`, the most frequent ones, skip
// the checks unless they are empty or begin with white space.
void SchemaStatements::read(SchemaTag tag, XmlName name, XmlAttributes attributes)
{
    known.clear();
    present = 0;
    least = most = Occurrence::once;
    isMisspelt = false;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const auto [called, value] = attributes[i];
        if (called.prefix) {
            checkForeign(attributes[i], attributes.uriOf(i), name);
            continue;
        }
        const Word word = grammar.attributeOf(called.local);
        const bool isAllowed = SchemaGrammar::mayHave(tag, word, edition);
        known.push_back({word, value, isAllowed});
        if (ignored > 0 || tag == Tag::none)
            continue;
        if (!isAllowed) {
            addFinding(SourceReport::unknownAttribute, called.qualified() + " in " + name.qualified());
            isMisspelt = true;
        } else if ((word == Word::name || word == Word::type) && !value.empty() && value.front() > ' ') {
            present |= bitOf(word);
        } else {
            checkValue(known.back(), called);
        }
    }
    if (knowsDraftBounds() && !has(Word::maxOccurs) && least == Occurrence::often)
        most = Occurrence::unbounded;
    if (has(Word::minOccurs) && isLeastAboveMost())
        addFinding(SourceReport::invalidValue,
                   "minOccurs=\"" + CString(valueOf(Word::minOccurs)) + "\" above maxOccurs");
}

// Returns whether the bounds of occurrence contradict each other. Invalid bounds are reported separately. Numbers may
// have any length, so their digits are compared.
bool SchemaStatements::isLeastAboveMost() const
{
    if (least != Occurrence::often || most != Occurrence::often)
        return least <= Occurrence::often && least > most;
    const auto digitsOf = [this](Word bound) {
        const std::string_view value = trimmed(valueOf(bound));
        return value.substr(value.find_first_not_of('0'));
    };
    const std::string_view lower = digitsOf(Word::minOccurs), upper = digitsOf(Word::maxOccurs);
    return lower.size() != upper.size() ? lower.size() > upper.size() : lower > upper;
}

// Attributes of other languages are allowed anywhere; those of this language have no prefix. The literal reading has no
// conditions.
void SchemaStatements::checkForeign(const XmlAttribute& attribute, const char* uri, XmlName statement)
{
    if (ignored > 0)
        return;
    if (schemaEditionOf(uri) != SchemaEdition::none)
        addFinding(SourceReport::unknownAttribute, attribute.name.qualified() + " in " + statement.qualified());
    else if (!knowsPrefixes && isVersioningNamespace(uri) &&
             !isConditionMet(attribute.name.local, attribute.value, [](std::string_view) { return false; }))
        addInvalid(attribute.name, attribute.value);
}

std::string_view SchemaStatements::valueOf(SchemaAttribute name) const
{
    const auto found = std::ranges::find(known, name, &Attribute::name);
    return found == known.end() ? std::string_view() : found->value;
}

// Checks the value of an attribute that the statement may have, and counts its details.
void SchemaStatements::checkValue(const Attribute& attribute, XmlName called)
{
    const std::string_view value = trimmed(attribute.value);
    bool isValid = true;
    switch (attribute.name) {
    case Word::minOccurs:
        least = occurrenceOf(value);
        isValid = least != Occurrence::invalid && least != Occurrence::unbounded;
        break;
    case Word::maxOccurs:
        most = knowsDraftBounds() && value == "*" ? Occurrence::unbounded : occurrenceOf(value);
        isValid = most != Occurrence::invalid;
        break;
    case Word::use:
        isValid = isUse(value, edition);
        details[SourceReport::optionality] += value == "optional";
        if (value == "prohibited")
            most = Occurrence::none;
        break;
    case Word::nillable:
    case Word::nullable:
        details[SourceReport::nillable] += isTrue(value);
        [[fallthrough]];
    case Word::abstract:
    case Word::mixed:
        isValid = isBoolean(value);
        break;
    case Word::form:
    case Word::elementFormDefault:
    case Word::attributeFormDefault:
        isValid = value == "qualified" || value == "unqualified";
        break;
    case Word::base:
    case Word::itemType:
    case Word::ref:
    case Word::type:
        isValid = !value.empty();
        break;
    case Word::block:
    case Word::final:
    case Word::exact:
    case Word::blockDefault:
    case Word::finalDefault:
        isValid = edition == SchemaEdition::draft || isDerivationList(value);
        details[SourceReport::derivationLimit] += !value.empty();
        break;
    case Word::content:
        isValid = value == "elementOnly" || value == "empty" || (!knowsPrefixes && isTextContent(value));
        break;
    case Word::defaultAttributes:
        if (knowsPrefixes) // the literal reading, which ignores attribute groups
            addFinding(SourceReport::declarationSkipped, called.qualified() + "=" + CString(value));
        break;
    default:
        break;
    }
    if (!isValid)
        addInvalid(called, value);
    if (!value.empty() || attribute.name == Word::value)
        present |= bitOf(attribute.name);
}

void SchemaStatements::addInvalid(XmlName attribute, std::string_view value)
{
    addFinding(SourceReport::invalidValue,
               attribute.qualified() + "=\"" + CString(firstCharacters(value, kLongestValue)) + "\"");
}

// Checks the statement that begins, and determines what it may hold. What a restriction may hold depends on the
// statement around it; a reference has no content of its own. A misspelt attribute may be the missing one, so only the
// misspelt one is reported.
void SchemaStatements::enterStatement(SchemaTag tag, Level& level)
{
    Level& holder = open.back();
    holder.hasChild |= tag < Tag::enumeration;
    if (tag == Tag::element && has(Word::name) && !has(Word::ref)) { // the most frequent case
        level.hasChild = has(Word::type);
        return;
    }
    const bool isTop = open.size() == 1 || holder.holder == Tag::redefine;
    if (const char* missing = missingIn(tag, holder.holder, isTop); missing && !isMisspelt)
        addFinding(*missing ? SourceReport::malformedDeclaration : SourceReport::nameMissing,
                   current.qualified() + missing);
    if (has(Word::ref) && !isTop && (has(Word::name) || has(Word::type)))
        addFinding(SourceReport::unknownAttribute, CString(has(Word::name) ? "name" : "type") + " beside ref");
    if (tag == Tag::restriction && holder.holder == Tag::simpleType)
        level.holder = Tag::simpleRestriction;
    else if (tag == Tag::restriction && holder.holder == Tag::simpleContent)
        level.holder = Tag::textRestriction;
    else if (has(Word::ref) && !isTop && tag <= Tag::enumeration)
        level.holder = Tag::reference;
    level.hasChild = has(Word::type) || has(Word::base) || has(Word::itemType) || has(Word::memberTypes);
    level.hasFault = isMisspelt;
    holder.hasContent |= tag == Tag::simpleContent || tag == Tag::complexContent;
}

// Returns the part that a statement lacks, as text to append to its word; "" for the name, null if nothing is missing.
const char* SchemaStatements::missingIn(SchemaTag tag, SchemaTag holder, bool isTop) const
{
    const bool isRestricted = holder == Tag::simpleType || holder == Tag::simpleContent; // by a type inside, possibly
    switch (tag) {
    case Tag::element:
    case Tag::attribute:
        return has(Word::name) || (has(Word::ref) && !isTop) ? nullptr : "";
    case Tag::complexType:
    case Tag::simpleType:
        return has(Word::name) || !isTop ? nullptr : "";
    case Tag::group:
    case Tag::attributeGroup:
        if (isTop)
            return has(Word::name) ? nullptr : "";
        return has(Word::ref) ? nullptr : " without ref";
    case Tag::extension:
        return has(Word::base) ? nullptr : " without base";
    case Tag::restriction:
        return has(Word::base) || isRestricted ? nullptr : " without base";
    case Tag::include:
    case Tag::redefine:
        return has(Word::schemaLocation) ? nullptr : " without schemaLocation";
    case Tag::enumeration:
        return has(Word::value) ? nullptr : " without value";
    default:
        return nullptr;
    }
}

// Returns whether a statement is the second of its kind although only one is allowed. Beside simpleContent or
// complexContent nothing else has an effect (XML Schema Part 1, 3.4.2).
bool SchemaStatements::occursTooOften(const Level& holder, SchemaTag tag) const
{
    const bool isSecond = holder.hasChild && SchemaGrammar::isOnlyChild(holder.holder, tag);
    return tag != Tag::annotation && (isSecond || (holder.hasContent && tag <= Tag::enumeration));
}

// Counts the parts of the statement that no reading carries over.
void SchemaStatements::countStatement(SchemaTag tag)
{
    switch (tag) {
    case Tag::choice:
        ++details[SourceReport::alternatives];
        break;
    case Tag::all:
        ++details[SourceReport::anyOrder];
        break;
    case Tag::facet:
        ++details[SourceReport::facet];
        break;
    case Tag::constraint:
        ++details[SourceReport::identityConstraint];
        break;
    case Tag::notation:
        ++details[SourceReport::notation];
        break;
    case Tag::assertion:
        ++details[SourceReport::assertion];
        break;
    case Tag::alternative:
        addFinding(SourceReport::typeAlternative, CString(valueOf(has(Word::type) ? Word::type : Word::test)));
        break;
    case Tag::openContent:
        addFinding(SourceReport::anyElement, current.qualified());
        break;
    case Tag::documentation:
        details[SourceReport::documentationCut] += knowsPrefixes; // the literal reading has no place for it
        break;
    case Tag::attribute:
        details[SourceReport::optionality] += !isAtTop() && !has(Word::use) && !has(Word::minOccurs);
        [[fallthrough]];
    case Tag::element:
        details[SourceReport::defaultValue] +=
            has(Word::defaultValue) || has(Word::fixed) || (tag == Tag::attribute && has(Word::value));
        break;
    default:
        break;
    }
    // The model only has single fields and tables, so optional parts and exact bounds are details.
    if (least == Occurrence::none && most != Occurrence::none)
        ++details[SourceReport::optionality];
    else if (least == Occurrence::often || most == Occurrence::often)
        ++details[SourceReport::occurrenceBounds];
}

void SchemaStatements::addFinding(SourceReport::Construct construct, XmlPlace at, CString name)
{
    if (findings.size() == kMaxFindings)
        flush();
    findings.push_back({construct, at, std::move(name), component});
}

// Returns whether a component may begin here.
bool SchemaStatements::isAtTop() const
{
    return ignored == 0 && !open.empty() && (open.size() == 1 || open.back().holder == Tag::redefine);
}

// Sets the component of the following findings and details, and moves the details of the last one to `tallies`. These
// are of the kinds that are only counted.
void SchemaStatements::enterComponent(SourceReport::Component number)
{
    for (std::size_t detail = SourceReport::optionality; detail < details.size(); ++detail)
        if (const std::size_t times = std::exchange(details[detail], 0); times > 0)
            tallies.push_back({component, static_cast<SourceReport::Construct>(detail), times});
    component = number;
}

// Leaves the last component if it has ended, because what is between two components belongs to neither. Called on
// demand, because a start tag sets the component anyway.
void SchemaStatements::leaveComponent()
{
    if (component != 0 && isAtTop())
        enterComponent(0);
}

// Passes the findings to the report, each for its component.
void SchemaStatements::flush()
{
    for (const Finding& finding : findings) {
        report.enter(finding.component);
        report.add(finding.construct, placeOf(finding.place), finding.name);
    }
    report.enter(0);
    findings.clear();
}

void SchemaStatements::finish()
{
    flush();
    enterComponent(0);
    for (const Tally& tally : tallies) {
        report.enter(tally.component);
        report.count(tally.detail, tally.times);
    }
    report.enter(0);
}
