#pragma once

#include <string_view>

/// Returns whether a text is a date, a time or both in the extended format of ISO 8601 ("2026-11-27T11:16:00Z").
bool isIsoTime(std::string_view text);
