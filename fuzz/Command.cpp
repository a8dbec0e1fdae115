// The command as a whole. The first line has the words of a command line; documents follow, separated by form feeds.
// Types are created in a local repository, which is a file in memory.
#include "Cli/Import.h"
#include "Folder.h"
#include "Target.h"
#include "Xml/XmlParser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <exception>
#include <filesystem>
#include <functional>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The words of command lines. No other word is used, so nothing outside of the folder is read or written. Unknown words
// of an input become known ones, so nearly all command lines mean something.
constexpr std::string_view kWords =
    "a b c d . - dtd xml xsd btd wsdl jsonschema openapi avro json --recursive -b \\x\\ --full --root A B "
    "--folders main namespace --folder urn:a=x =y --merge-equal --catalog --entity e=INCLUDE --name é "
    "--allow-empty -o out --always --list --type --pretty --graph --diff broker:local --compatible "
    "readers both --allow type-added --ignore-folders --json --report report text --strict "
    "--report-format --depfile rule --depfile-phony --create local --dry-run --overwrite all none "
    "--version -q -v --importers --help --completion bash --user --table";

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// Runs in a folder of its own, which is also the user's home.
Folder& enterFolder()
{
    static Folder folder;
    fs::current_path(folder.path);
    for (const char* const name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        ::setenv(name, folder.path.c_str(), 1);
    require(std::freopen("/dev/null", "r", stdin) != nullptr);
    // The fuzzer can't follow a client that is unloaded after each command.
    require(::dlopen(FUZZ_CLIENT, RTLD_NOW | RTLD_LOCAL) != nullptr);
    return folder;
}

std::vector<CString> split(std::string_view line)
{
    std::vector<CString> words;
    while (!line.empty()) {
        const std::string_view word = line.substr(0, line.find(' '));
        words.emplace_back(word);
        line.remove_prefix(std::min(word.size() + 1, line.size()));
    }
    return words;
}

std::vector<CString> wordsOf(std::string_view line)
{
    static const std::vector<CString> known = split(kWords);
    std::vector<CString> words = split(line);
    for (CString& word : words)
        if (!word.empty() && std::ranges::find(known, word) == known.end())
            word = known[std::hash<CString>()(word) % known.size()];
    return words;
}

bool isWellFormed(const char* fileName)
{
    struct : XmlHandler
    {
        void startElement(XmlName, XmlAttributes, const XmlScope&) override {}
        void endElement() override {}
    } ignore;
    return !parseXmlFile(fileName, ignore);
}

// Runs a command as main() does. A failed import must leave no output file, and a successful one a well-formed
// document.
int run(std::vector<CString> words)
{
    words.insert(words.begin(), "typeforge-import");
    std::vector<char*> argv;
    for (CString& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    Arguments arguments;
    int status = kDone;
    if (!parseArguments(static_cast<int>(words.size()), argv.data(), arguments, status))
        return status;
    try {
        status = runImport(arguments);
    } catch (const std::exception&) { // reported by main()
        status = arguments.failedStatus();
    }
    if (arguments.output == "out" && arguments.diff.document.empty()) { // a comparison's status isn't its success
        require(fs::exists("out") == (status == kDone));
        require(status != kDone || arguments.list || arguments.graph || isWellFormed("out"));
    }
    return status;
}

} // namespace

void fuzz(std::string_view input)
{
    static Folder& folder = enterFolder();
    const std::size_t end = std::min(input.find('\n'), input.size());
    folder.writeDocuments("", input.substr(std::min(end + 1, input.size())));
    const int status = run(wordsOf(input.substr(0, end)));
    require(status >= kDone && status <= kNotCreated);
    folder.clear();
}
