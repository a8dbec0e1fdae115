#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The result of decodeUtf8() if the bytes are not UTF-8.
inline constexpr char32_t kInvalidUtf8 = 0xFFFFFFFF;

/// The byte order mark that a text in UTF-8 may begin with. It is not part of the text.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// Returns the length in bytes, 1 to 4, of the character that starts with `lead`; 1 for a continuation byte. The byte
/// is not checked further: 0xC0 and 0xC1 give 2, and 0xF5 to 0xFF give 4, though no character starts with them.
std::size_t utf8Length(char lead);

/// Returns the character at `at` and moves `at` past it. If the bytes are not UTF-8 (RFC 3629), overlong forms and
/// surrogates included, returns kInvalidUtf8 and leaves `at`. `at` must be less than the size.
char32_t decodeUtf8(std::string_view text, std::size_t& at);

/// Returns whether a text consists of ASCII characters.
bool isAscii(std::string_view text);

/// Returns the number of characters that begin in a UTF-8 text. A byte that is not UTF-8 counts as a character, unless
/// it looks like a continuation byte.
std::size_t countCharacters(std::string_view text);

/// Returns the first `count` characters of a UTF-8 text. Returns the whole text if it has fewer. A character is never
/// cut.
std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Removes an incomplete character at the end of `text`, which a cut has left there. Looks at the end only. For texts
/// that are cut to a number of bytes.
void dropPartialCharacter(std::string_view& text);

/// Appends a character as UTF-8. `code` must be a valid code point.
void appendUtf8(std::string& out, char32_t code);

/// Returns whether all of the bytes are UTF-8.
bool isUtf8(std::string_view bytes);
