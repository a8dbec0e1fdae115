#include "Base/Utf8.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

// Eight bytes at a time. No early exit: nearly all texts are short and ASCII.
bool isAscii(std::string_view text)
{
    std::uint64_t all = 0, eight;
    for (; text.size() >= sizeof eight; text.remove_prefix(sizeof eight)) {
        std::memcpy(&eight, text.data(), sizeof eight);
        all |= eight;
    }
    for (const char c : text)
        all |= static_cast<unsigned char>(c);
    return (all & 0x8080808080808080) == 0;
}

std::size_t utf8Length(char lead)
{
    const auto byte = static_cast<unsigned char>(lead);
    return byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
}

char32_t decodeUtf8(std::string_view text, std::size_t& at)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80)
        return static_cast<unsigned char>(text[at++]);
    const std::size_t length = utf8Length(static_cast<char>(lead));
    // 0xC0 and 0xC1 only begin overlong forms; leads above 0xF4 would exceed U+10FFFF.
    if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length)
        return kInvalidUtf8;
    // The lead has `length` ones, a zero, then the first bits of the code.
    char32_t code = lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return kInvalidUtf8;
        code = code << 6 | (byte(at + i) & 0x3F);
    }
    // Only the shortest form is valid (RFC 3629, section 3). Longer ones could hide a character from a check of bytes.
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    if (overlong || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return kInvalidUtf8;
    at += length;
    return code;
}

std::size_t countCharacters(std::string_view text)
{
    std::size_t count = text.size();
    if (isAscii(text)) // the usual case
        return count;
    std::uint64_t eight;
    for (; text.size() >= sizeof eight; text.remove_prefix(sizeof eight)) {
        std::memcpy(&eight, text.data(), sizeof eight);
        // Continuation bytes, 10xxxxxx, begin no character. The expression sets the lowest bit of each byte whose bit 7
        // is set and bit 6 is not.
        count -= static_cast<std::size_t>(std::popcount(eight >> 7 & ~(eight >> 6) & 0x0101010101010101));
    }
    const auto isContinuation = [](unsigned char c) { return (c & 0xC0) == 0x80; };
    return count - static_cast<std::size_t>(std::ranges::count_if(text, isContinuation));
}

void appendUtf8(std::string& out, char32_t code)
{
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | code >> 6);
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | code >> 12);
        out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | code >> 18);
        out += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

bool isUtf8(std::string_view bytes)
{
    for (std::size_t at = 0; at < bytes.size();)
        if (decodeUtf8(bytes, at) == kInvalidUtf8)
            return false;
    return true;
}

std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    std::size_t at = 0;
    while (at < text.size() && ((text[at] & 0xC0) == 0x80 || count-- > 0))
        ++at;
    return text.substr(0, at);
}

void dropPartialCharacter(std::string_view& text)
{
    // Goes back over the continuation bytes at the end, at most four, because no character has as many.
    std::size_t start = text.size(); // of the last character
    while (start > 0 && text.size() - start < 4 && (text[start - 1] & 0xC0) == 0x80)
        --start;
    if (start > 0 && text.size() - (start - 1) < utf8Length(text[start - 1]))
        text.remove_suffix(text.size() - (start - 1));
}
