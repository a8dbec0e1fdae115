#pragma once

#include <functional>
#include <optional>
#include <string_view>

/// Returns whether a namespace is that of the attributes for conditional inclusion (XML Schema 1.1 Part 1, 4.2.2).
/// `uri` may be null.
bool isVersioningNamespace(const char* uri);

/// Returns whether a statement with such an attribute is read: the attribute's version, types or facets are supported.
/// Returns nothing if there is no attribute with that local name, or its value is invalid. `isLanguagePrefix` returns
/// whether the namespace of a prefix is the schema language.
std::optional<bool> isConditionMet(std::string_view local, std::string_view value,
                                   const std::function<bool(std::string_view prefix)>& isLanguagePrefix);
