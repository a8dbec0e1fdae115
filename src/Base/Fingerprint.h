#pragma once

#include "Base/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

/// What stands for a text that may be too long to keep or to compare: 128 bits under a seed that each process draws for
/// itself, so that nobody can choose texts that meet. That of the empty text is all zero.
struct Fingerprint
{
    Fingerprint() = default;
    Fingerprint(std::string_view text);
    Fingerprint(const CString& text) : Fingerprint(std::string_view(text)) {}

    bool isEmpty() const { return *this == Fingerprint(); }

    friend bool operator==(const Fingerprint&, const Fingerprint&) = default;

    std::uint64_t first = 0;
    std::uint64_t second = 0;
};

/// The fingerprint of a text that comes in pieces, the same however it is cut. To carry on from a text takes a copy,
/// and time linear in what is new. Eight bytes at a time are multiplied by the seed and folded (the step of wyhash,
/// https://github.com/wangyi-fudan/wyhash), once for each half.
class RunningHash
{
public:
    RunningHash() = default;
    explicit RunningHash(std::string_view text) { append(text); }

    RunningHash& append(std::string_view text)
    {
        const char* at = text.data();
        std::size_t left = text.size();
        for (; left >= kBlock; at += kBlock, left -= kBlock)
            add(load<std::uint64_t>(at), kBlock);
        if (left > 0)
            add(few(at, left), left);
        return *this;
    }

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
    static constexpr std::size_t kBlock = sizeof(std::uint64_t);

    struct Seed
    {
        Seed();

        std::uint64_t first = 1, second = 1, last = 1; // odd
    };

    static const Seed seed;

    template <class Number>
    static Number load(const char* bytes)
    {
        Number number;
        std::memcpy(&number, bytes, sizeof number);
        return number;
    }

    // One to seven bytes as the low ones of a number.
    static std::uint64_t few(const char* bytes, std::size_t n)
    {
        const auto byteAt = [bytes](std::size_t i) {
            return std::uint64_t{static_cast<unsigned char>(bytes[i])} << 8 * i;
        };
        if (n < 4)
            return byteAt(0) | byteAt(n / 2) | byteAt(n - 1);
        return load<std::uint32_t>(bytes) | std::uint64_t{load<std::uint32_t>(bytes + n - 4)} << 8 * (n - 4);
    }

    static std::uint64_t fold(std::uint64_t a, std::uint64_t b)
    {
        __extension__ using Wide = unsigned __int128;
        const Wide product = static_cast<Wide>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    }

    // `n` bytes, at most eight, behind those that wait for their block to be full.
    void add(std::uint64_t bytes, std::size_t n)
    {
        const std::size_t waiting = length % kBlock;
        length += n;
        rest |= bytes << 8 * waiting;
        if (waiting + n < kBlock)
            return;
        first = fold(first ^ rest, seed.first);
        second = fold(second ^ rest, seed.second);
        rest = waiting > 0 ? bytes >> 8 * (kBlock - waiting) : 0;
    }

    std::uint64_t first = seed.second;
    std::uint64_t second = seed.first;
    std::uint64_t rest = 0; // of the last block
    std::uint64_t length = 0;
};

inline Fingerprint::Fingerprint(std::string_view text)
{
    *this = RunningHash(text); // a delegating constructor is beyond what clang-tidy 14 follows
}
