#include "Import/Json/IsoTime.h"

#include <algorithm>
#include <chrono>
#include <optional>

namespace {

// Removes a number of `digits` digits from the start. Returns nothing if there is none, or it is more than `most`.
template <std::size_t digits>
std::optional<unsigned> takeNumber(std::string_view& text, unsigned most)
{
    if (text.size() < digits)
        return std::nullopt;
    unsigned number = 0;
    for (std::size_t i = 0; i < digits; ++i) {
        const unsigned digit = static_cast<unsigned char>(text[i]) - unsigned{'0'};
        if (digit > 9)
            return std::nullopt;
        number = number * 10 + digit;
    }
    if (number > most)
        return std::nullopt;
    text.remove_prefix(digits);
    return number;
}

bool takeMark(std::string_view& text, char mark)
{
    if (!text.starts_with(mark))
        return false;
    text.remove_prefix(1);
    return true;
}

bool takeDate(std::string_view& text)
{
    const auto year = takeNumber<4>(text, 9999);
    const auto month = takeMark(text, '-') ? takeNumber<2>(text, 12) : std::nullopt;
    const auto day = takeMark(text, '-') ? takeNumber<2>(text, 31) : std::nullopt;
    return year && month && day &&
           (std::chrono::year(static_cast<int>(*year)) / std::chrono::month(*month) / std::chrono::day(*day)).ok();
}

// Takes a time with its fraction and offset. Seconds are optional in ISO 8601. Minutes of the offset are, too, because
// some databases leave them out.
bool takeTime(std::string_view& text)
{
    const bool isMidnight = text.starts_with("24:00"); // the end of a day
    if (!takeNumber<2>(text, isMidnight ? 24 : 23) || !takeMark(text, ':') || !takeNumber<2>(text, 59))
        return false;
    // 60 is a leap second.
    if (takeMark(text, ':') && !takeNumber<2>(text, 60))
        return false;
    if (takeMark(text, '.') || takeMark(text, ',')) {
        const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
        if (end == 0)
            return false;
        text.remove_prefix(end);
    }
    if (takeMark(text, 'Z') || takeMark(text, 'z') || text.empty())
        return true;
    if ((!takeMark(text, '+') && !takeMark(text, '-')) || !takeNumber<2>(text, 23))
        return false;
    const bool hasMinutes = takeMark(text, ':') || !text.empty();
    return !hasMinutes || takeNumber<2>(text, 59);
}

} // namespace

bool isIsoTime(std::string_view text)
{
    // "12:34" is the shortest. The longest allows for a fraction of many digits.
    constexpr std::size_t shortest = 5, longest = 40;
    if (text.size() < shortest || text.size() > longest || text[0] < '0' || text[0] > '9')
        return false;
    if (text[2] == ':')
        return takeTime(text) && text.empty();
    if (!takeDate(text))
        return false;
    return text.empty() ||
           ((takeMark(text, 'T') || takeMark(text, 't') || takeMark(text, ' ')) && takeTime(text) && text.empty());
}
