#pragma once

#include "Import/Dtd/DTDText.h"

/// Reports what the literal reading of a DTD does not understand: references to parameter entities, conditional
/// sections, unknown, unterminated or hidden statements, unbalanced quotes. A text without any of these costs a few
/// searches for single characters.
///
/// Walks the text by the rules of DTDs, independently of DTDMessage: the statements of that reading may drift from the
/// real ones, so it can't detect itself what it misses.
class DTDNotes
{
public:
    /// `isDetailed` also reports and counts what the model can't represent. Text, places and report must outlive this
    /// object.
    DTDNotes(std::string_view text, TextPlaces& places, SourceReport& report, bool isDetailed) :
        text(text), places(places), report(report), isDetailed(isDetailed)
    {}

    /// Reads the whole text, once, in linear time. Never fails.
    void read();

private:
    // Each returns the position after the construct that begins at `at`.
    std::size_t readReference(std::size_t at);
    std::size_t readStatement(std::size_t at);
    std::size_t readComment(std::size_t at);
    std::size_t readInstruction(std::size_t at);
    std::size_t readSection(std::size_t at);
    std::size_t readDeclaration(std::size_t at, bool hasLiterals);
    std::size_t readLong(std::size_t at, std::size_t keyword, bool isOfEntity);
    std::size_t readLiteral(std::size_t at, std::size_t place, bool mayHoldMarkup);
    std::size_t readUnknown(std::size_t at);

    // Returns the position of the first '>' at `at` or after it. `at` must not be less than in the last call.
    std::size_t closeFrom(std::size_t at);
    void countDetails(std::string_view declaration);
    void note(SourceReport::Construct construct, std::size_t at, std::string_view name);

    std::string_view text;
    TextPlaces& places;
    SourceReport& report;
    bool isDetailed;
    std::size_t reference = 0; // position of the next '%'; kNowhere if there is none
    std::size_t close = 0;     // position of the last '>' that was found, see closeFrom()
    // By kind of quote: whether another may follow. False saves searching to the end of the text for each literal.
    bool hasQuote[2] = {true, true};
};
