#pragma once

#include <cstdint>

/// The place in a file where a node was read.
struct DomPlace
{
    std::uint32_t line = 0;   ///< from 1; 0 if unknown
    std::uint32_t column = 0; ///< from 1, in characters; 0 if unknown
};
