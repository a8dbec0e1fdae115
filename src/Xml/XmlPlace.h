#pragma once

#include <cstdint>
#include <string_view>

/// A place in a document; inside an entity's text, the place of the outermost reference.
struct XmlPlace
{
    std::uint32_t line = 0;   ///< from 1; 0 if unknown
    std::uint32_t column = 0; ///< from 1, in characters; 0 if unknown
};

/// Returns the place of the last "<" in `read`, which is the part of a document before `end`, or all of it up to there
/// if it `isWhole`. Returns `end` if there is none, and no column if the line begins before `read`.
XmlPlace placeOfLastTag(std::string_view read, XmlPlace end, bool isWhole);
