#pragma once

#include "Base/Text.h"

#include <string_view>
#include <vector>

/// Collects the text of one xs:documentation and settles what of it describes a type. Text beside elements is taken
/// whole. Of one that is made of elements alone, as standards structure it, that is the first element called
/// Definition, else the first one with text of several words.
class SchemaDocumentation
{
public:
    /// Begins anew.
    void begin();

    /// Takes the tags of the elements inside, and the text.
    void enter(std::string_view local);
    void leave();
    void text(std::string_view text);

    /// The description: 255 characters at most, empty if there is no text. Valid until begin().
    std::string_view query() const;

    /// Whether query() leaves out a part of the text.
    bool isCut() const { return query() != trimmed(whole); }

private:
    // An element that is open.
    struct Part
    {
        CString text;
        std::size_t number = 0; // counted from 1 in the order of the start tags
        bool holdsText = false; // directly
        bool isDefinition = false;
    };

    CString whole;
    std::vector<Part> parts; // the first `open` ones are open; the others are kept for their room
    std::size_t open = 0;
    std::size_t met = 0; // elements
    bool holdsText = false;
    CString definition;
    CString firstText;
    std::size_t firstNumber = 0; // of the element that `firstText` is of
};
