#include "Cli/Completion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

// An option, as a shell completes it.
struct Row
{
    CString shortName; // "o"
    CString longName;  // "output"
    CString description;
    CString value;  // what stands behind it, by name; empty for nothing
    CString choice; // the words that can, blanks between

    CString names(const char* separator) const
    {
        return shortName.empty() ? "--" + longName : "-" + shortName + separator + "--" + longName;
    }
    bool isFile() const { return value == "FILE"; }
};

// Puts a backslash before each of `characters`.
CString escaped(std::string_view text, std::string_view characters)
{
    CString out;
    for (const char c : text) {
        if (characters.find(c) != characters.npos)
            out += '\\';
        out += c;
    }
    return out;
}

std::vector<Row> rowsOf(const CLI::App& app)
{
    std::vector<Row> rows;
    for (const CLI::Option* option : app.get_options([](const CLI::Option* o) { return o->nonpositional(); })) {
        Row row;
        row.shortName = option->get_snames().empty() ? "" : option->get_snames().front();
        row.longName = option->get_lnames().front();
        row.description = option->get_description();
        const CString type = option->get_items_expected_max() == 0 ? "" : option->get_type_name();
        row.value = type.substr(0, type.find(':')); // behind it stand the checks
        if (row.value.find('|') != CString::npos) {
            row.choice = row.value;
            std::replace(row.choice.begin(), row.choice.end(), '|', ' ');
        }
        rows.push_back(row);
    }
    return rows;
}

CString joined(const std::vector<Row>& rows, const char* separator, const std::function<bool(const Row&)>& isWanted)
{
    CString all;
    for (const Row& row : rows)
        if (isWanted(row))
            all += (all.empty() ? "" : separator) + row.names(separator);
    return all;
}

// Each "%s" is filled in turn: files, words to choose from, other values, all options.
constexpr char kBash[] = R"sh(# Completion of typeforge-import for bash.
_typeforge_import()
{
    local cur prev words cword patterns
    _init_completion || return
    case $prev in
        %s)
            _filedir
            return ;;
%s        %s)
            return ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "%s" -- "$cur")
    elif ((cword == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "$("$1" --importers | cut -f 1)" -- "$cur"; compgen -f -- "$cur")
    elif [[ ${words[1]} == odbc ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(odbcinst -q -s 2>/dev/null | tr -d '[]')" -- "$cur")
    else
        patterns=$("$1" --importers | awk -F '\t' -v word="${words[1]}" '$1 == word { print $2 }')
        patterns=${patterns//\*./} patterns=${patterns,,} patterns=${patterns//;/|}
        _filedir ${patterns:+"@($patterns)"}
    fi
} && complete -F _typeforge_import typeforge-import
)sh";

constexpr char kBashChoice[] = R"sh(        %s)
            mapfile -t COMPREPLY < <(compgen -W "%s" -- "$cur")
            return ;;
)sh";

// Filled with the options.
constexpr char kZsh[] = R"sh(#compdef typeforge-import
# Completion of typeforge-import for zsh.
_typeforge_import_sources()
{
    if ((CURRENT == 2)); then
        compadd -- ${(f)"$($words[1] --importers | cut -f 1)"}
        _files
    elif [[ $words[2] == odbc ]]; then
        compadd -- ${(f)"$(odbcinst -q -s 2>/dev/null | tr -d '[]')"}
    else
        _files
    fi
}
_typeforge_import()
{
    _arguments -s \
%s        '*:source:_typeforge_import_sources'
}
_typeforge_import "$@"
)sh";

constexpr char kFish[] = R"sh(# Completion of typeforge-import for fish.
complete -c typeforge-import -n 'test (count (commandline -opc)) -eq 1' -a '(eval (commandline -opc)[1] --importers | string replace -r "\t.*\t" "\t")'
%s)sh";

CString filled(CString text, std::initializer_list<CString> values)
{
    for (const CString& value : values)
        text = fillText(text, value);
    return text;
}

CString forBash(const std::vector<Row>& rows)
{
    const auto isOther = [](const Row& row) { return !row.value.empty() && !row.isFile() && row.choice.empty(); };
    CString choices, options;
    for (const Row& row : rows) {
        options += (options.empty() ? "--" : " --") + row.longName;
        if (!row.choice.empty())
            choices += filled(kBashChoice, {row.names(" | "), row.choice});
    }
    return filled(kBash, {joined(rows, " | ", &Row::isFile), choices, joined(rows, " | ", isOther), options});
}

// Inside single quotes, in the words of _arguments.
CString zshText(std::string_view text)
{
    CString out;
    for (const char c : escaped(text, "[]:\\"))
        out += c == '\'' ? CString("'\\''") : CString(1, c);
    return out;
}

CString forZsh(const std::vector<Row>& rows)
{
    CString lines;
    for (const Row& row : rows) {
        const CString name = "--" + row.longName, both = "-" + row.shortName;
        CString line = row.shortName.empty() ? "'" + name : "'(" + both + " " + name + ")'{" + both + "," + name + "}'";
        line += "[" + zshText(row.description) + "]";
        if (!row.value.empty())
            line += ":" + zshText(row.value) + ":" +
                    (row.isFile()         ? "_files"
                     : row.choice.empty() ? ""
                                          : "(" + row.choice + ")");
        lines += "        " + line + "' \\\n";
    }
    return filled(kZsh, {lines});
}

CString forFish(const std::vector<Row>& rows)
{
    CString lines;
    for (const Row& row : rows) {
        lines += "complete -c typeforge-import" + (row.shortName.empty() ? "" : " -s " + row.shortName) + " -l " +
                 row.longName;
        if (row.isFile())
            lines += " -r -F";
        else if (!row.value.empty())
            lines += row.choice.empty() ? " -x" : " -x -a '" + row.choice + "'";
        lines += " -d '" + escaped(row.description, "'\\") + "'\n";
    }
    return filled(kFish, {lines});
}

} // namespace

CString completionFor(const CLI::App& app, const CString& shell)
{
    const std::vector<Row> rows = rowsOf(app);
    return shell == "bash" ? forBash(rows) : shell == "zsh" ? forZsh(rows) : forFish(rows);
}
