#pragma once

#include "Import/SourceReport.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

/// "Not found", as in the standard library.
inline constexpr std::size_t kNowhere = std::string_view::npos;

/// A set of bytes, with constant-time lookup.
class CharSet
{
public:
    /// The set of the bytes in `characters`.
    constexpr explicit CharSet(std::string_view characters)
    {
        for (const char c : characters)
            members[static_cast<unsigned char>(c)] = true;
    }

    /// Returns whether the set contains a byte.
    constexpr bool has(char c) const { return members[static_cast<unsigned char>(c)]; }

    /// Returns the first character from `from` on that is in the set; kNowhere if there is none.
    std::size_t in(std::string_view text, std::size_t from = 0) const { return find(text, from, true); }
    /// The same for the first character that is not in the set.
    std::size_t out(std::string_view text, std::size_t from = 0) const { return find(text, from, false); }

    /// Returns `text` without characters of the set at either end.
    std::string_view trim(std::string_view text) const
    {
        while (!text.empty() && has(text.front()))
            text.remove_prefix(1);
        while (!text.empty() && has(text.back()))
            text.remove_suffix(1);
        return text;
    }

private:
    std::size_t find(std::string_view text, std::size_t from, bool wanted) const
    {
        for (std::size_t at = from; at < text.size(); ++at)
            if (has(text[at]) == wanted)
                return at;
        return kNowhere;
    }

    bool members[256] = {};
};

/// The white space of a DTD (XML 1.0, production [3]).
inline constexpr CharSet kDtdBlank(" \t\r\n");

/// The characters that end a name in a declaration. All other bytes belong to names, also those that XML doesn't allow
/// there, so that a damaged name is reported whole.
inline constexpr CharSet kDtdDelimiter(" \t\r\n()|,&*?+\"'<>%;#[]");

/// Words of declarations with a '#'. "#CDATA" is none in XML or SGML, but the literal reading knows it.
inline constexpr std::string_view kPcdata = "#PCDATA", kCdata = "#CDATA", kImplied = "#IMPLIED";

/// Returns the name at the start of `text`, up to the first delimiter; empty if there is none.
inline std::string_view dtdNameAt(std::string_view text)
{
    return text.substr(0, kDtdDelimiter.in(text));
}

/// Returns the names of the attributes in an ATTLIST (XML 1.0, production [52]). `attlist` begins with the name of the
/// element. Stops at the end of the declaration, or at the first part that is not XML.
std::vector<std::string_view> attributesOf(std::string_view attlist);

/// A keyword, found in any letter case by Horspool's algorithm, which skips most of the text.
class DTDKeyword
{
public:
    /// `word` is in upper case, and must outlive this object.
    constexpr explicit DTDKeyword(std::string_view word) : word(word)
    {
        shifts.fill(static_cast<unsigned char>(word.size()));
        for (std::size_t i = 0; i + 1 < word.size(); ++i) {
            const auto shift = static_cast<unsigned char>(word.size() - 1 - i);
            shifts[static_cast<unsigned char>(word[i])] = shift;
            shifts[static_cast<unsigned char>(word[i] - 'A' + 'a')] = shift;
        }
    }

    constexpr std::size_t size() const { return word.size(); }

    /// Returns the position after the keyword at `from` or after it; kNowhere if there is none.
    std::size_t behind(std::string_view text, std::size_t from) const;

private:
    std::string_view word;
    std::array<unsigned char, 256> shifts{}; // by the character under the word's last place: how far to move on
};

/// Converts offsets in a text to lines and columns. Both count from 1, columns in bytes. Lines are indexed on the first
/// call, so a text without reports costs nothing.
class TextPlaces
{
public:
    /// The text must outlive this object.
    explicit TextPlaces(std::string_view text) : text(text) {}

    /// Returns the place of an offset, in file 0 of the report. The offset is not inside a byte order mark.
    SourcePlace at(std::size_t offset);

private:
    std::string_view text;
    std::vector<std::size_t> lines; // where each begins
};

/// The parentheses of a text, matched once for all its content models. Statements of the literal reading may overlap,
/// so matching the parentheses of each by itself would take quadratic time.
class DTDGroups
{
public:
    /// A ')'.
    struct Close
    {
        std::size_t at;              ///< offset in the text
        std::size_t mark = kNowhere; ///< the first '*' or '+' after it, unless a separator comes before; else kNowhere
    };

    /// Matches the parentheses of `text`, in linear time.
    explicit DTDGroups(std::string_view text);

    /// Returns the number of groups, which is that of the '('.
    std::size_t size() const { return groups.size(); }
    /// Returns the position of the '(' of a group.
    std::size_t openOf(std::size_t index) const { return groups[index].open; }

    /// Returns the end of a group in a text that is cut at `end`: its matching ')' if that lies before `end`, else the
    /// last ')' between its '(' and `end`. Null if there is none: the group then runs to `end`. The pointer is valid as
    /// long as the groups.
    const Close* closeOf(std::size_t index, std::size_t end) const;

    /// Returns the last ')' between two positions; null if there is none.
    const Close* lastBetween(std::size_t start, std::size_t end) const;

    /// Returns the index of the first group that opens at `start` or after it; size() if there is none.
    std::size_t firstFrom(std::size_t start) const;

private:
    struct Group
    {
        std::size_t open;
        std::size_t close = kNowhere; // index of its ')' in `closes`, or kNowhere
    };

    std::vector<Group> groups; // sorted by `open`
    std::vector<Close> closes; // sorted by `at`
};
