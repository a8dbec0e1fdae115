#include "Cli/ArgumentFile.h"

#include "Files/File.h"
#include "Files/FileMessage.h"

#include <algorithm>
#include <span>
#include <stdexcept>

namespace {

void addLines(const CString& fileName, std::vector<CString>& arguments)
{
    CString text;
    if (const FileCause cause = readFile(fileName, text); cause != FileCause::none)
        throw std::runtime_error("can't open " + fileName + ": " + inWords(fileName, cause));
    for (std::string_view rest = text; !rest.empty();) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (!line.empty())
            arguments.emplace_back(line);
    }
}

} // namespace

std::vector<CString> argumentsOf(int argc, char** argv, std::vector<CString>& files)
{
    std::vector<CString> arguments;
    bool areTaken = true;
    for (const std::string_view argument : std::span(argv, static_cast<std::size_t>(argc)).subspan(argc > 0)) {
        // Behind "--" there are only sources, so a name may begin with '@'.
        areTaken = areTaken && argument != "--";
        if (areTaken && argument.size() > 1 && argument.front() == '@') {
            files.emplace_back(argument.substr(1));
            addLines(files.back(), arguments);
        } else {
            arguments.emplace_back(argument);
        }
    }
    return arguments;
}
