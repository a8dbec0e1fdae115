#pragma once

#include <cstdint>

/// Where a node was read.
struct DomPlace
{
    std::uint32_t line = 0;   ///< from 1; 0 if unknown
    std::uint32_t column = 0; ///< the same
};
