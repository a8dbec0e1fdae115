#include "Import/Schema/SchemaBuiltIns.h"

#include <algorithm>

namespace {

// The built-in types of https://www.w3.org/TR/xmlschema11-2/#built-in-datatypes and of the drafts before, each list
// sorted. A boolean has four spellings, and a duration or a year is not a point in time, so these are texts.
// clang-format off
constexpr std::string_view kNumbers[] = {
    "byte", "decimal", "double", "float", "int", "integer", "long", "negativeInteger", "nonNegativeInteger",
    "nonPositiveInteger", "positiveInteger", "short", "unsignedByte", "unsignedInt", "unsignedLong", "unsignedShort"};
constexpr std::string_view kTimes[] = {
    "date", "dateTime", "dateTimeStamp", "time", "timeInstant"};
constexpr std::string_view kTexts[] = {
    "CDATA", "ENTITIES", "ENTITY", "ID", "IDREF", "IDREFS", "NCName", "NMTOKEN", "NMTOKENS", "NOTATION", "Name",
    "QName", "anyAtomicType", "anySimpleType", "anyType", "anyURI", "base64Binary", "binary", "boolean", "century",
    "dayTimeDuration", "duration", "error", "gDay", "gMonth", "gMonthDay", "gYear", "gYearMonth", "hexBinary",
    "language", "month", "normalizedString", "recurringDate", "recurringDay", "recurringDuration",
    "recurringInstant", "string", "timeDuration", "timePeriod", "token", "uri", "uri-reference", "uriReference",
    "year", "yearMonthDuration"};
// clang-format on
static_assert(std::ranges::is_sorted(kNumbers) && std::ranges::is_sorted(kTimes) && std::ranges::is_sorted(kTexts));

} // namespace

std::optional<SourceTypes::Kind> builtInKind(std::string_view name)
{
    if (std::ranges::binary_search(kNumbers, name))
        return SourceTypes::kindNumber;
    if (std::ranges::binary_search(kTimes, name))
        return SourceTypes::kindTime;
    if (std::ranges::binary_search(kTexts, name))
        return SourceTypes::kindText;
    return std::nullopt;
}

bool isBuiltInList(std::string_view name)
{
    return name == "NMTOKENS" || name == "IDREFS" || name == "ENTITIES";
}
