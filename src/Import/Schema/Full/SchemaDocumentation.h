#pragma once

#include "Base/Text.h"

#include <string_view>
#include <vector>

/// Collects the text of one xs:documentation and chooses the description of a type. Documentation with text outside of
/// elements is used whole. If it consists of elements only, as in standards, the first element named Definition is
/// used, else the first one with text of several words. One object serves all documentation of a document.
class SchemaDocumentation
{
public:
    /// Starts a new documentation.
    void begin();

    /// Handle the start and end tags of the elements inside, whatever their namespace, and the text. A text may come in
    /// pieces.
    void enter(std::string_view local);
    void leave();
    void text(std::string_view text);

    /// Returns the description, at most 255 characters; empty if there is no text. Valid until begin().
    std::string_view query() const;

    /// Returns whether query() leaves out a part of the text.
    bool isCut() const { return query() != trimmed(whole); }

private:
    // An open element.
    struct Part
    {
        CString text;
        std::size_t number = 0; // in the order of start tags, from 1
        bool holdsText = false; // contains text directly
        bool isDefinition = false;
    };

    CString whole;
    std::vector<Part> parts; // the first `open` ones are open elements; the others are kept to reuse their memory
    std::size_t open = 0;
    std::size_t startTags = 0; // seen so far
    bool holdsText = false;
    CString definition;
    CString firstText;
    std::size_t firstNumber = 0; // number of the element with `firstText`
};
