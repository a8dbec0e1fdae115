#include "Import/Dtd/DTDNotes.h"

#include "Base/Text.h"

#include <algorithm>

namespace {

constexpr std::string_view kPassedOver[] = {"ENTITY", "NOTATION"};
constexpr CharSet kBlank(" \t\r\n");

// Behind the next `end`, or the end of the text.
std::size_t behind(std::string_view text, std::string_view end, std::size_t from)
{
    const std::size_t found = text.find(end, from);
    return found == kNowhere ? text.size() : found + end.size();
}

// Behind the '>' of the declaration that begins at `from`; one in quotes doesn't count.
std::size_t endOfDeclaration(std::string_view text, std::size_t from)
{
    for (std::size_t at = from; at < text.size(); ++at) {
        if (text[at] == '>')
            return at + 1;
        if (text[at] == '"' || text[at] == '\'')
            at = std::min(text.find(text[at], at + 1), text.size());
    }
    return text.size();
}

// "ENTITY name" of a declaration that isn't read, its '<' at `at`; empty for any other.
CString passedOver(std::string_view text, std::size_t at)
{
    const std::string_view rest = text.substr(at + 2);
    for (const std::string_view keyword : kPassedOver) {
        if (!isSameAscii(rest.substr(0, keyword.size()), keyword))
            continue;
        const std::size_t name = std::min(kBlank.out(rest, keyword.size()), rest.size());
        const bool isParameter = rest.substr(name).starts_with('%');
        const std::size_t start = std::min(isParameter ? kBlank.out(rest, name + 1) : name, rest.size());
        return CString(keyword) + (isParameter ? " % " : " ") + CString(dtdNameAt(rest.substr(start)));
    }
    return {};
}

} // namespace

void reportPassedOver(std::string_view text, const TextLines& lines, SourceReport& report)
{
    const auto add = [&](SourceReport::Construct construct, std::size_t at, std::string_view name) {
        report.add(construct, {0, static_cast<std::uint32_t>(lines.lineOf(at))}, name);
    };
    for (std::size_t at = text.find_first_of("<%"); at < text.size(); at = text.find_first_of("<%", at)) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--")) {
            at = behind(text, "-->", at + 4);
        } else if (rest.starts_with("<?")) {
            at = behind(text, ">", at);
        } else if (rest.starts_with("<![")) {
            add(SourceReport::declarationPassedOver, at,
                "section " + CString(trimmed(rest.substr(3, rest.substr(3).find('[')))));
            at += 3;
        } else if (const CString what = rest.starts_with("<!") ? passedOver(text, at) : ""; !what.empty()) {
            add(SourceReport::declarationPassedOver, at, what);
            at = endOfDeclaration(text, at);
        } else {
            const std::string_view name = rest[0] == '%' ? dtdNameAt(rest.substr(1)) : std::string_view();
            if (!name.empty())
                add(SourceReport::entityNotExpanded, at, name);
            at += 1 + name.size();
        }
    }
}
