#include "Import/Schema/SchemaBuiltIns.h"

#include <algorithm>

namespace {

struct BuiltIn
{
    std::string_view name;
    SourceTypes::Kind kind;
};

constexpr auto kText = SourceTypes::kindText;
constexpr auto kNumber = SourceTypes::kindNumber;
constexpr auto kTime = SourceTypes::kindTime;

// The built-in types of https://www.w3.org/TR/xmlschema11-2/#built-in-datatypes and of the drafts before, sorted by
// name.
constexpr BuiltIn kBuiltIns[] = {{"CDATA", kText},
                                 {"ENTITIES", kText},
                                 {"ENTITY", kText},
                                 {"ID", kText},
                                 {"IDREF", kText},
                                 {"IDREFS", kText},
                                 {"NCName", kText},
                                 {"NMTOKEN", kText},
                                 {"NMTOKENS", kText},
                                 {"NOTATION", kText},
                                 {"Name", kText},
                                 {"QName", kText},
                                 {"anyAtomicType", kText},
                                 {"anySimpleType", kText},
                                 {"anyType", kText},
                                 {"anyURI", kText},
                                 {"base64Binary", kText},
                                 {"binary", kText},
                                 {"boolean", kText},
                                 {"byte", kNumber},
                                 {"century", kText},
                                 {"date", kTime},
                                 {"dateTime", kTime},
                                 {"dateTimeStamp", kTime},
                                 {"dayTimeDuration", kText},
                                 {"decimal", kNumber},
                                 {"double", kNumber},
                                 {"duration", kText},
                                 {"error", kText},
                                 {"float", kNumber},
                                 {"gDay", kText},
                                 {"gMonth", kText},
                                 {"gMonthDay", kText},
                                 {"gYear", kText},
                                 {"gYearMonth", kText},
                                 {"hexBinary", kText},
                                 {"int", kNumber},
                                 {"integer", kNumber},
                                 {"language", kText},
                                 {"long", kNumber},
                                 {"month", kText},
                                 {"negativeInteger", kNumber},
                                 {"nonNegativeInteger", kNumber},
                                 {"nonPositiveInteger", kNumber},
                                 {"normalizedString", kText},
                                 {"positiveInteger", kNumber},
                                 {"recurringDate", kText},
                                 {"recurringDay", kText},
                                 {"recurringDuration", kText},
                                 {"recurringInstant", kText},
                                 {"short", kNumber},
                                 {"string", kText},
                                 {"time", kTime},
                                 {"timeDuration", kText},
                                 {"timeInstant", kTime},
                                 {"timePeriod", kText},
                                 {"token", kText},
                                 {"unsignedByte", kNumber},
                                 {"unsignedInt", kNumber},
                                 {"unsignedLong", kNumber},
                                 {"unsignedShort", kNumber},
                                 {"uri", kText},
                                 {"uri-reference", kText},
                                 {"uriReference", kText},
                                 {"year", kText},
                                 {"yearMonthDuration", kText}};
static_assert(std::ranges::is_sorted(kBuiltIns, {}, &BuiltIn::name));

} // namespace

std::optional<SourceTypes::Kind> builtInKind(std::string_view name)
{
    const auto* const found = std::ranges::lower_bound(kBuiltIns, name, {}, &BuiltIn::name);
    if (found == std::end(kBuiltIns) || found->name != name)
        return std::nullopt;
    return found->kind;
}
