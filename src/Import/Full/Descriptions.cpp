#include "Import/Full/Descriptions.h"

namespace {

constexpr std::size_t kLongestDescription = 255;

// Returns the first `count` characters of a UTF-8 text.
std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    std::size_t at = 0;
    while (at < text.size() && (!isFirstByte(text[at]) || count-- > 0))
        ++at;
    return text.substr(0, at);
}

} // namespace

void appendCollapsed(CString& out, std::string_view text)
{
    constexpr std::size_t longestCharacter = 4;
    for (std::size_t i = 0; i < text.size() && out.size() <= longestCharacter * kLongestDescription; ++i) {
        if (kWhitespace.find(text[i]) == std::string_view::npos)
            out += text[i];
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    }
}

std::string_view shortDescription(std::string_view collapsed)
{
    return trimmed(firstCharacters(collapsed, kLongestDescription));
}
