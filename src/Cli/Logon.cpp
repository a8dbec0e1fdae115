#include "Cli/Logon.h"

#include "Base/Secret.h"
#include "Base/Terminal.h"
#include "Cli/ProgressLine.h"
#include "Files/File.h"
#include "Files/FileMessage.h"

#include <CLI/CLI.hpp>

#include <stdexcept>

void addLogonOptions(CLI::App& app, LogonOptions& options, const char* userOption, const char* userText,
                     const char* fileText)
{
    CLI::Option* const user = app.add_option(userOption, options.user, userText)->type_name("NAME");
    app.add_option(options.fileOption, options.passwordFile, fileText)->type_name("FILE")->needs(user);
}

void readPassword(const LogonOptions& options, CString& password)
{
    keepOutOfCores();
    if (options.passwordFile.empty()) {
        ProgressLine::clear();
        const PromptResult asked = promptTerminal("Password for " + options.user + options.place + ": ", password);
        if (asked == PromptResult::noTerminal)
            throw std::runtime_error(CString("there is no terminal to ask for the password; use ") +
                                     options.fileOption);
        if (asked == PromptResult::interrupted)
            throw std::runtime_error("no password was given");
        return;
    }
    if (const FileCause cause = readFile(options.passwordFile, password); cause != FileCause::none)
        throw std::runtime_error("can't open " + options.passwordFile + ": " + inWords(options.passwordFile, cause));
    // Copied and swapped instead of cut, because cutting would leave the rest of the file in the storage of the
    // password.
    const std::size_t length = password.find_first_of("\r\n");
    Secret line{CString(std::string_view(password).substr(0, length))};
    wipe(password);
    password.swap(line.text);
}
