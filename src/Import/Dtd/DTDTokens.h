#pragma once

#include "Base/Progress.h"
#include "Import/Dtd/DTDEntities.h"

/// A DTD as declarations, and these as tokens: comments, instructions and sections that don't count are gone,
/// references to parameter entities are replaced. What XML and SGML (ISO 8879) write is understood side by side.
class DTDTokens
{
public:
    enum Kind : std::uint8_t
    {
        tokenEnd,      ///< the declaration's '>'
        tokenMissing,  ///< the declaration stops without one: the text ends, or the next begins
        tokenWord,     ///< a name, a number, a keyword
        tokenReserved, ///< a word with '#' in front, which `text` lacks
        tokenLiteral,  ///< what stands in quotes
        tokenMark      ///< any other character
    };

    struct Token
    {
        Kind kind = tokenMissing;
        char mark = '\0';
        bool isBehindUnknown = false; ///< an entity that isn't there stood before it
        std::string_view text;

        bool isMark(char c) const { return kind == tokenMark && mark == c; }
        bool isEnd() const { return kind <= tokenMissing; }
    };

    DTDTokens(DTDEntities& entities, DTDEntities::Text& main, SourceReport& report);

    DTDEntities& entities() { return entityTable; }

    /// Goes to the next declaration and reads its keyword, as it is written. False at the end.
    bool nextDeclaration();
    std::string_view keyword() const { return word; }

    /// The DOCTYPE of a document has been read, up to its '[' or '>': the declarations end where it ends. Those of the
    /// entity `external`, if it names one, come behind them.
    void endWithDoctype(std::string_view external);

    /// Where the declaration begins.
    SourcePlace place() const { return declaration; }

    /// Where the text of the literal begins that was read last in the declaration of an entity.
    SourcePlace literalPlace() const { return literal; }

    /// Where the word in hand begins.
    SourcePlace wordPlace();

    const Token& token() const { return current; }

    /// Reads the next token of the declaration; at its end stays there. Literals may hold markup in the declaration of
    /// an entity alone, see endLiterals(); elsewhere one that does has lost its second quote.
    const Token& next();

    /// From now on a literal of the declaration in hand that holds markup has lost its second quote.
    void endLiterals() { mayHoldMarkup = false; }

    /// Whether `c` is the next character but blanks.
    bool peek(char c) const;

    /// The entities that leave out sections, when there were sections by entities and all were left out.
    std::vector<std::string_view> querySwitches() const
    {
        return hasReadSection ? std::vector<std::string_view>() : switches;
    }

    /// Reads to the end of the declaration.
    void skipDeclaration();

private:
    // A text that is being read.
    struct Frame
    {
        DTDEntities::Text* text;
        const char* at;
        const char* end;
        const char* counted; // up to here lines are counted
        const char* lineStart;
        std::uint32_t line;
        std::uint32_t column; // of lineStart
        // False: none is to come, so that it is not looked for again.
        bool hasCommentEnd = true;
        bool hasDashes = true;
        bool hasQuote[2] = {true, true};
    };

    void push(DTDEntities::Text& text);
    void pop();
    void leaveDoctype();
    void skipStray();
    void skipComment();
    void skipInstruction();
    void readSection();
    void skipSection();
    bool readReference();
    bool readDash();
    bool readLess();
    void readWord(Kind kind, const char* start);
    void readQuoted(char quote);
    void setMark(char mark);
    bool stands(std::string_view text) const;
    void openSection();
    void noteKey(std::string_view key, bool isRead);
    void noteOpenSection();
    SourcePlace placeIn(Frame& frame) const;

    DTDEntities& entityTable;
    SourceReport& report;
    std::vector<Frame> frames;
    std::size_t base = 0;     // how many frames there were when the declaration began
    std::size_t sections = 0; // that are open
    std::vector<std::string_view> switches;
    bool hasReadSection = false; // because of an entity
    enum
    {
        none,
        ended,
        inBrackets
    } doctype = none;
    std::string_view externalEntity; // of the DOCTYPE
    SourcePlace declaration, literal, section;
    std::string_view word;
    Token current;
    bool mayHoldMarkup = false;
    ProgressMeter told; // in bytes of the main text
    CancelPoint cancelPoint{4096};
};
