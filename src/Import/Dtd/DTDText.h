#pragma once

#include "Import/SourceReport.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// "Nothing found", as the standard library's searches say it.
inline constexpr std::size_t kNowhere = std::string_view::npos;

/// A set of bytes that is asked about at every character.
class CharSet
{
public:
    constexpr explicit CharSet(std::string_view characters)
    {
        for (const char c : characters)
            members[static_cast<unsigned char>(c)] = true;
    }

    constexpr bool has(char c) const { return members[static_cast<unsigned char>(c)]; }

    /// The first character of the set (`in`) or out of it (`out`) from `from` on, or kNowhere.
    std::size_t in(std::string_view text, std::size_t from = 0) const { return find(text, from, true); }
    std::size_t out(std::string_view text, std::size_t from = 0) const { return find(text, from, false); }

    /// `text` without the characters of the set at either end.
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

/// What ends a name in a declaration.
inline constexpr CharSet kDtdDelimiter(" \t\r\n()|,&*?+\"'<>%;#[]");

/// The name at the start of `text`, as far as one can stand in a reference.
inline std::string_view dtdNameAt(std::string_view text)
{
    return text.substr(0, kDtdDelimiter.in(text));
}

/// Finds the next place of something in a text for starts that only ever grow: what lies between the last start and the
/// last find is never looked at twice. `Search(text, from)` answers a position or kNowhere.
template <auto Search>
class ForwardSearch
{
public:
    explicit ForwardSearch(std::string_view text) : text(text) {}

    std::size_t from(std::size_t start)
    {
        if (!searched || found < start) {
            found = Search(text, start);
            searched = true;
        }
        return found;
    }

private:
    std::string_view text;
    std::size_t found = 0;
    bool searched = false;
};

/// Places in a text: lines and columns, both counted from 1, columns in bytes. Lines are only looked for once a place
/// is asked for.
class TextPlaces
{
public:
    explicit TextPlaces(std::string_view text) : text(text) {}

    /// The place in the first file of the report.
    SourcePlace at(std::size_t offset);

private:
    std::string_view text;
    std::vector<std::size_t> starts; // of the lines
};

/// The parentheses of a text, matched once for all content models in it.
class DTDGroups
{
public:
    /// A ')'.
    struct Close
    {
        std::size_t at;
        std::size_t mark = kNowhere; ///< the first '*' or '+' behind it, when no separator stands before that
    };

    explicit DTDGroups(std::string_view text);

    std::size_t size() const { return groups.size(); }
    std::size_t openOf(std::size_t index) const { return groups[index].open; }

    /// Where a group ends in a text that is cut at `end`: at the ')' where the depth is back to what it was, and where
    /// there are too few, at the last one behind the group's '('. Null when there is none at all.
    const Close* closeOf(std::size_t index, std::size_t end) const;

    /// The index of the first group that opens at `start` or behind it; size() when there is none.
    std::size_t firstFrom(std::size_t start) const;

private:
    struct Group
    {
        std::size_t open;
        std::size_t close = kNowhere; // an index
    };

    std::vector<Group> groups; // in the order of `open`
    std::vector<Close> closes; // in the order of `at`
};

/// Positions of the two keywords; letters of either case match.
std::size_t findElementKeyword(std::string_view text, std::size_t from);
std::size_t findAttlistKeyword(std::string_view text, std::size_t from);

/// The first character from `from` on that is no white space, or kNowhere.
std::size_t skipWhitespace(std::string_view text, std::size_t from);

/// The first space or '(' from `from` on, or kNowhere: where the name of an element ends.
std::size_t findNameEnd(std::string_view text, std::size_t from);
