#include "Cli/CreateTypes.h"

#include "Base/Secret.h"
#include "Base/ServerAddress.h"
#include "Broker/BrokerSession.h"
#include "Broker/CreationRun.h"
#include "Cli/Output.h"

#include <CLI/CLI.hpp>

#include <cctype>
#include <csignal>
#include <iostream>
#include <unistd.h>

namespace {

constexpr unsigned kDefaultPort = 7250;

std::string checkAddress(const std::string& address)
{
    return readServerAddress(address, kDefaultPort) ? "" : "not SERVER or SERVER:PORT: " + address;
}

// What a line on standard input answers; anything else, and its end, is a no, as is closing the dialog.
OverwriteChoice ask(const CString& question)
{
    std::cerr << shownText(question) << " [y]es, yes to [a]ll, [n]o, no to all [x]: " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    switch (answer.empty() ? 'n' : std::tolower(static_cast<unsigned char>(answer[0]))) {
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

OverwriteChoice choose(const CString& overwrite, const CString& question, Verbosity verbosity)
{
    if (overwrite == "ask")
        return ask(question);
    if (overwrite.empty() && verbosity != Verbosity::quiet)
        report("types that exist are left alone; to replace them use --overwrite all, to be asked --overwrite ask");
    return overwrite == "all" ? OverwriteChoice::yesToAll : OverwriteChoice::noToAll;
}

bool openSession(BrokerSession& session, const CreateOptions& options, const LogonOptions& logon)
{
    Secret password;
    if (!logon.user.empty())
        readPassword(logon, password.text);
    const BrokerAccount account{logon.user, password.text};
    const CString failure = session.open(options.address, kDefaultPort, logon.user.empty() ? nullptr : &account);
    if (failure.empty())
        return true;
    const CString& words = session.queryDescription();
    report(words.empty() ? failure : failure + ": " + words);
    return false;
}

} // namespace

void addCreateOptions(CLI::App& app, CreateOptions& options)
{
    CLI::Option* const create =
        app.add_option("--create", options.address, "Create the types in the broker at this address")
            ->type_name("SERVER[:PORT]")
            ->check(CLI::Validator(checkAddress, ""))
            ->excludes("--output", "--list", "--type", "--graph", "--diff");
    app.add_flag("--trusted", options.trusted, "Log on as the current user (default)")
        ->needs(create)
        ->excludes("--user");
    app.add_option("--overwrite", options.overwrite,
                   "Replace existing types: all, none or ask (default: ask on a terminal, else keep)")
        ->type_name("all|none|ask")
        ->check(CLI::IsMember({"all", "none", "ask"}))
        ->needs(create);
}

int createTypes(MsgBase& message, const CreateOptions& options, const LogonOptions& logon, Verbosity verbosity)
{
    keepOutOfCores();
    std::signal(SIGPIPE, SIG_IGN); // a reader that has gone keeps no type from being created
    BrokerSession session;
    if (!openSession(session, options, logon))
        return kFailed;
    const CString overwrite = options.overwrite.empty() && isatty(STDIN_FILENO) ? "ask" : options.overwrite;
    bool leftAlone = false;
    const auto choice = [&](const CString& question) {
        leftAlone = overwrite.empty();
        return choose(overwrite, question, verbosity);
    };
    Output lines("");
    FileCause cause = FileCause::none;
    const auto addLine = [&](const CString& line, ResultKind) {
        lines.write(shownText(line) + "\n");
        cause = lines.commit();
    };
    const int errors = CreationRun(session, {choice, addLine}).run(message);
    if (cause != FileCause::none)
        reportUnwritten("-", cause);
    if (errors != 0 || leftAlone)
        return kNotCreated;
    return cause == FileCause::none ? kDone : kNotWritten;
}
