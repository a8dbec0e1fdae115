#include "Import/Dtd/DTDTokens.h"

#include "Base/Text.h"
#include "Import/Dtd/DTDText.h"

#include <algorithm>

// A reference pushes the text of its entity on a stack of frames, and the end of a text pops it. Nothing is expanded
// into a buffer, so tokens are views, and a construct's place is that in its own file.
//
// A declaration may end in a text that a reference in it has opened, but not after the text in which it began: the end
// of that text is tokenMissing. XML requires this nesting (XML 1.0, 2.8, "Proper Declaration/PE Nesting"). A missing
// '>' in a module thus doesn't affect declarations of the DTD that refers to it.
//
// Reading is linear in the texts. A failed search for the end of a comment or literal is noted in the frame and not
// repeated.
namespace {

constexpr CharSet kMarkup("%<]");
constexpr std::size_t kLongKey = 200;            // bytes of a section's key that a report shows
constexpr std::size_t kMaxSectionEntities = 20;  // more are not suggested
constexpr unsigned kDeclarationsPerReport = 256; // declarations between two progress reports

} // namespace

DTDTokens::DTDTokens(DTDEntities& entities, DTDEntities::Text& main, SourceReport& report) :
    entityTable(entities), report(report), meter(Work::reading, main.text.size(), kDeclarationsPerReport)
{
    push(main);
}

// Lines of an entity's value are counted from the place of its literal.
void DTDTokens::push(DTDEntities::Text& text)
{
    const char* const start = text.text.data();
    frames.push_back({.text = &text,
                      .at = start,
                      .end = start + text.text.size(),
                      .counted = start,
                      .lineStart = start,
                      .line = text.start.line,
                      .column = text.start.column});
}

void DTDTokens::pop()
{
    entityTable.close(*frames.back().text);
    frames.pop_back();
}

// Returns the place of the frame's position. A composed text has bytes that are in no file, so the place of its
// declaration's literal is used for everything in it.
SourcePlace DTDTokens::placeIn(Frame& frame) const
{
    if (frame.text->isComposed)
        return frame.text->start;
    const char* const at = std::max(frame.counted, frame.at);
    // Lines are counted from the last place on, so that all places together take linear time.
    if (const auto lines = std::count(frame.counted, at, '\n'); lines > 0) {
        frame.line += static_cast<std::uint32_t>(lines);
        frame.column = 1;
        for (frame.lineStart = at; frame.lineStart[-1] != '\n';)
            --frame.lineStart;
    }
    frame.counted = at;
    return {frame.text->start.file, frame.line, frame.column + static_cast<std::uint32_t>(at - frame.lineStart)};
}

SourcePlace DTDTokens::wordPlace()
{
    Frame& frame = frames.back();
    SourcePlace place = placeIn(frame);
    if (!frame.text->isComposed)
        place.column -= static_cast<std::uint32_t>(current.text.size());
    return place;
}

// Reads the current text only, so that peeking never opens an entity.
bool DTDTokens::peek(char c) const
{
    const std::string_view rest = frames.back().rest();
    const std::size_t at = kDtdBlank.out(rest);
    return at != kNowhere && rest[at] == c;
}

// Only the main text counts as progress, because the size of the entities is unknown until they are read.
bool DTDTokens::nextDeclaration()
{
    meter.step(static_cast<std::uint64_t>(frames.front().at - frames.front().text->text.data()));
    for (;;) {
        if (doctype == ended)
            leaveDoctype();
        Frame& frame = frames.back();
        while (frame.at < frame.end && kDtdBlank.has(*frame.at))
            ++frame.at;
        if (frame.at == frame.end) {
            if (frames.size() > 1) {
                pop();
                continue;
            }
            if (sections > 0)
                report.add(SourceReport::unterminated, section, "section");
            return false;
        } else if (*frame.at == '%') {
            readReference();
        } else if (isNext("<!--")) {
            skipComment();
        } else if (isNext("<![")) {
            readSection();
        } else if (isNext("<!")) {
            declaration = placeIn(frame);
            frame.at += 2;
            word = dtdNameAt(frame.rest());
            frame.at += word.size();
            base = frames.size();
            mayHoldMarkup = isSameAscii(word, "ENTITY");
            return true;
        } else if (isNext("<?")) {
            skipInstruction();
        } else if (sections > 0 && isNext("]]>")) {
            --sections;
            frame.at += 3;
        } else if (*frame.at == ']' && doctype == inBrackets && frames.size() == 1) {
            doctype = ended;
        } else {
            skipStray();
        }
    }
}

// Skips text that is neither markup nor blank. Reports it if it contains a letter, because it may be damaged markup.
void DTDTokens::skipStray()
{
    Frame& frame = frames.back();
    const SourcePlace place = placeIn(frame);
    std::string_view stray = frame.rest();
    stray = stray.substr(0, kMarkup.in(stray, 1));
    frame.at += stray.size();
    stray = trimmed(stray);
    if (std::ranges::any_of(stray, [](char c) { return !kDtdDelimiter.has(c); }))
        report.add(SourceReport::unknownStatement, place, stray);
}

void DTDTokens::endWithDoctype(std::string_view external)
{
    doctype = current.isMark('[') ? inBrackets : ended;
    externalEntity = external;
}

// Leaves the DOCTYPE. What follows in the main text is the document, so the rest is skipped.
void DTDTokens::leaveDoctype()
{
    doctype = none;
    while (frames.size() > 1)
        pop();
    frames.front().at = frames.front().end;
    // The external subset comes after the internal one, whose declarations take precedence (XML 1.0, 2.8).
    if (externalEntity.empty())
        return;
    if (DTDEntities::Text* text = entityTable.open(externalEntity, 0, declaration))
        push(*text);
}

// Skips a comment, up to "-->". SGML allows blanks before the '>', but in practice that is a damaged end, so it is
// reported.
void DTDTokens::skipComment()
{
    Frame& frame = frames.back();
    const std::string_view rest = frame.rest();
    const std::size_t close = frame.hasCommentEnd ? rest.find("-->", 4) : kNowhere;
    frame.hasCommentEnd = close != kNowhere;
    if (!frame.hasCommentEnd) {
        report.add(SourceReport::unterminated, placeIn(frame), "comment");
        frame.at += std::min(rest.find('>'), rest.size() - 1) + 1;
        return;
    }
    if (rest.substr(0, close).find("-- >") != kNowhere)
        report.add(SourceReport::malformedDeclaration, placeIn(frame), "comment that \"-- >\" does not end");
    frame.at += close + 3;
}

// Skips an instruction, up to "?>" in XML and up to '>' in SGML. If a declaration begins inside it, its end is missing.
// No search goes past the next "<?", so many instructions without an end take linear time.
void DTDTokens::skipInstruction()
{
    Frame& frame = frames.back();
    std::string_view rest = frame.rest();
    rest = rest.substr(0, rest.find("<?", 2)); // where the next instruction begins, at the latest
    if (const std::size_t close = rest.find("?>", 1); close != kNowhere) {
        frame.at += close + 2;
        return;
    }
    const std::size_t at = std::min({rest.find('>', 2), rest.find("<!", 2), rest.size()});
    const bool isClosed = rest.substr(at).starts_with('>');
    if (!isClosed)
        report.add(SourceReport::unterminated, placeIn(frame), "instruction");
    frame.at += at + isClosed;
}

// Reads the start of a conditional section (XML 1.0, productions [61] to [65]). The contents of an included section, or
// of one with an unknown key, are read next. An ignored section is skipped with its nested ones. SGML allows several
// keywords, of which IGNORE takes precedence.
void DTDTokens::readSection()
{
    Frame& frame = frames.back();
    declaration = placeIn(frame);
    frame.at += 3;
    // The key is kept as it is written, because the tokens that follow no longer show its entity.
    std::string_view key = frame.rest().substr(0, kLongKey);
    key = trimmed(key.substr(0, key.find('[')));
    base = frames.size();
    bool isIgnored = false, isKnown = false;
    // next() replaces an entity in the key first (XML 1.0, 3.4).
    for (next(); current.kind == tokenWord; next()) {
        isIgnored |= isSameAscii(current.text, "IGNORE");
        isKnown |= isSameAscii(current.text, "INCLUDE");
    }
    if (!current.isMark('['))
        return report.add(SourceReport::malformedDeclaration, declaration, "section without '['");
    const bool hasEntity = key.starts_with('%');
    hasReadSection |= hasEntity && !isIgnored;
    if (hasEntity && isIgnored) {
        const std::string_view entity = dtdNameAt(key.substr(1));
        report.add(SourceReport::sectionLeftOut, declaration, entity);
        if (!std::ranges::count(sectionEntities, entity) && sectionEntities.size() < kMaxSectionEntities)
            sectionEntities.push_back(entity);
    }
    if (isIgnored)
        return skipSection();
    if (sections++ == 0)
        section = declaration;
    if (!isKnown)
        report.add(SourceReport::unknownSection, declaration, key);
}

// Counts only the starts and ends of sections. No other markup is recognised in an ignored section, not even comments
// and references (XML 1.0, production [64]).
void DTDTokens::skipSection()
{
    Frame& frame = frames.back();
    std::size_t depth = 1;
    while (depth > 0 && frame.at < frame.end) {
        const bool begins = isNext("<!["), ends = isNext("]]>");
        depth += begins;
        depth -= ends;
        frame.at += begins || ends ? 3 : 1;
    }
    if (depth > 0)
        report.add(SourceReport::unterminated, declaration, "section");
}

// Checks for cancellation, too, because a single declaration can be as long as the DTD.
const DTDTokens::Token& DTDTokens::next()
{
    current.followsUnknown = current.isApart = false;
    cancelPoint.pass();
    for (;;) {
        Frame& frame = frames.back();
        for (; frame.at < frame.end && kDtdBlank.has(*frame.at); ++frame.at)
            current.isApart = current.followsUnknown;
        if (frame.at == frame.end) {
            // A declaration continues after a reference in it, but not after the text in which it began.
            if (frames.size() > base) {
                pop();
                continue;
            }
            current.kind = tokenMissing;
            return current;
        }
        const char c = *frame.at;
        if (c == '%' || c == '-' || c == '<') {
            if (c == '%' ? readReference() : c == '-' ? readDash() : readLess())
                continue;
        } else if (c == '>') {
            ++frame.at;
            current.kind = tokenEnd;
        } else if (c == '"' || c == '\'') {
            readQuoted(c);
        } else if (c == '#') {
            ++frame.at;
            readWord(tokenReserved);
        } else if (kDtdDelimiter.has(c)) {
            setMark(c);
        } else {
            readWord(tokenWord);
        }
        return current;
    }
}

// Opens the text of a reference (XML 1.0, production [69]); in SGML the ';' may be missing. Returns false if the '%'
// begins no reference and has become a token, like the one that declares a parameter entity.
bool DTDTokens::readReference()
{
    Frame& frame = frames.back();
    const std::string_view name = dtdNameAt({frame.at + 1, frame.end});
    if (name.empty()) {
        setMark('%');
        return false;
    }
    const SourcePlace place = placeIn(frame);
    frame.at += 1 + name.size();
    if (frame.at < frame.end && *frame.at == ';')
        ++frame.at;
    if (DTDEntities::Text* text = entityTable.open(name, frames.size() - 1, place))
        push(*text);
    else
        current.followsUnknown = true;
    return true;
}

// Reads a '-': SGML's comment inside a declaration, minimization ("- O", "-O") or exclusion ("-(a|b)"). Any other '-'
// begins a word, so that names which start with it are reported whole. Returns false if there is a token.
bool DTDTokens::readDash()
{
    Frame& frame = frames.back();
    if (isNext("--") && frame.hasDashes) {
        const std::size_t close = frame.rest().find("--", 2);
        frame.hasDashes = close != kNowhere;
        if (frame.hasDashes) {
            frame.at += close + 2;
            return true;
        }
    }
    const char* const behind = frame.at + 1;
    const bool isAlone = behind == frame.end || kDtdDelimiter.has(*behind) || *behind == '-';
    const bool isBeforeO =
        !isAlone && (*behind == 'o' || *behind == 'O') && behind + 1 < frame.end && kDtdBlank.has(behind[1]);
    if (isAlone || isBeforeO)
        setMark('-');
    else
        readWord(tokenWord);
    return false;
}

// Skips a comment in the declaration, or stops before the next declaration. Returns false if there is a token.
bool DTDTokens::readLess()
{
    if (isNext("<!--") && frames.back().hasCommentEnd) {
        skipComment();
        return true;
    }
    if (isNext("<!"))
        current.kind = tokenMissing;
    else
        setMark('<');
    return false;
}

void DTDTokens::readWord(Kind kind)
{
    Frame& frame = frames.back();
    current.kind = kind;
    current.text = dtdNameAt(frame.rest());
    frame.at += current.text.size();
}

// Reads a literal. If its second quote is missing, the first becomes a mark, which no declaration expects, and the text
// after it is read as tokens. So outside of entities a missing quote costs one declaration, not all up to the next
// quote.
void DTDTokens::readQuoted(char quote)
{
    Frame& frame = frames.back();
    bool& hasQuote = frame.hasQuote[quote == '"'];
    // Only for values of entities, because finding a place counts lines.
    if (mayHoldMarkup) {
        literal = placeIn(frame);
        literal.column += !frame.text->isComposed;
    }
    const char* const start = frame.at + 1;
    const char* at = hasQuote ? start : frame.end;
    // Only the value of an entity may contain "<!". Elsewhere the second quote is missing.
    while (at < frame.end && *at != quote && (mayHoldMarkup || *at != '<' || at + 1 == frame.end || at[1] != '!'))
        ++at;
    if (at == frame.end)
        hasQuote = false;
    if (at == frame.end || *at != quote) {
        setMark(quote);
        return;
    }
    current.kind = tokenLiteral;
    current.text = {start, at};
    frame.at = at + 1;
}

void DTDTokens::setMark(char mark)
{
    ++frames.back().at;
    current.kind = tokenMark;
    current.mark = mark;
}
