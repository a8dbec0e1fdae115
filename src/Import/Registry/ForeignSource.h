#pragma once

#include <string_view>

/// Identifies sources of well-known formats without an importer. Returns the format with advice, as a sentence without
/// its full stop: "this is RELAX NG; convert it with trang, then import the schema". Empty for other sources. `start`
/// is the beginning of a file, identified by its first bytes or the root element's namespace. `content` is `start`
/// after byte order mark, comments and DOCTYPE.
std::string_view foreignSource(std::string_view start, std::string_view content);

/// Returns the namespace of the element that the text begins with; empty if it has none, or if the text begins with
/// something else.
std::string_view namespaceOf(std::string_view text);

/// Does the same for text that no importer knows, identified by the file's suffix or by its first words.
std::string_view foreignText(std::string_view start, std::string_view fileName);
