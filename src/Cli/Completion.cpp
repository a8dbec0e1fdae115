#include "Cli/Completion.h"

#include "Import/MsgUIDescriptor.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <vector>

// A script is a template filled with the options of the parser. It doesn't contain the importers' files, because it
// runs the command to list them (--importers). All three scripts work alike. The first word that is neither an option
// nor an option's value names the importer; without such a word the importers are offered, and files, because an
// importer may be left out. With one, its files or data sources are offered, and options of other importers are not.
namespace {

// The properties of an option for shell completion.
struct Row
{
    CString shortName; // without dash, "o"
    CString longName;  // without dashes, "output"
    CString description;
    CString value;  // name of its value, "FILE"; empty for a flag
    CString choice; // the possible words, separated by blanks; empty for any value

    // Returns "-o", the separator and "--output", or the long name alone.
    CString names(const char* separator) const
    {
        return shortName.empty() ? "--" + longName : "-" + shortName + separator + "--" + longName;
    }
    bool isFile() const { return value == "FILE"; }
    bool hasValue() const { return !value.empty(); }

    /// Returns the importers that the option doesn't apply to, "xml|btd"; empty if it applies to all. The description
    /// names those it applies to: "dtd, xsd: Read by ...". Any other beginning, like "With --full:", names none.
    CString otherImporters() const
    {
        const CString named = " " + description.substr(0, description.find(':')) + ",";
        bool isForSome = false;
        CString others;
        for (MsgUIDescriptor** importer = g_amud; *importer; ++importer) {
            const std::string_view word = (*importer)->querySource().word;
            // Searched with its separators, so that "json" is not found in "jsonschema".
            if (named.find(CString(" ").append(word).append(",")) != CString::npos)
                isForSome = true;
            else
                others.append(others.empty() ? "" : "|").append(word);
        }
        return isForSome ? others : "";
    }
};

// Returns `text` with a backslash before each of `characters`.
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

// Reads the rows from the parser. Each option has a long name. Positional arguments have no row.
std::vector<Row> rowsOf(const CLI::App& app)
{
    std::vector<Row> rows;
    for (const CLI::Option* option : app.get_options([](const CLI::Option* o) { return o->nonpositional(); })) {
        Row row;
        row.shortName = option->get_snames().empty() ? "" : option->get_snames().front();
        row.longName = option->get_lnames().front();
        row.description = option->get_description();
        const CString type = option->get_items_expected_max() == 0 ? "" : option->get_type_name();
        row.value = type.substr(0, type.find(':')); // CLI11 appends the validators' names after it
        if (row.value.find('|') != CString::npos) {
            row.choice = row.value;
            std::ranges::replace(row.choice, '|', ' ');
        }
        rows.push_back(row);
    }
    return rows;
}

// Returns the names of the wanted options, both forms of each, with a separator between them.
CString joined(const std::vector<Row>& rows, const char* separator, const std::function<bool(const Row&)>& isWanted)
{
    CString all;
    for (const Row& row : rows)
        if (isWanted(row))
            all += (all.empty() ? "" : separator) + row.names(separator);
    return all;
}

// The "%s" are filled in order: options with a value; options of some importers; options with a file; options with a
// choice; options with another value; all other options. _init_completion -s splits --option=value. _filedir takes
// suffixes in small letters and adds the same in capitals.
constexpr char kBash[] = R"sh(# Completion of typeforge-import for bash.
_typeforge_import()
{
    local cur prev words cword split patterns options word= i
    _init_completion -s || return
    for ((i = 1; i < cword; ++i)); do
        case ${words[i]} in
            %s)
                ((++i)) ;;
            -*) ;;
            *)
                word=${words[i]}
                break ;;
        esac
    done
%s    case $prev in
        %s)
            _filedir
            return ;;
%s        %s)
            return ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options %s" -- "$cur")
    elif [[ ! $word ]]; then
        _filedir
        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W "$("$1" --importers | cut -f 1)" -- "$cur")
    elif [[ $word == odbc ]]; then
        # Not compgen -W: it splits names at blanks and runs the commands in them.
        while IFS= read -r i; do
            printf -v i %q "$i"
            [[ $i == "$cur"* ]] && COMPREPLY+=("$i")
        done < <(odbcinst -q -s 2>/dev/null | sed -n 's/^\[\(.*\)\]$/\1/p')
    else
        patterns=$("$1" --importers | awk -F '\t' -v word="$word" '$1 == word { print $2 }')
        patterns=${patterns//\*./} patterns=${patterns,,} patterns=${patterns//;/|}
        _filedir ${patterns:+"@($patterns)"}
    fi
} && complete -F _typeforge_import typeforge-import
)sh";

constexpr char kBashChoice[] = R"sh(        %s)
            mapfile -t COMPREPLY < <(compgen -W "%s" -- "$cur")
            return ;;
)sh";

// Filled with the importers without the option, and the option's names. [[ matches @(...) whatever the shell's options.
constexpr char kBashOption[] = R"sh(    [[ $word == @(%s) ]] || options+="%s "
)sh";

// Filled with options with a value; options of some importers; all other options.
constexpr char kZsh[] = R"sh(#compdef typeforge-import
# Completion of typeforge-import for zsh.
_typeforge_import_word()
{
    integer i
    for ((i = 2; i < CURRENT; ++i)); do
        case $words[i] in
            (%s) ((++i)) ;;
            (-*) ;;
            (*) word=$words[i]; return ;;
        esac
    done
}
_typeforge_import_sources()
{
    local word= patterns
    _typeforge_import_word
    if [[ -z $word ]]; then
        compadd -- ${(f)"$($words[1] --importers | cut -f 1)"}
        _files
    elif [[ $word == odbc ]]; then
        compadd -- ${(f)"$(odbcinst -q -s 2>/dev/null | sed -n 's/^\[\(.*\)\]$/\1/p')"}
    else
        patterns=$($words[1] --importers | awk -F '\t' -v word=$word '$1 == word { print $2 }')
        _files ${patterns:+-g} ${patterns:+"(#i)(${patterns//;/|})"}
    fi
}
_typeforge_import()
{
    local word=
    local -a options
    _typeforge_import_word
%s    _arguments -s $options \
%s        '*:source:_typeforge_import_sources'
}
_typeforge_import "$@"
)sh";

// Filled with the importers without the option, and the option.
constexpr char kZshOption[] = R"sh(    [[ $word == (%s) ]] || options+=(%s)
)sh";

// Filled with options with a value, and all options.
constexpr char kFish[] = R"sh(# Completion of typeforge-import for fish.
function __typeforge_import_word
    set -l words (commandline -opc)
    set -l i 2
    while test $i -le (count $words)
        switch $words[$i]
            case %s
                set i (math $i + 1)
            case '-*'
            case '*'
                echo $words[$i]
                return
        end
        set i (math $i + 1)
    end
end
function __typeforge_import_suffixes
    set -l word (__typeforge_import_word)
    eval (commandline -opc)[1] --importers | string match -r "^$word\t.*" | string match -ra '\.[A-Za-z]+' | string lower
end
complete -c typeforge-import -n 'test -z "$(__typeforge_import_word)"' -a '(eval (commandline -opc)[1] --importers | string replace -r "\t.*\t" "\t")'
complete -c typeforge-import -n 'test "$(__typeforge_import_word)" = odbc' -f -a '(odbcinst -q -s 2>/dev/null | string match -rg "^\[(.*)\]\$")'
complete -c typeforge-import -n 'test -n "$(__typeforge_import_suffixes)"' -k -f -a '(__fish_complete_suffix (__typeforge_import_suffixes))'
%s)sh";

// Fills the "%s" of a template from left to right. A value must not contain "%s", because the next value would be put
// there.
CString filled(CString text, std::initializer_list<CString> values)
{
    for (const CString& value : values)
        text = fillText(text, value);
    return text;
}

// The options of some importers are added at run time, when the importer is known.
CString forBash(const std::vector<Row>& rows)
{
    const auto isOther = [](const Row& row) { return row.hasValue() && !row.isFile() && row.choice.empty(); };
    CString choices, ofSome, options;
    for (const Row& row : rows) {
        if (const CString others = row.otherImporters(); others.empty())
            options += (options.empty() ? "" : " ") + row.names(" ");
        else
            ofSome += filled(kBashOption, {others, row.names(" ")});
        if (!row.choice.empty())
            choices += filled(kBashChoice, {row.names(" | "), row.choice});
    }
    return filled(kBash, {joined(rows, " | ", &Row::hasValue), ofSome, joined(rows, " | ", &Row::isFile), choices,
                          joined(rows, " | ", isOther), options});
}

// Escapes a text for a single-quoted argument of zsh's _arguments.
CString zshText(std::string_view text)
{
    CString out;
    for (const char c : escaped(text, "[]:\\"))
        out += c == '\'' ? CString("'\\''") : CString(1, c);
    return out;
}

// Writes each option as an argument of _arguments. One with two names is '(-o --output)'{-o,--output}'[...]', so that
// it is offered only once.
CString forZsh(const std::vector<Row>& rows)
{
    CString lines, ofSome;
    for (const Row& row : rows) {
        const CString name = "--" + row.longName, both = "-" + row.shortName;
        CString line = row.shortName.empty() ? "'" + name : "'(" + both + " " + name + ")'{" + both + "," + name + "}'";
        line += "[" + zshText(row.description) + "]";
        if (!row.value.empty())
            line += ":" + zshText(row.value) + ":" +
                    (row.isFile()         ? "_files"
                     : row.choice.empty() ? ""
                                          : "(" + row.choice + ")");
        if (const CString others = row.otherImporters(); others.empty())
            lines += "        " + line + "' \\\n";
        else
            ofSome += filled(kZshOption, {others, line + "'"});
    }
    return filled(kZsh, {joined(rows, " | ", &Row::hasValue), ofSome, lines});
}

// Writes each option as a command `complete`. -r requires a value, -F offers files for it, -x requires one and offers
// none.
CString forFish(const std::vector<Row>& rows)
{
    CString lines;
    for (const Row& row : rows) {
        CString others = row.otherImporters();
        std::ranges::replace(others, '|', ' ');
        if (!others.empty())
            others = " -n 'not contains -- \"$(__typeforge_import_word)\" " + others + "'";
        lines += "complete -c typeforge-import" + others + (row.shortName.empty() ? "" : " -s " + row.shortName) +
                 " -l " + row.longName;
        if (row.isFile())
            lines += " -r -F";
        else if (!row.value.empty())
            lines += row.choice.empty() ? " -x" : " -x -a '" + row.choice + "'";
        lines += " -d '" + escaped(row.description, "'\\") + "'\n";
    }
    return filled(kFish, {joined(rows, " ", &Row::hasValue), lines});
}

} // namespace

CString completionFor(const CLI::App& app, const CString& shell)
{
    const std::vector<Row> rows = rowsOf(app);
    return shell == "bash" ? forBash(rows) : shell == "zsh" ? forZsh(rows) : forFish(rows);
}
