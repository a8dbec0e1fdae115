#pragma once

#include "Import/Dtd/DTDText.h"

/// Notes what the literal reading of a DTD does not understand in its text: references to parameter entities,
/// conditional sections, statements that are unknown, cut short or hidden, quotes that are lost. A text without any of
/// that costs a few searches for single characters.
class DTDNotes
{
public:
    /// `isDetailed` also notes and counts what the model has no place for.
    DTDNotes(std::string_view text, TextPlaces& places, SourceReport& report, bool isDetailed) :
        text(text), places(places), report(report), isDetailed(isDetailed)
    {}

    void read();

private:
    // Each returns the place behind what begins at `at`.
    std::size_t readReference(std::size_t at);
    std::size_t readStatement(std::size_t at);
    std::size_t readComment(std::size_t at);
    std::size_t readInstruction(std::size_t at);
    std::size_t readSection(std::size_t at);
    std::size_t readDeclaration(std::size_t at, bool hasLiterals);
    std::size_t readLong(std::size_t at, std::size_t keyword, bool isOfEntity);
    std::size_t readLiteral(std::size_t at, std::size_t place, bool mayHoldMarkup);
    std::size_t readUnknown(std::size_t at);

    void readBetween(std::size_t start, std::size_t end);
    std::size_t closeFrom(std::size_t at);
    void countDetails(std::string_view declaration);
    void note(SourceReport::Construct construct, std::size_t at, std::string_view name);

    std::string_view text;
    TextPlaces& places;
    SourceReport& report;
    bool isDetailed;
    std::size_t reference = 0; // the next '%'
    std::size_t close = 0;     // a '>', see closeFrom()
    bool hasQuote[2] = {true, true};
};
