#include "Import/Full/Descriptions.h"

#include "Base/Utf8.h"

namespace {

constexpr std::size_t kLongestDescription = 255; // characters

} // namespace

void appendCollapsed(CString& out, std::string_view text)
{
    // Documentation can be megabytes long. Collecting stops once the text is long enough even if all its characters
    // have four bytes.
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
