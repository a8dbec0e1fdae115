#include "Import/Json/IsoTime.h"

#include "Import/Json/JsonScanner.h"

#include <algorithm>
#include <chrono>

namespace {

// Returns the number that two digits write.
unsigned numberAt(std::string_view text, std::size_t at)
{
    return static_cast<unsigned>(text[at] - '0') * 10 + static_cast<unsigned>(text[at + 1] - '0');
}

// Removes text of the form of `pattern` from the start, in which 0 stands for any digit. Returns false if there is
// none, or if the two digits at its end are more than `most`.
bool take(std::string_view& text, std::string_view pattern, unsigned most = 99)
{
    if (text.size() < pattern.size())
        return false;
    for (std::size_t i = 0; i < pattern.size(); ++i)
        if (pattern[i] == '0' ? !isDigit(text[i]) : text[i] != pattern[i])
            return false;
    if (most < 99 && numberAt(text, pattern.size() - 2) > most)
        return false;
    text.remove_prefix(pattern.size());
    return true;
}

bool takeDate(std::string_view& text)
{
    using namespace std::chrono;
    const std::string_view date = text;
    return take(text, "0000-00-00") && (year(static_cast<int>(numberAt(date, 0) * 100 + numberAt(date, 2))) /
                                        month(numberAt(date, 5)) / day(numberAt(date, 8)))
                                           .ok();
}

// Takes a time with its fraction and offset. Seconds are optional in ISO 8601. Minutes of the offset are, too, because
// some databases leave them out.
bool takeTime(std::string_view& text)
{
    const bool isMidnight = text.starts_with("24:00"); // the end of a day
    if (!take(text, "00", isMidnight ? 24 : 23) || !take(text, ":00", 59))
        return false;
    // 60 is a leap second.
    if (text.starts_with(':') && !take(text, ":00", 60))
        return false;
    if (take(text, ".") || take(text, ",")) {
        const std::size_t end = std::min(text.find_first_not_of("0123456789"), text.size());
        if (end == 0)
            return false;
        text.remove_prefix(end);
    }
    if (text.empty() || take(text, "Z") || take(text, "z"))
        return true;
    if (!take(text, "+00", 23) && !take(text, "-00", 23))
        return false;
    return text.empty() || take(text, ":00", 59) || take(text, "00", 59);
}

} // namespace

bool isIsoTime(std::string_view text)
{
    // "12:34" is the shortest. The longest allows for a fraction of many digits.
    constexpr std::size_t shortest = 5, longest = 40;
    if (text.size() < shortest || text.size() > longest || !isDigit(text[0]))
        return false;
    if (text[2] == ':')
        return takeTime(text) && text.empty();
    if (!takeDate(text))
        return false;
    return text.empty() || ((take(text, "T") || take(text, "t") || take(text, " ")) && takeTime(text) && text.empty());
}
