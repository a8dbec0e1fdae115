#include "Cli/CreateTypes.h"

#include "Base/Secret.h"
#include "Broker/BrokerSession.h"
#include "Broker/CreationRun.h"
#include "Broker/TypeSource.h"
#include "Cli/Broker.h"
#include "Cli/Output.h"
#include "Cli/ProgressLine.h"

#include <CLI/CLI.hpp>

#include <cctype>
#include <csignal>
#include <iostream>
#include <unistd.h>

// Questions go to standard error and are answered on standard input, because standard output holds the result lines,
// which another program may read.
namespace {

constexpr char kBasePathHint[] = "; --base-path keeps them apart";

// Asks on standard error and reads a line of standard input. Any answer other than y, a or x means no, and so does the
// end of input, like closing the wizard's dialog. Names may come from another user's types in the repository, so they
// are shown without control characters.
OverwriteChoice ask(const CString& question, const CString& details)
{
    ProgressLine::clear();
    if (!details.empty())
        std::cerr << shownText(details) << '\n';
    const std::size_t last = question.rfind('\n') + 1; // the question itself; names before it may hold line breaks
    std::cerr << (last ? shownText(question.substr(0, last - 1)) + "\n" : CString()) << shownText(question.substr(last))
              << " [y]es, yes to [a]ll, [n]o, no to all [x]: " << std::flush;
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

// Returns the answer that --overwrite gives, or asks. Without the option and without a terminal, existing types stay: a
// script must not replace them unasked. The hint appears once, because the answer is for all.
OverwriteChoice choose(const CString& overwrite, const CString& question, const CString& details, Verbosity verbosity)
{
    if (overwrite == "ask")
        return ask(question, details);
    if (overwrite.empty() && verbosity != Verbosity::quiet)
        report("existing types are kept; use --overwrite all to replace them, or --overwrite ask");
    return overwrite == "all" ? OverwriteChoice::yesToAll : OverwriteChoice::noToAll;
}

// Returns the text that a dry run writes after a type; empty for an unchanged one. The result lines of a dry run are
// only the names.
const char* dryRunText(ResultKind kind, const CString& overwrite)
{
    switch (kind) {
    case ResultKind::created:
        return " would be created";
    case ResultKind::modified:
        return " would be replaced";
    case ResultKind::skipped:
        return overwrite == "ask" ? " exists and is different, you would be asked"
                                  : " exists and is different, would be kept";
    default:
        return "";
    }
}

// Returns the number of types with their source: "2 types of orders.xsd".
CString typesOf(int count, const CString& source)
{
    return countInWords(static_cast<std::size_t>(count), "type", "types") + " of " + source;
}

// Reports, for each other source, which of its types this run has replaced or found different. The latter only if
// they stayed because the user was not asked.
void reportOtherSources(const CreationRun& run, const CString& source, bool keptUnasked, bool isDryRun)
{
    std::vector<CString> names = {source};
    for (const OtherSource& other : run.queryOtherSources())
        names.push_back(other.name);
    names = shortNames(names);
    std::size_t index = 0;
    for (const auto& [name, replaced, kept] : run.queryOtherSources()) {
        const CString& shown = names[++index];
        if (replaced != 0)
            report(typesOf(replaced, shown) +
                   (isDryRun        ? " would be"
                    : replaced == 1 ? " was"
                                    : " were") +
                   " replaced by " + (replaced == 1 ? "a different one" : "different ones") + kBasePathHint);
        if (kept != 0 && keptUnasked)
            report(typesOf(kept, shown) + (kept == 1 ? " is different" : " are different") + kBasePathHint);
    }
    if (!run.areSourcesStored())
        report("the repository does not store where its types come from; it will once the owner of its table has "
               "created types");
}

} // namespace

void addCreateOptions(CLI::App& app, CreateOptions& options)
{
    CLI::Option* const create = app.add_option("--create", options.address,
                                               "Create the types in the broker at this address (default port: 7250)")
                                    ->type_name("SERVER[:PORT]")
                                    ->check(CLI::Validator(addressError, ""))
                                    ->excludes("--output", "--list", "--type", "--graph", "--diff");
    app.add_flag("--trusted", options.trusted, "Log on as the current user (default)")->needs(create);
    app.add_flag("--dry-run", options.isDryRun, "Print what would happen to each type; create none")->needs(create);
    app.add_option("--overwrite", options.overwrite,
                   "Replace existing types: all, none or ask (default: ask on a terminal, else keep)")
        ->type_name("all|none|ask")
        ->check(CLI::IsMember({"all", "none", "ask"}))
        ->needs(create);
}

int createTypes(MsgBase& message, const TypeSource& source, const CreateOptions& options, const LogonOptions& logon,
                Verbosity verbosity)
{
    // A password may be in memory from here on.
    keepOutOfCores();
    std::signal(SIGPIPE, SIG_IGN); // if the reader of the output ends, types are still created
    BrokerSession session;
    if (!openBroker(session, options.address, logon, options.isDryRun))
        return kFailed;
    const CString overwrite = options.overwrite.empty() && isatty(STDIN_FILENO) ? "ask" : options.overwrite;
    // True if types stayed because the user was not asked. They count as not created.
    bool keptUnasked = false;
    // A dry run asks nothing.
    const auto choice = [&](const CString& question, const CString& details) {
        keptUnasked = overwrite.empty();
        if (options.isDryRun)
            return overwrite == "all" ? OverwriteChoice::yesToAll : OverwriteChoice::noToAll;
        return choose(overwrite, question, details, verbosity);
    };
    Output lines("");
    const auto addLine = [&](const CString& line, ResultKind kind) {
        lines.write(shownText(line) + (options.isDryRun ? dryRunText(kind, overwrite) : "") + "\n");
        // At once, so that the lines show the progress of the creation.
        lines.flush();
    };
    CreationRun run(session, {choice, addLine}, {source, true, options.isDryRun});
    const int errors = run.run(message);
    if (verbosity != Verbosity::quiet)
        reportOtherSources(run, source.name, keptUnasked, options.isDryRun);
    // The types exist even if their lines were not written, so that failure counts last.
    const bool isWritten = lines.finish();
    if (errors != 0 || keptUnasked)
        return kNotCreated;
    return isWritten ? kDone : kNotWritten;
}
