#include "Import/Dtd/DTDNotes.h"

#include "Base/Text.h"
#include "Base/Utf8.h"

#include <algorithm>
#include <array>

// The positions of the next '<', '%' and '>' are searched once and kept until reading has passed them. If one of them
// were missing, a search for each construct would run to the end of the text each time: 400,000 references without a
// '<' after them took seconds.
namespace {

constexpr CharSet kBeforeKeyword(" \t\r\n!"); // may be between a '<' and the keyword of a damaged statement
constexpr std::size_t kLongKey = 200;         // bytes of a section's key that a report shows

// Returns whether the keyword is at `at` as a whole word, in any letter case.
bool isKeywordAt(std::string_view text, std::size_t at, std::string_view keyword)
{
    const std::string_view found = text.substr(at, keyword.size());
    const std::size_t behind = at + keyword.size();
    return (found == keyword || isSameAscii(found, keyword)) &&
           (behind >= text.size() || kDtdDelimiter.has(text[behind]));
}

// Returns whether an ELEMENT ends like a declaration of XML or SGML: with a group that has a first name, or with a
// keyword. Anything else becomes text. The name and the parts of a group are not checked.
bool isWellDeclared(std::string_view element)
{
    element = kDtdBlank.trim(element);
    const std::size_t open = element.find('('), last = element.find_last_of(" \t\r\n");
    if (open != kNowhere) {
        const std::size_t first = kDtdBlank.out(element, open + 1);
        if (first == kNowhere || std::string_view("),|&").find(element[first]) != kNowhere)
            return false;
    }
    const bool endsGroup = open != kNowhere && std::string_view(")*+?").find(element.back()) != kNowhere;
    return endsGroup || element.ends_with("--") || // a comment of SGML
           std::ranges::any_of(std::array<std::string_view, 5>{"EMPTY", "ANY", "CDATA", "RCDATA", "PCDATA"},
                               [&](std::string_view keyword) { return isKeywordAt(element, last + 1, keyword); });
}

// Returns "ENTITY name" or "ENTITY % name" for a declaration whose keyword begins at `at`.
CString entityInWords(std::string_view text, std::size_t at)
{
    const std::string_view keyword = dtdNameAt(text.substr(at));
    std::size_t name = std::min(kDtdBlank.out(text, at + keyword.size()), text.size());
    const bool isOfParameter = text.substr(name).starts_with('%');
    if (isOfParameter)
        name = std::min(kDtdBlank.out(text, name + 1), text.size());
    return CString(keyword) + (isOfParameter ? " % " : " ") + CString(dtdNameAt(text.substr(name)));
}

} // namespace

void DTDNotes::note(SourceReport::Construct construct, std::size_t at, std::string_view name)
{
    report.add(construct, places.at(at), name);
}

// Advances from construct to construct. Text between them should consist of blanks and delimiters, such as the "]]>" of
// a section.
void DTDNotes::read()
{
    reference = text.find('%');
    close = text.find('>');
    std::size_t open = text.find('<');
    for (std::size_t behind = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0; behind < text.size();) {
        if (open < behind)
            open = text.find('<', behind);
        const std::size_t at = std::min({open, reference, text.size()});
        // Words between statements may be damaged statements.
        while (behind < at && kDtdDelimiter.has(text[behind]))
            ++behind;
        if (behind < at)
            note(SourceReport::unknownStatement, behind, trimmed(text.substr(behind, at - behind)));
        if (at == text.size())
            return;
        behind = text[at] == '%' ? readReference(at) : readStatement(at);
        if (reference < behind)
            reference = text.find('%', behind);
    }
}

std::size_t DTDNotes::readReference(std::size_t at)
{
    const std::string_view name = dtdNameAt(text.substr(at + 1));
    if (!name.empty())
        note(SourceReport::entityNotExpanded, at, name);
    const std::size_t behind = at + 1 + name.size();
    return behind + (behind < text.size() && text[behind] == ';');
}

// Reports all declarations except ELEMENT and ATTLIST, those of entities and notations only with `isDetailed`.
std::size_t DTDNotes::readStatement(std::size_t at)
{
    const std::size_t keyword = at + 2;
    if (text.substr(at, 2) != "<!")
        return text.substr(at, 2) == "<?" ? readInstruction(at) : readUnknown(at);
    if (isKeywordAt(text, keyword, "ELEMENT"))
        return readDeclaration(at, false);
    if (text.substr(keyword, 2) == "--")
        return readComment(at);
    if (isKeywordAt(text, keyword, "ATTLIST"))
        return readDeclaration(at, true);
    if (isKeywordAt(text, keyword, "ENTITY") || isKeywordAt(text, keyword, "NOTATION")) {
        if (isDetailed)
            note(SourceReport::entitySkipped, at, entityInWords(text, keyword));
        return readLong(at, keyword, true);
    }
    return text.substr(keyword, 1) == "[" ? readSection(at) : readUnknown(at);
}

// Reports a '<' in a comment, because the literal reading takes it for the start of a statement.
std::size_t DTDNotes::readComment(std::size_t at)
{
    const std::size_t end = text.find("-->", at + 2);
    if (end == kNowhere) {
        note(SourceReport::unterminated, at, "comment");
        return text.size();
    }
    if (const std::size_t markup = text.substr(at + 1, end - at).find('<'); markup != kNowhere)
        note(SourceReport::unknownStatement, at + 1 + markup, "markup in a comment");
    return end + 3;
}

// An instruction ends at its first '>', as in SGML, because a statement of the literal reading ends there.
std::size_t DTDNotes::readInstruction(std::size_t at)
{
    const std::size_t end = closeFrom(at), next = text.substr(at, end - at).find("<!");
    if (end != kNowhere && next == kNowhere)
        return end + 1;
    note(SourceReport::unterminated, at, "instruction");
    return next == kNowhere ? text.size() : at + next;
}

// Reads the start of a conditional section. Its contents are read, whatever its key.
std::size_t DTDNotes::readSection(std::size_t at)
{
    const std::string_view key =
        text.substr(at + 3, std::min(text.substr(at + 3, kLongKey).find_first_of("[<>"), kLongKey));
    note(SourceReport::declarationSkipped, at, "section " + CString(trimmed(key)));
    std::size_t behind = at + 3;
    for (; reference < behind + key.size(); reference = text.find('%', reference + 1))
        readReference(reference);
    behind += key.size();
    return behind + (behind < text.size() && text[behind] == '[');
}

// Reads a declaration of elements or attributes. Nearly all contain only names and marks, which needs no look at each
// character.
std::size_t DTDNotes::readDeclaration(std::size_t at, bool hasLiterals)
{
    const std::size_t end = closeFrom(at);
    const std::string_view declaration = text.substr(at + 2, end - at - 2);
    const bool isComplete = end != kNowhere && end < reference && declaration.find('<') == kNowhere;
    if (!isComplete || (hasLiterals && (declaration.find('"') != kNowhere || declaration.find('\'') != kNowhere)))
        return readLong(at, at + 2, false);
    if (!hasLiterals && !isWellDeclared(declaration)) {
        const std::size_t name = kDtdBlank.out(declaration, dtdNameAt(declaration).size());
        note(SourceReport::malformedDeclaration, at, dtdNameAt(declaration.substr(std::min(name, declaration.size()))));
    }
    if (isDetailed)
        countDetails(declaration);
    return end + 1;
}

// Reads a declaration character by character. Only literals of entities may hold markup.
std::size_t DTDNotes::readLong(std::size_t at, std::size_t keyword, bool isOfEntity)
{
    const std::string_view word = dtdNameAt(text.substr(keyword));
    bool expectsName = isOfEntity; // a '%' before the name of an entity is not a reference
    for (std::size_t place = keyword + word.size(); place < text.size();) {
        const char c = text[place];
        if (c == '>') {
            if (isDetailed && !isOfEntity)
                countDetails(text.substr(keyword, place - keyword));
            return place + 1;
        }
        if (text.substr(place, 2) == "<!") {
            note(SourceReport::unterminated, at, word);
            return place;
        }
        if (c == '"' || c == '\'')
            place = readLiteral(at, place, isOfEntity);
        else if (c == '%' && !expectsName)
            place = readReference(place);
        else
            ++place;
        expectsName = expectsName && kDtdBlank.has(c);
    }
    note(SourceReport::unterminated, at, word);
    return text.size();
}

// Returns the position after the literal at `place` of the declaration at `at`. A literal without its second quote
// either finds none, or ends at the first quote of the next literal, whose text follows without a delimiter.
std::size_t DTDNotes::readLiteral(std::size_t at, std::size_t place, bool mayHoldMarkup)
{
    const char quote = text[place];
    bool& isThere = hasQuote[quote == '"'];
    const std::size_t end = isThere ? text.find(quote, place + 1) : kNowhere;
    isThere = end != kNowhere;
    const bool isComplete = isThere &&
                            (end + 1 == text.size() || kDtdDelimiter.has(text[end + 1]) || text[end + 1] == '-') &&
                            (mayHoldMarkup || text.substr(place, end - place).find("<!") == kNowhere);
    if (!isComplete)
        note(SourceReport::malformedDeclaration, at, "quote without a second one");
    return isComplete ? end + 1 : place + 1;
}

// Reads what begins with a '<' but is not a statement. An ELEMENT or ATTLIST without its '!', or with a blank before
// its keyword, is read as one, as the literal reading does.
std::size_t DTDNotes::readUnknown(std::size_t at)
{
    const std::size_t start = std::min(kBeforeKeyword.out(text, at + 1), text.size());
    for (const std::string_view keyword : {"ELEMENT", "ATTLIST"})
        if (isKeywordAt(text, start, keyword))
            return readLong(at, start, false);
    const std::string_view name = dtdNameAt(text.substr(start));
    if (!name.empty() || text.substr(at, 3) != "<!>")
        note(SourceReport::unknownStatement, at, name.empty() ? "<" : name);
    const std::size_t next = std::min({text.find('<', at + 1), reference, text.size()});
    return std::min(next, closeFrom(at)) + (closeFrom(at) < next);
}

std::size_t DTDNotes::closeFrom(std::size_t at)
{
    if (close < at)
        close = text.find('>', at);
    return close;
}

// Counts by characters and words, without parsing: these details have no places, so only their numbers matter.
void DTDNotes::countDetails(std::string_view declaration)
{
    const auto count = [&](char c) { return static_cast<std::size_t>(std::ranges::count(declaration, c)); };
    const auto has = [&](std::string_view word) { return declaration.find(word) != kNowhere; };
    if (isKeywordAt(declaration, 0, "ELEMENT")) {
        report.count(SourceReport::optionality, count('?') + count('*'));
        report.count(SourceReport::alternatives, has("|"));
        report.count(SourceReport::anyOrder, has("&"));
        return;
    }
    report.count(SourceReport::optionality, has("#IMPLIED"));
    report.count(SourceReport::defaultValue, has("\"") || has("'"));
    report.count(SourceReport::facet, has("("));
}
