#include "Import/Dtd/DTDReader.h"

#include <algorithm>

// read() stores elements, contents and attributes by index; finish() makes the types. There are two steps, because a
// content model may name elements that are declared later, or by a later DTD of the set. A declaration that can't be
// understood is reported, and reading continues after its '>', so that one mistake costs one declaration.

const DTDReader::Declaration DTDReader::kDeclarations[] = {
    {"ELEMENT", &DTDReader::readElement},       {"ATTLIST", &DTDReader::readAttlist},
    {"ENTITY", &DTDReader::readEntity},         {"NOTATION", &DTDReader::readNotation},
    {"DOCTYPE", &DTDReader::readDoctype},       {"SHORTREF", &DTDReader::readShortReference},
    {"USEMAP", &DTDReader::readShortReference},
};

void DTDReader::read(DTDTokens& source)
{
    tokens = &source;
    while (tokens->nextDeclaration())
        readDeclaration();
    ++sourceCount;
}

void DTDReader::readDeclaration()
{
    tokens->next();
    isNoted = false;
    const auto known = std::ranges::find_if(kDeclarations, [&](const Declaration& declaration) {
        return isSameAscii(tokens->keyword(), declaration.keyword); // keywords of SGML have no case
    });
    if (known != std::end(kDeclarations))
        (this->*known->read)();
    else if (!tokens->keyword().empty() || !tokens->token().isEnd()) // "<!>" declares nothing
        note(SourceReport::unknownStatement, tokens->keyword().empty() ? "<!" : tokens->keyword());
    if (tokens->token().isMark('['))
        return; // the brackets hold declarations
    while (!tokens->token().isEnd())
        tokens->next();
    report.enter(0);
    if (tokens->token().kind == DTDTokens::tokenMissing && !isNoted)
        note(SourceReport::unterminated, tokens->keyword());
}

void DTDReader::note(SourceReport::Construct construct, std::string_view name)
{
    report.add(construct, tokens->place(), name);
    isNoted = true;
}

DTDReader::Element& DTDReader::elementNamed(std::string_view name)
{
    const std::size_t hash = keyHash(name);
    if (Element* known = elementsByName.find(name, hash))
        return *known;
    Element& made =
        elements.emplace_back(Element{name, tokens->place(), static_cast<Index>(elements.size()), isXmlName(name)});
    elementsByName.store(&made, hash);
    return made;
}

// Reads the names that a declaration is for. What is reported from here on belongs to these. Returns false if there is
// none, or an impossible one.
bool DTDReader::readNames()
{
    names.clear();
    const bool isRead = !tokens->token().isApart && readNameGroup(); // a missing entity holds the names
    enterComponent(names);
    return isRead;
}

// Makes the elements of these names the component that the following constructs belong to, and returns the one before.
SourceReport::Component DTDReader::enterComponent(std::span<const std::string_view> elementNames)
{
    if (!report.isHolding() || elementNames.empty())
        return report.enter(0);
    components.insert(components.end(), elementNames.begin(), elementNames.end());
    components.emplace_back();
    // One more than the index of the first name, because 0 is the source as a whole.
    return report.enter(static_cast<SourceReport::Component>(components.size() - elementNames.size()));
}

// Reports a construct of one of the elements that a declaration is for: a root may reach one of them and not the
// others.
void DTDReader::noteFor(const Element& element, SourceReport::Construct construct, std::string_view name)
{
    const SourceReport::Component all = enterComponent({&element.name, 1});
    report.add(construct, tokens->place(), name);
    report.enter(all);
}

// Reads one name, or in SGML a group of names.
bool DTDReader::readNameGroup()
{
    const bool isGroup = tokens->token().isMark('(');
    if (isGroup)
        tokens->next();
    do {
        const bool isWord = tokens->token().kind == DTDTokens::tokenWord;
        if (isWord)
            names.push_back(tokens->token().text);
        if (isWord ? !isXmlName(names.back()) : !isGroup || tokens->token().kind != DTDTokens::tokenMark)
            return false;
        tokens->next();
    } while (isGroup && !tokens->token().isMark(')'));
    if (isGroup)
        tokens->next();
    return !names.empty();
}

// Reads an ELEMENT (XML 1.0, production [45]). SGML adds groups of names, minimization and exceptions.
void DTDReader::readElement()
{
    if (!readNames()) {
        noteMalformed("ELEMENT without a name");
        return;
    }
    const auto isMinimization = [](const DTDTokens::Token& token) {
        return token.isMark('-') || (token.kind == DTDTokens::tokenWord && isSameAscii(token.text, "O"));
    };
    for (; isMinimization(tokens->token()); tokens->next()) // of SGML: whether the start or end tag may be omitted
        omitsTags = true;
    bool holdsText = false;
    model.clear();
    if (!readContent(holdsText)) {
        noteMalformed(names.front());
        return;
    }
    // An SGML exception, "+(a|b)" or "-(a|b)", allows or forbids elements anywhere inside.
    if (tokens->token().isMark('+') || tokens->token().isMark('-'))
        report.add(SourceReport::sgmlException, tokens->place(), names.front());
    else if (!tokens->token().isEnd())
        noteMalformed(names.front());
    const auto entries = model.query();
    const auto first = static_cast<Index>(contents.size());
    contents.insert(contents.end(), entries.begin(), entries.end());
    for (const std::string_view name : names)
        declareElement(elementNamed(name), first, holdsText);
}

// Reads the content of an element, which a missing entity may have held. Returns false if it is unreadable.
bool DTDReader::readContent(bool& holdsText)
{
    const DTDTokens::Token& token = tokens->token();
    if (token.isMark('('))
        return readGroup(holdsText);
    if (token.isEnd())
        return token.followsUnknown;
    const bool isAny = isSameAscii(token.text, "ANY");
    if (isAny)
        report.add(SourceReport::anyContent, tokens->place(), names.front());
    holdsText = isAny || isSameAscii(token.text, "CDATA") || isSameAscii(token.text, "RCDATA") ||
                isSameAscii(token.text, "PCDATA");
    // Only kinds up to tokenReserved are words; a mark keeps the text of an earlier token.
    const bool isKnown = token.kind <= DTDTokens::tokenReserved && (holdsText || isSameAscii(token.text, "EMPTY"));
    if (isKnown)
        tokens->next();
    return isKnown;
}

// Reads a content model from its first '('. It is reported if it doesn't end, if names and connectors don't alternate,
// if a group has two kinds of connectors, or if a '#' begins another word than PCDATA; what was read is used. A missing
// entity may have held the missing part.
bool DTDReader::readGroup(bool& holdsText)
{
    std::size_t depth = 0;
    bool needsItem = true, isMalformed = false;
    const DTDTokens::Token& token = tokens->token();
    do {
        if (token.isEnd()) {
            noteMalformed(names.front());
            for (; depth > 0; --depth)
                model.endGroup(false);
            return true;
        }
        const DTDTokens::Kind kind = token.kind;
        const char mark = kind == DTDTokens::tokenMark ? token.mark : '\0';
        const bool isText = kind == DTDTokens::tokenReserved && isSameAscii(token.text, "PCDATA");
        const bool isItem = kind == DTDTokens::tokenWord || isText || mark == '(';
        const bool isConnector = mark == '|' || mark == ',' || mark == '&';
        const bool isInPlace = isItem ? needsItem : !needsItem && (isConnector || mark == ')');
        const bool isOfGroup = !isConnector || connect(mark);
        isMalformed |= !token.followsUnknown && !(isInPlace && isOfGroup);
        needsItem = mark == '(' || isConnector;
        if (kind == DTDTokens::tokenWord) {
            readChild();
            continue;
        }
        holdsText |= isText;
        tokens->next();
        if (mark == '(') {
            ++depth;
            model.beginGroup(ContentModel::undecided);
        } else if (mark == ')') {
            --depth;
            model.endGroup(readMark());
        }
    } while (depth > 0);
    if (isMalformed)
        noteMalformed(names.front());
    return true;
}

// Takes a connector. The first one decides what its group is, so each choice counts once. Returns false if the group
// has another one.
bool DTDReader::connect(char connector)
{
    const ContentModel::Group kind = connector == '|'   ? ContentModel::choice
                                     : connector == '&' ? ContentModel::anyOrder
                                                        : ContentModel::sequence;
    const ContentModel::Group before = model.decide(kind);
    const bool isFirst = before == ContentModel::undecided;
    report.count(SourceReport::alternatives, isFirst && kind == ContentModel::choice);
    report.count(SourceReport::anyOrder, isFirst && kind == ContentModel::anyOrder);
    return isFirst || before == kind;
}

// An element that is never declared is reported at the first reference to it.
void DTDReader::readChild()
{
    Element& child = elementNamed(tokens->token().text);
    if (!child.isReferred && !child.isDeclared)
        child.place = tokens->wordPlace();
    child.isReferred = true;
    tokens->next();
    const bool repeats = readMark();
    if (child.isName)
        model.add(child.index, repeats);
    else
        noteMalformed(child.name);
}

// Reads the mark after a name or a group. Returns true if the mark means more than one. A '+' before a '(' is not a
// mark, because it begins an SGML inclusion.
bool DTDReader::readMark()
{
    const bool isStar = tokens->token().isMark('*'), isOptional = isStar || tokens->token().isMark('?');
    const bool repeats = isStar || (tokens->token().isMark('+') && !tokens->peek('('));
    report.count(SourceReport::optionality, isOptional);
    if (isOptional || repeats)
        tokens->next();
    return repeats;
}

void DTDReader::declareElement(Element& element, Index firstContent, bool holdsText)
{
    if (element.isDeclared) {
        // The DTDs of a set share modules, so the same declaration comes several times, which is not a fault.
        const auto all = std::span(contents);
        const bool isSame =
            element.holdsText == holdsText &&
            std::ranges::equal(all.subspan(element.firstContent, element.contentCount), all.subspan(firstContent));
        if (element.source == sourceCount || !isSame)
            noteFor(element, SourceReport::declaredTwice, element.name);
        return;
    }
    element.source = sourceCount;
    element.isDeclared = true;
    element.holdsText = holdsText;
    element.place = tokens->place();
    element.firstContent = firstContent;
    element.contentCount = static_cast<Index>(contents.size() - firstContent);
    if (holdsText && element.contentCount > 0)
        noteFor(element, SourceReport::mixedContent, element.name);
    declared.push_back(element.index);
}

// Reads "% name value", "% name SYSTEM place" or "% name PUBLIC id place". Without the '%' it is a general entity,
// which documents use.
void DTDReader::readEntity()
{
    const bool isOfParameter = tokens->token().isMark('%');
    if (isOfParameter)
        tokens->next();
    else
        report.count(SourceReport::generalEntity);
    const DTDTokens::Token& token = tokens->token();
    if (token.kind != DTDTokens::tokenWord && (isOfParameter || token.kind != DTDTokens::tokenReserved))
        return noteMalformed("ENTITY without a name");
    const std::string_view name = token.text;
    tokens->next();
    std::string_view publicId, systemId;
    const bool isModule = readExternalId(publicId, systemId);
    if (!isModule && token.kind == DTDTokens::tokenWord)
        tokens->next(); // SGML's data types: CDATA, SDATA and others
    if (!isModule && token.kind != DTDTokens::tokenLiteral)
        return noteMalformed(name);
    if (isOfParameter && isModule)
        tokens->entities().declareModule(name, publicId, systemId, tokens->place());
    else if (isOfParameter)
        tokens->entities().declare(name, token.text, tokens->literalPlace());
    // A literal without its second quote ends at the first quote of another one, whose text then follows.
    tokens->endLiterals();
    if (token.kind == DTDTokens::tokenLiteral)
        tokens->next();
    while (!isOfParameter && token.kind == DTDTokens::tokenWord) // NDATA and the name of the notation
        tokens->next();
    if (!token.isEnd())
        noteMalformed(name);
}

// Reads "SYSTEM place", "PUBLIC id place" or SGML's "PUBLIC id". Returns false for anything else.
bool DTDReader::readExternalId(std::string_view& publicId, std::string_view& systemId)
{
    const DTDTokens::Token& token = tokens->token();
    const bool isPublic = token.kind == DTDTokens::tokenWord && isSameAscii(token.text, "PUBLIC");
    if (!isPublic && (token.kind != DTDTokens::tokenWord || !isSameAscii(token.text, "SYSTEM")))
        return false;
    tokens->next();
    if (isPublic && token.kind == DTDTokens::tokenLiteral) {
        publicId = token.text;
        tokens->next();
    }
    if (token.kind == DTDTokens::tokenLiteral)
        systemId = token.text;
    return true;
}

// Reads a DOCTYPE. The declarations in its brackets come first, so they take precedence over those of the DTD that it
// names (XML 1.0, 2.8).
void DTDReader::readDoctype()
{
    const std::string_view root = tokens->token().text;
    if (tokens->token().kind == DTDTokens::tokenWord)
        tokens->next();
    else
        noteMalformed("DOCTYPE without a name");
    std::string_view publicId, systemId, external;
    if (readExternalId(publicId, systemId)) {
        external = types.adopt("DOCTYPE " + CString(root)); // a space keeps the name apart from those of entities
        tokens->entities().declareModule(external, publicId, systemId, tokens->place());
    }
    while (!tokens->token().isEnd() && !tokens->token().isMark('['))
        tokens->next();
    tokens->endWithDoctype(external);
}
