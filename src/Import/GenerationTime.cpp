#include "Import/GenerationTime.h"

#include <cstdlib>
#include <ctime>
#include <optional>

namespace {

constexpr const char* kVariable = "SOURCE_DATE_EPOCH";
constexpr long long kFirst = -62167219200, kLast = 253402300799; // start of the year 0 and end of the year 9999

// Returns the time that SOURCE_DATE_EPOCH sets; nothing if it is not set or invalid. A year of five digits does not fit
// into kTimeLength.
std::optional<std::time_t> fixedTime()
{
    const char* const text = std::getenv(kVariable);
    if (text == nullptr)
        return std::nullopt;
    char* end = nullptr;
    const long long seconds = std::strtoll(text, &end, 10);
    if (end == text || *end != '\0' || seconds < kFirst || seconds > kLast)
        return std::nullopt;
    return static_cast<std::time_t>(seconds);
}

} // namespace

CString generationTime()
{
    const std::time_t now = fixedTime().value_or(std::time(nullptr));
    std::tm utc = {};
    ::gmtime_r(&now, &utc);
    return formatText("%04lu-%02lu-%02luT%02u:%02u:%02u", static_cast<unsigned long>(utc.tm_year + 1900L),
                      static_cast<unsigned long>(utc.tm_mon + 1L), static_cast<unsigned long>(utc.tm_mday),
                      static_cast<unsigned>(utc.tm_hour), static_cast<unsigned>(utc.tm_min),
                      static_cast<unsigned>(utc.tm_sec));
}

bool isTimeFixed()
{
    return fixedTime().has_value();
}

CString epochError()
{
    const char* const text = std::getenv(kVariable);
    if (text == nullptr || fixedTime())
        return {};
    return formatText("%s: '%s' is not a time in the years 0 to 9999, in seconds since 1970", kVariable, text);
}
