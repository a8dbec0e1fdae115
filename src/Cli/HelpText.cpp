#include "Cli/HelpText.h"

#include <CLI/CLI.hpp>

namespace {

constexpr std::size_t kColumn = 28;  // column of the descriptions
constexpr std::size_t kColumns = 80; // width of a line

// In the order of printing. An option in another group would not be printed.
constexpr const char* kGroups[] = {"Input", "Reading", "Output", "Broker", "Other"};

// Returns a text wrapped to the column of the descriptions. If a word is wider than the column, the text from that word
// on is not wrapped.
CString wrapped(std::string_view text)
{
    CString lines;
    while (text.size() > kColumns - kColumn) {
        const std::size_t end = text.rfind(' ', kColumns - kColumn);
        if (end == text.npos)
            break;
        lines.append(text.substr(0, end)).append("\n").append(kColumn, ' ');
        text.remove_prefix(end + 1);
    }
    return lines.append(text);
}

// Returns an option with its description, which begins on a line of its own if the names reach its column.
CString lineOf(const CLI::Option& option)
{
    CString line = option.get_snames().empty() ? "      " : "  -" + option.get_snames().front() + ", ";
    line += "--" + option.get_lnames().front();
    if (option.get_items_expected_max() > 0) {
        const CString type = option.get_type_name();
        line += " " + type.substr(0, type.find(":{")); // CLI11 appends the words of a choice after it
    }
    if (line.size() + 2 > kColumn)
        line += "\n" + CString(kColumn, ' ');
    else
        line.resize(kColumn, ' ');
    return line + wrapped(option.get_description()) + "\n";
}

} // namespace

CString helpText(const CLI::App& app)
{
    CString text = "Usage: " + app.get_name() + " [IMPORTER] SOURCE... [OPTION]...\n" + app.get_description() + "\n";
    for (const char* group : kGroups) {
        text += CString("\n") + group + ":\n";
        // The description of the positional argument holds all lines about it.
        if (group == kGroups[0])
            for (const CLI::Option* option : app.get_options([](const CLI::Option* o) { return !o->nonpositional(); }))
                text += option->get_description();
        for (const CLI::Option* option : app.get_options([](const CLI::Option* o) { return o->nonpositional(); }))
            if (option->get_group() == group)
                text += lineOf(*option);
    }
    return text;
}
