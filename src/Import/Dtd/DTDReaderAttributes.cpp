#include "Import/Dtd/DTDReader.h"

// Reads lists of attributes, in XML and SGML.
namespace {

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
            noteMalformed(names.front());
            return;
        }
}

// Reads an attribute: its name, type and default. A missing entity may have held the type, or both. Returns false if
// there is no name.
bool DTDReader::readAttribute()
{
    if (tokens->token().kind != DTDTokens::tokenWord || !isXmlName(tokens->token().text))
        return false;
    const std::string_view name = tokens->token().text;
    tokens->next();
    SourceTypes::Type type;
    if (tokens->token().kind != DTDTokens::tokenWord || !tokens->token().followsUnknown) {
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
    if (tokens->token().isMark('('))
        return readConstants(attribute);
    if (tokens->token().kind != DTDTokens::tokenWord)
        return {};
    const bool isNotation = isSameAscii(tokens->token().text, "NOTATION");
    tokens->next();
    if (isNotation && tokens->token().isMark('('))
        readConstants(attribute);
    return {};
}

// Reads the words of a list from its '('. Anything else in it, such as a literal, is skipped and reported.
SourceTypes::Type DTDReader::readConstants(std::string_view attribute)
{
    constants.clear();
    const DTDTokens::Token& token = tokens->token();
    for (tokens->next(); !token.isEnd() && !token.isMark(')'); tokens->next())
        if (token.kind == DTDTokens::tokenWord || token.isMark('-')) // a '-' alone is a word
            constants.push_back({token.isMark('-') ? "-" : token.text});
        else if (!token.isMark('|') && !token.isMark(',') && !token.isMark('&'))
            noteMalformed(names.front());
    if (token.isMark(')'))
        tokens->next();
    return constants.empty()
               ? SourceTypes::Type()
               : SourceTypes::Type{SourceTypes::kindEnumeration, types.addEnumeration({attribute}, constants)};
}

void DTDReader::readDefault()
{
    const DTDTokens::Token& token = tokens->token();
    const bool isReserved = token.kind == DTDTokens::tokenReserved;
    const bool isFixed = isReserved && isSameAscii(token.text, "FIXED");
    report.count(SourceReport::optionality, isReserved && isSameAscii(token.text, "IMPLIED"));
    if (isReserved)
        tokens->next();
    if (isReserved && !isFixed)
        return;
    // XML requires a literal (XML 1.0, production [60]), SGML also allows a word. A word after a missing entity counts
    // as the next attribute, because the entity may have held the default.
    const bool isWord = token.kind == DTDTokens::tokenWord && !token.followsUnknown;
    if (!isWord && token.kind != DTDTokens::tokenLiteral)
        return;
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
