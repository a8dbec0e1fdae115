#include "Import/Dtd/DTDText.h"

#include "Base/Progress.h"
#include "Base/Text.h"
#include "Base/Utf8.h"

#include <algorithm>

std::size_t DTDKeyword::behind(std::string_view text, std::size_t from) const
{
    const std::size_t last = word.size() - 1;
    for (std::size_t at = from; at < text.size() && text.size() - at > last;) {
        if (std::equal(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                       [](char a, char b) { return a == upperAscii(b); }))
            return at + word.size();
        at += shifts[static_cast<unsigned char>(text[at + last])];
    }
    return kNowhere;
}

SourcePlace TextPlaces::at(std::size_t offset)
{
    if (lines.empty()) {
        lines.push_back(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
        for (std::size_t feed = text.find('\n'); feed != kNowhere; feed = text.find('\n', feed + 1))
            lines.push_back(feed + 1);
    }
    const auto behind = std::ranges::upper_bound(lines, offset);
    return {0, static_cast<std::uint32_t>(behind - lines.begin()), static_cast<std::uint32_t>(offset - behind[-1] + 1)};
}

// One pass. A mark belongs to every ')' since the last separator or mark, whatever parentheses are between: in
// "(a)(b)*" it belongs to both. `unmarked` passes over each ')' once, so this stays linear.
DTDGroups::DTDGroups(std::string_view text)
{
    static constexpr CharSet structure("()*+,|&");
    std::vector<std::size_t> open; // groups without a ')' so far
    std::size_t unmarked = 0;      // the first ')' that may still get a mark
    CancelPoint cancelPoint(1 << 16);
    for (std::size_t at = structure.in(text); at != kNowhere; at = structure.in(text, at + 1)) {
        cancelPoint.pass();
        const char c = text[at];
        if (c == '(') {
            open.push_back(groups.size());
            groups.push_back({.open = at});
        } else if (c == ')') {
            if (!open.empty()) {
                groups[open.back()].close = closes.size();
                open.pop_back();
            }
            closes.push_back({.at = at});
        } else {
            if (c == '*' || c == '+')
                for (; unmarked < closes.size(); ++unmarked)
                    closes[unmarked].mark = at;
            unmarked = closes.size();
        }
    }
}

// A statement may end inside a group, or lack its ')'. The group then ends at the last ')' in the statement, because
// existing documents depend on that.
const DTDGroups::Close* DTDGroups::closeOf(std::size_t index, std::size_t end) const
{
    const Group& group = groups[index];
    if (group.close != kNowhere && closes[group.close].at < end)
        return &closes[group.close];
    return lastBetween(group.open, end);
}

// A binary search, because overlapping statements would all walk over the same ')'.
const DTDGroups::Close* DTDGroups::lastBetween(std::size_t start, std::size_t end) const
{
    const auto behind = std::ranges::lower_bound(closes, end, {}, &Close::at);
    return behind != closes.begin() && behind[-1].at > start ? &behind[-1] : nullptr;
}

std::size_t DTDGroups::firstFrom(std::size_t start) const
{
    return static_cast<std::size_t>(std::ranges::lower_bound(groups, start, {}, &Group::open) - groups.begin());
}

std::vector<std::string_view> attributesOf(std::string_view attlist)
{
    std::vector<std::string_view> names;
    std::string_view rest = attlist;
    const auto skip = [&rest](std::size_t size) {
        rest.remove_prefix(std::min(size, rest.size()));
        rest.remove_prefix(std::min(kDtdBlank.out(rest), rest.size()));
    };
    for (skip(dtdNameAt(rest).size());;) {
        const std::string_view name = dtdNameAt(rest);
        skip(name.size());
        skip(dtdNameAt(rest).size()); // the type
        if (rest.starts_with('('))
            skip(std::min(rest.find(')'), rest.size() - 1) + 1);
        const bool isReserved = rest.starts_with('#'), isQuoted = rest.starts_with('"') || rest.starts_with('\'');
        if (name.empty() || (!isReserved && !isQuoted))
            return names;
        names.push_back(name);
        if (isReserved)
            skip(1 + dtdNameAt(rest.substr(1)).size());
        if (!rest.starts_with('"') && !rest.starts_with('\''))
            continue;
        // A literal that holds a declaration has no end.
        const std::size_t end = rest.find(rest.front(), 1);
        if (end == kNowhere || rest.substr(0, end).find("<!") != kNowhere)
            return names;
        skip(end + 1);
    }
}
