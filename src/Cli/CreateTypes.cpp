#include "Cli/CreateTypes.h"

#include "Broker/BrokerSession.h"
#include "Broker/CreationRun.h"
#include "Cli/Import.h"
#include "Platform/Files/File.h"
#include "Platform/Secret.h"
#include "Platform/Terminal.h"
#include "Resources/StringTable.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>

namespace {

constexpr unsigned kDefaultPort = 7250;
constexpr int kFailed = 1;

// Takes the port off the address; false for a port that is none. In "[::1]" the colons are the server's.
bool splitAddress(const CString& address, CString& server, unsigned& port)
{
    server = address;
    port = kDefaultPort;
    const std::size_t colon = address.rfind(':');
    if (colon == CString::npos || address.find(']', colon) != CString::npos)
        return !address.empty();
    server.resize(colon);
    const char* const first = address.data() + colon + 1;
    const char* const last = address.data() + address.size();
    const auto [end, error] = std::from_chars(first, last, port);
    return colon > 0 && error == std::errc() && end == last && port > 0 && port <= 65535;
}

std::string checkAddress(const std::string& address)
{
    CString server;
    unsigned port = 0;
    return splitAddress(address, server, port) ? "" : "not SERVER or SERVER:PORT: " + address;
}

// The first line of the file is the password; the rest of what was read is wiped.
bool readPassword(const CreateOptions& options, CString& password)
{
    if (options.passwordFile.empty()) {
        if (askTerminal("Password for " + options.user + ": ", password))
            return true;
        report("there is no terminal to ask for the password; use --password-file");
        return false;
    }
    if (const FileCause cause = readFile(options.passwordFile, password); cause != FileCause::none) {
        report(formatText(loadText(IDS_CANT_OPEN), options.passwordFile.c_str(), static_cast<unsigned>(cause)));
        return false;
    }
    const std::size_t length = password.find_first_of("\r\n");
    Secret line{CString(std::string_view(password).substr(0, length))};
    wipe(password);
    password.swap(line.text);
    return true;
}

// What a line on standard input answers; anything else, and its end, is a no, as is closing the dialog.
OverwriteChoice askOnTerminal(const CString& question)
{
    std::cout.flush();
    std::cerr << question << " [y]es, yes to [a]ll, [n]o, no to all [x]: " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    switch (answer.empty() ? 'n' : answer[0]) {
    case 'y':
        return OverwriteChoice::yes;
    case 'a':
        return OverwriteChoice::yesToAll;
    case 'x':
        return OverwriteChoice::noToAll;
    default:
        return OverwriteChoice::no;
    }
}

OverwriteChoice choose(const CString& overwrite, const CString& question)
{
    if (overwrite == "ask")
        return askOnTerminal(question);
    return overwrite == "all" ? OverwriteChoice::yesToAll : OverwriteChoice::noToAll;
}

bool openSession(BrokerSession& session, const CreateOptions& options)
{
    CString server;
    unsigned port = 0;
    splitAddress(options.address, server, port);
    Secret password;
    if (!options.user.empty() && !readPassword(options, password.text))
        return false;
    const BrokerAccount account{options.user, password.text};
    const CString failure = session.open(server, port, options.user.empty() ? nullptr : &account);
    if (failure.empty())
        return true;
    const CString& words = session.queryDescription();
    report(words.empty() ? failure : failure + "\n" + words);
    return false;
}

} // namespace

void addCreateOptions(CLI::App& app, CreateOptions& options)
{
    CLI::Option* const create =
        app.add_option("--create", options.address, "Create the types in the broker at this address")
            ->type_name("SERVER[:PORT]")
            ->check(CLI::Validator(checkAddress, ""))
            ->excludes("--output", "--list", "--type");
    CLI::Option* const user =
        app.add_option("--user", options.user, "Log on as this broker user")->type_name("NAME")->needs(create);
    app.add_option("--password-file", options.passwordFile,
                   "The file whose first line is the password; without it the terminal is asked")
        ->type_name("FILE")
        ->needs(user);
    app.add_flag("--trusted", options.trusted, "Log on as the user that runs the program (the default)")
        ->needs(create)
        ->excludes(user);
    app.add_option("--overwrite", options.overwrite, "What becomes of types that exist: all, none or ask")
        ->type_name("all|none|ask")
        ->check(CLI::IsMember({"all", "none", "ask"}))
        ->needs(create);
}

int createTypes(MsgBase& message, const CreateOptions& options)
{
    keepOutOfCores();
    BrokerSession session;
    if (!openSession(session, options))
        return kFailed;
    CreationRun run(session, {[&](const CString& question) { return choose(options.overwrite, question); },
                              [](const CString& line) { std::cout << line << std::endl; }, [](int) {}});
    return run.run(message) == 0 ? 0 : kFailed;
}
