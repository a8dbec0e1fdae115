#include "Import/Dtd/DTDTokens.h"

#include "Import/Dtd/DTDText.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr CharSet kBlank(" \t\r\n");
constexpr CharSet kMarkup("%<]");
constexpr std::ptrdiff_t kLongKey = 200;
constexpr unsigned kDeclarationsATick = 256; // between two reports of the progress

const char* find(const char* from, const char* end, std::string_view what)
{
    return std::search(from, end, what.begin(), what.end());
}

} // namespace

DTDTokens::DTDTokens(DTDEntities& entities, DTDEntities::Text& main, SourceReport& report) :
    entityTable(entities), report(report), told(Work::reading, main.text.size(), kDeclarationsATick)
{
    push(main);
}

void DTDTokens::push(DTDEntities::Text& text)
{
    const char* const start = text.text.data();
    frames.push_back({&text, start, start + text.text.size(), start, text.start.line});
}

void DTDTokens::pop()
{
    entityTable.close(*frames.back().text);
    frames.pop_back();
}

SourcePlace DTDTokens::placeIn(Frame& frame) const
{
    frame.line += static_cast<std::uint32_t>(std::count(frame.counted, std::max(frame.counted, frame.at), '\n'));
    frame.counted = std::max(frame.counted, frame.at);
    return {frame.text->start.file, frame.line};
}

SourcePlace DTDTokens::literalPlace()
{
    SourcePlace place = placeIn(frames.back());
    place.line -= static_cast<std::uint32_t>(std::ranges::count(current.text, '\n'));
    return place;
}

bool DTDTokens::peek(char c) const
{
    const Frame& frame = frames.back();
    const char* const at = std::find_if_not(frame.at, frame.end, [](char blank) { return kBlank.has(blank); });
    return at < frame.end && *at == c;
}

bool DTDTokens::stands(std::string_view text) const
{
    const Frame& frame = frames.back();
    return static_cast<std::size_t>(frame.end - frame.at) >= text.size() &&
           std::memcmp(frame.at, text.data(), text.size()) == 0;
}

bool DTDTokens::nextDeclaration()
{
    told.step(static_cast<std::uint64_t>(frames.front().at - frames.front().text->text.data()));
    for (;;) {
        if (doctype == ended)
            leaveDoctype();
        Frame& frame = frames.back();
        while (frame.at < frame.end && !kMarkup.has(*frame.at))
            ++frame.at;
        if (frame.at == frame.end) {
            if (frames.size() == 1)
                return false;
            pop();
        } else if (*frame.at == '%') {
            readReference();
        } else if (stands("<!--")) {
            skipComment();
        } else if (stands("<![")) {
            readSection();
        } else if (stands("<!")) {
            declaration = placeIn(frame);
            frame.at += 2;
            word = dtdNameAt({frame.at, static_cast<std::size_t>(frame.end - frame.at)});
            frame.at += word.size();
            base = frames.size();
            mayHoldMarkup = word == "ENTITY" || word == "entity";
            return true;
        } else if (stands("<?")) {
            skipInstruction();
        } else if (sections > 0 && stands("]]>")) {
            --sections;
            frame.at += 3;
        } else if (*frame.at == ']' && doctype == inBrackets && frames.size() == 1) {
            doctype = ended;
        } else {
            ++frame.at; // a stray character
        }
    }
}

void DTDTokens::endWithDoctype(std::string_view external)
{
    doctype = current.isMark('[') ? inBrackets : ended;
    externalEntity = external;
}

// What follows is the document itself.
void DTDTokens::leaveDoctype()
{
    doctype = none;
    while (frames.size() > 1)
        pop();
    frames.front().at = frames.front().end;
    if (externalEntity.empty())
        return;
    if (DTDEntities::Text* text = entityTable.open(externalEntity, 0, declaration))
        push(*text);
}

// Up to "-->". SGML allows blanks before the '>'; most who write that have lost their comment's end, so it is noted.
void DTDTokens::skipComment()
{
    Frame& frame = frames.back();
    const char* const start = frame.at;
    const char* const close = frame.hasCommentEnd ? find(std::min(start + 4, frame.end), frame.end, "-->") : frame.end;
    frame.hasCommentEnd = close != frame.end;
    if (!frame.hasCommentEnd) {
        report.add(SourceReport::senselessDeclaration, placeIn(frame), "comment without an end");
        frame.at = std::min(std::find(start, frame.end, '>') + 1, frame.end);
        return;
    }
    if (find(start, close, "-- >") != close)
        report.add(SourceReport::senselessDeclaration, placeIn(frame), "comment that \"-- >\" does not end");
    frame.at = close + 3;
}

// In XML up to "?>", in SGML up to '>'.
void DTDTokens::skipInstruction()
{
    Frame& frame = frames.back();
    const char* at = frame.at + 2;
    while (at < frame.end && !(*at == '<' && at + 1 < frame.end && at[1] == '?') && !(*at == '>' && at[-1] == '?'))
        ++at;
    if (at == frame.end || *at == '<')
        at = std::find(frame.at, frame.end, '>');
    frame.at = std::min(at + 1, frame.end);
}

// A conditional section: what holds is read on; what doesn't is skipped with the sections inside it.
void DTDTokens::readSection()
{
    Frame& frame = frames.back();
    declaration = placeIn(frame);
    frame.at += 3;
    const char* const start = frame.at;
    const char* const open = std::find(start, start + std::min(frame.end - start, kLongKey), '[');
    base = frames.size();
    bool isIgnored = false, isKnown = false;
    for (next(); current.kind == tokenWord; next()) {
        isIgnored |= current.text == "IGNORE" || current.text == "ignore";
        isKnown |= current.text == "INCLUDE" || current.text == "include";
    }
    if (!current.isMark('['))
        report.add(SourceReport::senselessDeclaration, declaration, "section without '['");
    else if (isIgnored)
        skipSection();
    else if (++sections; !isKnown)
        report.add(SourceReport::unknownSection, declaration, trimmed({start, static_cast<std::size_t>(open - start)}));
}

void DTDTokens::skipSection()
{
    Frame& frame = frames.back();
    for (std::size_t depth = 1; depth > 0 && frame.at < frame.end;) {
        if (stands("<![")) {
            ++depth;
            frame.at += 3;
        } else if (stands("]]>")) {
            --depth;
            frame.at += 3;
        } else {
            ++frame.at;
        }
    }
}

const DTDTokens::Token& DTDTokens::next()
{
    current.isBehindUnknown = false;
    cancelPoint.pass();
    for (;;) {
        Frame& frame = frames.back();
        while (frame.at < frame.end && kBlank.has(*frame.at))
            ++frame.at;
        if (frame.at == frame.end) {
            if (frames.size() > base) {
                pop();
                continue;
            }
            current.kind = tokenMissing;
            return current;
        }
        switch (*frame.at) {
        case '%':
            if (readReference())
                continue;
            return current;
        case '-':
            if (readDash())
                continue;
            return current;
        case '<':
            if (readLess())
                continue;
            return current;
        case '>':
            ++frame.at;
            current.kind = tokenEnd;
            return current;
        case '"':
        case '\'':
            readQuoted(*frame.at);
            return current;
        case '#':
            readWord(tokenReserved, frame.at + 1);
            return current;
        default:
            if (kDtdDelimiter.has(*frame.at))
                setMark(*frame.at);
            else
                readWord(tokenWord, frame.at);
            return current;
        }
    }
}

// False when the '%' is none of a reference and has become a token.
bool DTDTokens::readReference()
{
    Frame& frame = frames.back();
    const std::string_view name = dtdNameAt({frame.at + 1, static_cast<std::size_t>(frame.end - frame.at - 1)});
    if (name.empty()) {
        setMark('%');
        return false;
    }
    frame.at += 1 + name.size();
    if (frame.at < frame.end && *frame.at == ';')
        ++frame.at;
    if (DTDEntities::Text* text = entityTable.open(name, frames.size() - 1, placeIn(frame)))
        push(*text);
    else
        current.isBehindUnknown = true;
    return true;
}

// SGML's comments inside declarations, its minimization ("- O") and exclusions ("-(a|b)"). False when there is a token.
bool DTDTokens::readDash()
{
    Frame& frame = frames.back();
    if (stands("--") && frame.hasDashes) {
        const char* const close = find(frame.at + 2, frame.end, "--");
        frame.hasDashes = close != frame.end;
        if (frame.hasDashes) {
            frame.at = close + 2;
            return true;
        }
    }
    const char* const behind = frame.at + 1;
    const bool isAlone = behind == frame.end || kDtdDelimiter.has(*behind) || *behind == '-';
    const bool isBeforeO =
        !isAlone && (*behind == 'o' || *behind == 'O') && behind + 1 < frame.end && kBlank.has(behind[1]);
    if (isAlone || isBeforeO)
        setMark('-');
    else
        readWord(tokenWord, frame.at);
    return false;
}

// A comment in the declaration, or the next one, which is left where it is. False when there is a token.
bool DTDTokens::readLess()
{
    if (stands("<!--") && frames.back().hasCommentEnd) {
        skipComment();
        return true;
    }
    if (stands("<!"))
        current.kind = tokenMissing;
    else
        setMark('<');
    return false;
}

void DTDTokens::readWord(Kind kind, const char* start)
{
    Frame& frame = frames.back();
    frame.at = start;
    while (frame.at < frame.end && !kDtdDelimiter.has(*frame.at))
        ++frame.at;
    current.kind = kind;
    current.text = {start, static_cast<std::size_t>(frame.at - start)};
}

void DTDTokens::readQuoted(char quote)
{
    Frame& frame = frames.back();
    bool& hasQuote = frame.hasQuote[quote == '"'];
    const char* const start = frame.at + 1;
    const char* at = hasQuote ? start : frame.end;
    while (at < frame.end && *at != quote && (mayHoldMarkup || *at != '<' || at + 1 == frame.end || at[1] != '!'))
        ++at;
    if (at == frame.end)
        hasQuote = false;
    if (at == frame.end || *at != quote) {
        setMark(quote);
        return;
    }
    current.kind = tokenLiteral;
    current.text = {start, static_cast<std::size_t>(at - start)};
    frame.at = at + 1;
}

void DTDTokens::setMark(char mark)
{
    ++frames.back().at;
    current.kind = tokenMark;
    current.mark = mark;
}

void DTDTokens::skipDeclaration()
{
    while (!current.isEnd())
        next();
}
