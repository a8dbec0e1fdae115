#include "Import/Dtd/DTDReader.h"

#include <algorithm>
#include <span>
#include <unordered_set>

// Reads lists of attributes, in XML and SGML.
namespace {

// The types of attributes in XML, then those of SGML (ISO 8879, production [145]), and the defaults ([147]).
constexpr std::string_view kAttributeTypes[] = {"CDATA",    "ID",      "IDREF",    "IDREFS",  "ENTITY",
                                                "ENTITIES", "NMTOKEN", "NMTOKENS", "NAME",    "NAMES",
                                                "NUMBER",   "NUMBERS", "NUTOKEN",  "NUTOKENS"};
constexpr std::string_view kDefaults[] = {"IMPLIED", "REQUIRED", "FIXED", "CURRENT", "CONREF"};

bool isWordOf(std::string_view word, std::span<const std::string_view> words)
{
    return std::ranges::any_of(words, [word](std::string_view known) { return isSameAscii(word, known); });
}

// Namespace declarations are not data, so they get no fields.
bool isNamespace(std::string_view attribute)
{
    return attribute == "xmlns" || attribute.starts_with("xmlns:");
}

} // namespace

// Reads an ATTLIST (XML 1.0, production [52]). Attributes before a fault are kept.
void DTDReader::readAttlist()
{
    if (!readNames()) {
        noteMalformed("ATTLIST without a name");
        return;
    }
    while (!tokens->token().isEnd())
        if (!readAttribute()) {
            noteIncomplete();
            return;
        }
}

// Reports that the current token isn't the part of the declaration that should be there, unless a missing entity may
// have held that part. A declaration without an end is reported as such.
void DTDReader::noteIncomplete()
{
    const DTDTokens::Token& token = tokens->token();
    if (!token.followsUnknown && token.kind != DTDTokens::tokenMissing)
        noteMalformed(names.front());
}

// Reads an attribute: its name, type and default. A missing entity may have held the type, or both. Returns false if
// there is no name or no type.
bool DTDReader::readAttribute()
{
    const DTDTokens::Token& token = tokens->token();
    if (token.kind != DTDTokens::tokenWord || !isXmlName(token.text))
        return false;
    const std::string_view name = token.text;
    tokens->next();
    if (token.kind != DTDTokens::tokenWord && !token.isMark('(') && !token.followsUnknown)
        return false;
    SourceTypes::Type type;
    if (token.kind != DTDTokens::tokenWord || !token.followsUnknown) {
        type = readAttributeType(name);
        readDefault();
    }
    // The declaration of a namespace is not data.
    if (!isNamespace(name))
        for (const std::string_view element : names)
            addAttribute(elementNamed(element), name, type);
    return true;
}

// Returns the type of an attribute: an enumeration, or text for all other types. A list of notations is skipped,
// because it has no effect on types.
SourceTypes::Type DTDReader::readAttributeType(std::string_view attribute)
{
    const DTDTokens::Token& token = tokens->token();
    if (token.isMark('('))
        return readConstants(attribute);
    if (token.kind != DTDTokens::tokenWord)
        return {};
    const bool isNotation = isSameAscii(token.text, "NOTATION");
    if (!isNotation && !isWordOf(token.text, kAttributeTypes))
        noteMalformed(names.front());
    tokens->next();
    if (isNotation && token.isMark('('))
        readConstants(attribute);
    else if (isNotation)
        noteIncomplete();
    return {};
}

// Reads the words of a list from its '(', each once. Anything else in it, such as a literal, is skipped and reported.
SourceTypes::Type DTDReader::readConstants(std::string_view attribute)
{
    constants.clear();
    std::unordered_set<std::string_view, KeyHash> met;
    const DTDTokens::Token& token = tokens->token();
    for (tokens->next(); !token.isEnd() && !token.isMark(')'); tokens->next()) {
        const bool isDash = token.isMark('-'); // a '-' alone is a word
        const std::string_view word = isDash ? "-" : token.text;
        if (isDash || token.kind == DTDTokens::tokenWord) {
            if (met.insert(word).second)
                constants.push_back({word});
        } else if (!token.isMark('|') && !token.isMark(',') && !token.isMark('&')) {
            noteMalformed(names.front());
        }
    }
    if (constants.empty())
        noteIncomplete();
    if (token.isMark(')'))
        tokens->next();
    return constants.empty()
               ? SourceTypes::Type()
               : SourceTypes::Type{SourceTypes::kindEnumeration, types.addEnumeration({attribute}, constants)};
}

// Reads the default of an attribute. A missing entity may have held it.
void DTDReader::readDefault()
{
    const DTDTokens::Token& token = tokens->token();
    const bool isReserved = token.kind == DTDTokens::tokenReserved;
    const bool isFixed = isReserved && isSameAscii(token.text, "FIXED");
    report.count(SourceReport::optionality, isReserved && isSameAscii(token.text, "IMPLIED"));
    if (isReserved && !isWordOf(token.text, kDefaults))
        noteMalformed(names.front());
    if (isReserved)
        tokens->next();
    if (isReserved && !isFixed)
        return;
    // XML requires a literal (XML 1.0, production [60]), SGML also allows a word. A word after a missing entity counts
    // as the next attribute, because the entity may have held the default.
    const bool isWord = token.kind == DTDTokens::tokenWord && !token.followsUnknown;
    if (!isWord && token.kind != DTDTokens::tokenLiteral)
        return noteIncomplete();
    report.count(SourceReport::defaultValue);
    tokens->next();
}

// Appends an attribute to its element. Lists for one element are merged, and the first declaration of an attribute is
// binding (XML 1.0, 3.3).
void DTDReader::addAttribute(Element& element, std::string_view name, SourceTypes::Type type)
{
    const AttributeKey key{element.index, name};
    const std::size_t hash = keyHash(key);
    if (const Attribute* const known = attributesByKey.find(key, hash)) {
        if (known->source == sourceCount || known->type != type)
            noteFor(element, SourceReport::attributeDeclaredTwice, CString(element.name) + " " + CString(name));
        return;
    }
    types.checkFields(attributes.size());
    const auto index = static_cast<Index>(attributes.size());
    attributesByKey.store(&attributes.emplace_back(Attribute{key, type, SourceTypes::kNone, sourceCount}), hash);
    if (element.lastAttribute == SourceTypes::kNone)
        element.firstAttribute = index;
    else
        attributes[element.lastAttribute].next = index;
    element.lastAttribute = index;
}
