#pragma once

#include "Base/LoadBytes.h"
#include "Base/Text.h"

#include <cstddef>
#include <cstdint>

/// A 128-bit hash that stands for a text too long to store or to compare. Each process draws its own random seed, so no
/// source can be made to collide on purpose. A collision by chance is so unlikely that callers treat texts with equal
/// fingerprints as equal. The fingerprint of the empty text is all zero. A fingerprint is valid in its process only,
/// because the next one draws another seed.
struct Fingerprint
{
    Fingerprint() = default;
    /// Implicit, because keys are often given as texts. Linear in the length.
    Fingerprint(std::string_view text);
    Fingerprint(const CString& text) : Fingerprint(std::string_view(text)) {}

    /// Returns whether this is the fingerprint of the empty text.
    bool isEmpty() const { return *this == Fingerprint(); }

    friend bool operator==(const Fingerprint&, const Fingerprint&) = default;

    std::uint64_t first = 0;
    std::uint64_t second = 0;
};

/// Computes the fingerprint of a text that arrives in pieces, wherever it is cut. A copy continues from the text so
/// far, in time linear in what is appended. Each block of eight bytes is multiplied by the seed and folded, once for
/// each half of the result (the step of wyhash, https://github.com/wangyi-fudan/wyhash). The last block is filled up
/// with zeros, so the length is mixed in at the end; otherwise "a" and "a\0" would be equal.
class RunningHash
{
public:
    RunningHash() = default;
    explicit RunningHash(std::string_view text) { append(text); }

    /// Appends a piece of the text.
    RunningHash& append(std::string_view text)
    {
        const char* at = text.data();
        std::size_t left = text.size();
        for (; left >= kBlock; at += kBlock, left -= kBlock)
            add(loadBytes<std::uint64_t>(at), kBlock);
        if (left > 0)
            add(loadPartial(at, left), left);
        return *this;
    }

    /// Returns a hash of a number, by the same seed. For tables whose keys are numbers.
    static std::uint64_t of(std::uint64_t number) { return fold(number ^ seed.first, seed.second); }

    /// Returns the fingerprint of the text so far. More can be appended afterwards. Implicit, so that a running hash
    /// can be passed as a key.
    operator Fingerprint() const
    {
        Fingerprint out;
        if (length == 0)
            return out;
        out.first = fold(fold(first ^ rest, seed.first) ^ length, seed.last);
        out.second = fold(fold(second ^ rest, seed.second) ^ length, seed.last);
        return out;
    }

private:
    static constexpr std::size_t kBlock = sizeof(std::uint64_t); // bytes

    struct Seed
    {
        Seed();

        std::uint64_t first = 1, second = 1, last = 1; // odd
    };

    static const Seed seed;

    // Returns the high half of the 128-bit product XOR its low half, so that every bit of both factors counts.
    static std::uint64_t fold(std::uint64_t a, std::uint64_t b)
    {
        __extension__ using Wide = unsigned __int128;
        const Wide product = static_cast<Wide>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    }

    // Adds `n` bytes, at most eight, after those of the block that is not yet full. Joins pieces to blocks, so the
    // result doesn't depend on where the text was cut.
    void add(std::uint64_t bytes, std::size_t n)
    {
        const std::size_t waiting = length % kBlock;
        length += n;
        rest |= bytes << 8 * waiting;
        if (waiting + n < kBlock)
            return;
        first = fold(first ^ rest, seed.first);
        second = fold(second ^ rest, seed.second);
        // The bytes for which the full block had no room. If it was empty before, none are left, and a shift by all 64
        // bits would be undefined.
        rest = waiting > 0 ? bytes >> 8 * (kBlock - waiting) : 0;
    }

    // The states of the two halves of the result. Each starts from the seed that the other is folded with.
    std::uint64_t first = seed.second;
    std::uint64_t second = seed.first;
    std::uint64_t rest = 0;   // bytes of the last block, not yet hashed
    std::uint64_t length = 0; // bytes in total; modulo 8, those in `rest`
};

inline Fingerprint::Fingerprint(std::string_view text)
{
    *this = RunningHash(text); // assigned, because clang-tidy 14 can't follow a delegating constructor here
}
