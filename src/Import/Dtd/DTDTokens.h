#pragma once

#include "Base/Progress.h"
#include "Import/Dtd/DTDEntities.h"

/// The tokens of a DTD, declaration by declaration. Skips comments, instructions and ignored sections, and replaces
/// references to parameter entities. Understands XML and SGML (ISO 8879) side by side.
///
/// The caller alternates nextDeclaration() and next() up to the declaration's end. Views in tokens point into the texts
/// of the entities, and are valid as long as those. Throws SourceRefusal like DTDEntities::open(), and Cancelled.
class DTDTokens
{
public:
    /// The order matters: isEnd() and the reader compare kinds by it.
    enum Kind : std::uint8_t
    {
        tokenEnd,      ///< the declaration's '>'
        tokenMissing,  ///< the declaration has none: the text ends, or the next declaration begins
        tokenWord,     ///< a name, a number or a keyword
        tokenReserved, ///< a word after a '#'; `text` is without the '#'
        tokenLiteral,  ///< a quoted text; `text` is without the quotes
        tokenMark      ///< any other character, in `mark`
    };

    /// A token. If its kind has no text or no mark, `text` or `mark` is that of an earlier token.
    struct Token
    {
        Kind kind = tokenMissing;
        char mark = '\0';
        bool followsUnknown = false; ///< it follows a missing entity, which may have held any tokens
        bool isApart = false;        ///< there is a blank between the two
        std::string_view text;

        bool isMark(char c) const { return kind == tokenMark && mark == c; }

        /// Returns true also if the declaration's '>' is missing.
        bool isEnd() const { return kind <= tokenMissing; }
    };

    /// `main` is the DTD itself, as DTDEntities::addFile() returned it. All three must outlive this object. Reports the
    /// start of the work; throws Cancelled.
    DTDTokens(DTDEntities& entities, DTDEntities::Text& main, SourceReport& report);

    /// Returns the entities, to declare further ones.
    DTDEntities& entities() { return entityTable; }

    /// Moves to the next declaration and reads its keyword; next() then reads its first token. Returns false at the end
    /// of the DTD. The caller must have read the last declaration to its end, or to the '[' of a DOCTYPE.
    bool nextDeclaration();
    /// Returns the keyword as it is written; empty for "<!>".
    std::string_view keyword() const { return word; }

    /// Ends the declarations with the current DOCTYPE, which has been read up to its '[' or '>'. The declarations of
    /// the entity `external` then follow, unless it is empty.
    void endWithDoctype(std::string_view external);

    /// Returns the place of the declaration's '<'.
    SourcePlace place() const { return declaration; }

    /// Returns the place of the last literal's text; only set in declarations of entities.
    SourcePlace literalPlace() const { return literal; }

    /// Returns the place of the current token, which must be a word that has just been read. In a composed entity it is
    /// the place of the entity's value.
    SourcePlace wordPlace();

    /// Returns the current token, as next() has read it.
    const Token& token() const { return current; }

    /// Reads the next token of the declaration. Not to be called after tokenEnd; tokenMissing is returned again.
    /// Literals may hold markup only in declarations of entities; elsewhere a '<!' in a literal means that its second
    /// quote is missing.
    const Token& next();

    /// From now on, a '<!' in a literal of the current declaration means that its second quote is missing.
    void endLiterals() { mayHoldMarkup = false; }

    /// Returns whether `c` is the next character other than a blank. False at the end of the current entity, whatever
    /// follows it.
    bool peek(char c) const;

    /// Returns the entities that leave out sections, at most 20; empty unless all sections with an entity as key were
    /// left out. A user who declares one of them as INCLUDE gets these sections.
    std::vector<std::string_view> querySectionEntities() const
    {
        return hasReadSection ? std::vector<std::string_view>() : sectionEntities;
    }

private:
    // A text that is being read; entities nest as a stack of frames. The pointers point into `text`.
    struct Frame
    {
        DTDEntities::Text* text;
        const char* at;
        const char* end;
        const char* counted;   // lines are counted up to here
        const char* lineStart; // start of the line that holds `counted`
        std::uint32_t line;    // number of that line
        std::uint32_t column;  // column of lineStart
        // False once a search for it failed, so the search is not repeated: that would take quadratic time.
        bool hasCommentEnd = true;
        bool hasDashes = true;
        bool hasQuote[2] = {true, true};

        std::string_view rest() const { return {at, end}; }
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
    void readWord(Kind kind);
    void readQuoted(char quote);
    void setMark(char mark);
    bool isNext(std::string_view text) const { return frames.back().rest().starts_with(text); }
    SourcePlace placeIn(Frame& frame) const;

    DTDEntities& entityTable;
    SourceReport& report;
    std::vector<Frame> frames;
    std::size_t base = 0;     // number of frames when the declaration began, see next()
    std::size_t sections = 0; // number of open sections in all frames, so a section may end in another text
    std::vector<std::string_view> sectionEntities;
    bool hasReadSection = false; // a section with an entity as key has been read
    // The state of a main text that is a document: `inBrackets` while its internal subset is read, `ended` after its
    // declarations.
    enum
    {
        none,
        ended,
        inBrackets
    } doctype = none;
    std::string_view externalEntity;           // the entity made for the DTD that the DOCTYPE names; "" if none
    SourcePlace declaration, literal, section; // `section`: of the outermost open section
    std::string_view word;
    Token current;
    bool mayHoldMarkup = false; // literals of the current declaration may hold "<!"
    ProgressMeter meter;        // progress, in bytes of the main text
    CancelPoint cancelPoint{4096};
};
