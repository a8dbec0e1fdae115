#include "Import/Schema/SchemaConditions.h"

#include "Import/Schema/SchemaBuiltIns.h"
#include "Import/Schema/SchemaGrammar.h"

#include <charconv>
#include <system_error>

namespace {

constexpr double kVersion = 1.1; // of the language that is read

std::optional<double> versionOf(std::string_view value)
{
    double version = 0;
    const char* const end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, version);
    return error == std::errc() && rest == end ? std::optional(version) : std::nullopt;
}

} // namespace

bool isVersioningNamespace(const char* uri)
{
    return uri && uri == std::string_view("http://www.w3.org/2007/XMLSchema-versioning");
}

std::optional<bool> isConditionMet(std::string_view local, std::string_view value,
                                   const std::function<bool(std::string_view prefix)>& isLanguagePrefix)
{
    const bool isLeast = local == "minVersion";
    if (isLeast || local == "maxVersion") {
        const auto version = versionOf(trimmed(value));
        return version ? std::optional((*version <= kVersion) == isLeast) : std::nullopt;
    }
    const bool isOfTypes = local == "typeAvailable" || local == "typeUnavailable";
    if (!isOfTypes && local != "facetAvailable" && local != "facetUnavailable")
        return std::nullopt;
    bool areAllKnown = true;
    forEachName(value, [&](std::string_view name) {
        const std::size_t colon = name.find(':');
        const std::string_view word = name.substr(colon + 1); // npos + 1 is 0
        areAllKnown &= isLanguagePrefix(name.substr(0, colon == name.npos ? 0 : colon)) &&
                       (isOfTypes ? builtInKind(word).has_value() : SchemaGrammar::isFacet(word));
    });
    return areAllKnown == local.ends_with("Available");
}
