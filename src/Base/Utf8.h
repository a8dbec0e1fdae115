#pragma once

#include <string>
#include <string_view>

/// What decodeUtf8() answers where the bytes are no UTF-8.
inline constexpr char32_t kNoUtf8 = 0xFFFFFFFF;

/// How many bytes the character takes that starts with `lead`; 1 for a byte that starts none.
std::size_t utf8Length(char lead);

/// Decodes one character at `at` and moves past it. kNoUtf8, and no move, where the bytes are no UTF-8, overlong forms
/// and surrogates included (RFC 3629).
char32_t decodeUtf8(std::string_view text, std::size_t& at);

/// Takes a character that a cut has left incomplete off the end of `text`.
void dropCutCharacter(std::string_view& text);

/// Appends a character, which must be one.
void appendUtf8(std::string& out, char32_t code);

/// True when decodeUtf8() takes all of it.
bool isUtf8(std::string_view bytes);
