#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// Returns the first bytes of a text as a number. The first byte becomes the lowest on all processors. The text may
/// begin at any address.
template <class Number>
Number loadBytes(const char* bytes)
{
    Number number;
    std::memcpy(&number, bytes, sizeof number);
    if constexpr (std::endian::native == std::endian::big) {
        char* const first = reinterpret_cast<char*>(&number);
        std::reverse(first, first + sizeof number);
    }
    return number;
}

/// Returns one to seven bytes as the low bytes of a number; the others are 0. Two or three overlapping reads replace a
/// loop over the bytes, and a copy into a buffer, which would wait for its own store. A byte that is read twice has the
/// same place in both reads. The indices 0, n / 2 and n - 1 cover one to three bytes.
inline std::uint64_t loadPartial(const char* bytes, std::size_t n)
{
    const auto byteAt = [bytes](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(bytes[i])} << 8 * i; };
    if (n < 4)
        return byteAt(0) | byteAt(n / 2) | byteAt(n - 1);
    return loadBytes<std::uint32_t>(bytes) | std::uint64_t{loadBytes<std::uint32_t>(bytes + n - 4)} << 8 * (n - 4);
}
