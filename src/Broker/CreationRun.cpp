#include "Broker/CreationRun.h"

#include "Import/MsgBase.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <utility>

// The client settles the types of a window in order and stops at a type about which the user has to decide. The answer
// settles that type in a separate call, and the next window begins after it. So no type is created before the question
// about an earlier one is answered, and a run without questions needs one call for some hundred types.
namespace {

// The largest number of types in one call. Calls with many types are faster; the limit keeps each call short, so that
// progress and cancelling work.
constexpr std::size_t kLargestWindow = 512;
constexpr std::size_t kLargestText = 1 << 20; // bytes of documents in one call

// A code of the client, and its line in the list of results.
struct ResultLine
{
    unsigned code;
    UINT textId; // 0: an empty line
    ResultKind kind;
};

// `unchanged` has no row: its line depends on the options (recordOutcome).
constexpr ResultLine kResultLines[] = {
    {CreatedType::created, IDS_CREATED, ResultKind::created},
    {CreatedType::replaced, IDS_MODIFIED, ResultKind::modified},
    {CreatedType::exists, IDS_SKIPPED, ResultKind::skipped},
    {CreatedType::refused, IDS_CREATION_ERROR, ResultKind::failed},
};

const ResultLine& resultLineOf(unsigned code)
{
    // A client may return any code; an unknown one gives an empty line.
    static constexpr ResultLine unknown{0, 0, ResultKind::unknown};
    const auto* line = std::find_if(std::begin(kResultLines), std::end(kResultLines),
                                    [code](const ResultLine& row) { return row.code == code; });
    return line != std::end(kResultLines) ? *line : unknown;
}

// Returns a text on one line, because a driver's message may have several.
CString asOneLine(CString text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\t'; }, ' ');
    return text;
}

CString overwriteQuestion(const Element& type)
{
    return formatText(loadText(IDS_OVERWRITE), shownText(type.queryPath()).c_str(),
                      shownText(type.queryName()).c_str());
}

} // namespace

CreationRun::CreationRun(BrokerSession& openSession, Callbacks newCallbacks, CreationOptions runOptions) :
    session(openSession), callbacks(std::move(newCallbacks)), options(std::move(runOptions))
{}

int CreationRun::run(MsgBase& message)
{
    progress = {Work::creating, 0, static_cast<std::uint64_t>(message.beginEnum())};
    // Listed in advance, because a window needs the types after the current one.
    while (Element* type = message.enumNext())
        types.push_back(type);
    // A cancelled run still adds a line for each remaining type, so that the list accounts for all of them.
    for (std::size_t next = 0; next < types.size();) {
        isCancelled = isCancelled || !reportProgress(progress);
        if (!isCancelled)
            next += createNext(next);
        else
            addCancelled(*types[next++]);
    }
    if (!isCancelled)
        reportProgress(progress);
    finish();
    return errorCount;
}

// Creates the next window of types and returns how many of them are settled.
std::size_t CreationRun::createNext(std::size_t first)
{
    std::vector<CreatedType> outcomes;
    try {
        outcomes = createWindow(first);
    } catch (const ClientError& error) {
        // The call fails only if its first type fails. The types after it have not been tried.
        window = 1;
        addFailure(*types[first], error.what());
        ++progress.done;
        return 1;
    }
    const bool isComplete = outcomes.size() == documents.size() && !isUndecided(outcomes.back());
    // The window doubles while all of its types are settled, and starts at one type again when one needs an answer,
    // because documents after that type are written and sent in vain.
    window = isComplete && session.hasCreation() ? std::min(2 * window, kLargestWindow) : 1;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        // run() has polled before the first type. The other types of the window are created already, so their lines
        // stay; only a type with an open question becomes cancelled.
        isCancelled = i > 0 && (isCancelled || !reportProgress(progress));
        recordOutcome(*types[first + i], documents[i], outcomes[i]);
        ++progress.done;
    }
    return outcomes.size();
}

std::vector<CreatedType> CreationRun::createWindow(std::size_t first)
{
    const std::size_t end = std::min(first + window, types.size());
    std::size_t size = 0, count = 0;
    // Resized, not cleared, so that the texts of the last window are reused.
    documents.resize(end - first);
    // At least one document, however long it is.
    while (count < documents.size() && size < kLargestText) {
        types[first + count]->asXML(documents[count]);
        size += documents[count++].size();
    }
    documents.resize(count);
    return session.createTypes(documents, options.source.name, ruleFor(false), ruleFor(true));
}

// Returns the rule for the client's next call. After an answer "to all", calls no longer stop.
VornExisting CreationRun::ruleFor(bool isUnchanged) const
{
    if (noToAll || (isUnchanged && options.keepsUnchanged))
        return VornExisting::keep;
    return yesToAll ? VornExisting::replace : VornExisting::stop;
}

// Returns whether the user still has to decide about an existing type.
bool CreationRun::isUndecided(const CreatedType& outcome) const
{
    // A client without IVornCreation has kept the type, and doesn't report unchanged types.
    if (!session.hasCreation())
        return outcome.code == CreatedType::exists && !noToAll;
    const bool isUnchanged = outcome.code == CreatedType::unchanged;
    return (isUnchanged || outcome.code == CreatedType::exists) && ruleFor(isUnchanged) == VornExisting::stop;
}

void CreationRun::recordOutcome(const Element& type, const CString& document, CreatedType outcome)
{
    try {
        if (!isCancelled)
            outcome = decide(type, document, std::move(outcome));
        if (isCancelled && isUndecided(outcome))
            return addCancelled(type);
    } catch (const ClientError& error) {
        return addFailure(type, error.what());
    }
    noteSource(outcome);
    const bool isUnchanged = outcome.code == CreatedType::unchanged;
    if (isUnchanged && options.keepsUnchanged)
        return callbacks.addResult(type.queryName() + " unchanged", ResultKind::unchanged);
    const ResultLine& line = resultLineOf(isUnchanged ? CreatedType::exists : outcome.code);
    const bool isNameAlone = options.isDryRun && outcome.code != CreatedType::refused;
    callbacks.addResult(isNameAlone ? type.queryName() : fillText(loadText(line.textId), type.queryName()), line.kind);
    errorCount += outcome.code == CreatedType::refused;
}

// Asks what to do with an existing type until it is settled. Asks again if another program has replaced it meanwhile,
// because that is another type.
CreatedType CreationRun::decide(const Element& type, const CString& document, CreatedType outcome)
{
    while (isUndecided(outcome)) {
        const OverwriteChoice choice = callbacks.ask(overwriteQuestion(type), detailsOf(outcome));
        yesToAll |= choice == OverwriteChoice::yesToAll;
        noToAll |= choice == OverwriteChoice::noToAll;
        isCancelled |= choice == OverwriteChoice::stop;
        if (choice != OverwriteChoice::yes && choice != OverwriteChoice::yesToAll)
            break;
        // A single yes applies to the type that the question was about. replaceFound stops again if that type has
        // changed meanwhile.
        const VornExisting yes = yesToAll ? VornExisting::replace : VornExisting::replaceFound;
        outcome =
            session.createTypes({document}, options.source.name, yes, options.keepsUnchanged ? ruleFor(true) : yes)
                .front();
        // Without IVornCreation, createType() with `overwrite` has settled the type.
        if (!session.hasCreation())
            break;
    }
    return outcome;
}

// A source that is unknown or not persistent counts as another one, because it may be.
bool CreationRun::isOtherSource(const CreatedType& outcome) const
{
    return session.hasCreation() && !(outcome.isSourceStored && options.source.isSame(outcome.source));
}

CString CreationRun::detailsOf(const CreatedType& outcome) const
{
    if (outcome.code != CreatedType::exists || !isOtherSource(outcome))
        return {};
    if (!outcome.isSourceStored)
        return "The repository does not store where its types come from.";
    if (outcome.source.empty())
        return "The source of the existing type is not known.";
    return "The existing type is different and comes from " + shownText(outcome.source) + " (" + outcome.time + ").";
}

void CreationRun::noteSource(const CreatedType& outcome)
{
    const bool isReplaced = outcome.code == CreatedType::replaced;
    if ((!isReplaced && outcome.code != CreatedType::exists) || !isOtherSource(outcome))
        return;
    sourcesStored = sourcesStored && outcome.isSourceStored;
    const auto [place, isNew] = sourceIndex.emplace(outcome.source, otherSources.size());
    if (isNew)
        otherSources.push_back({outcome.source});
    OtherSource& other = otherSources[place->second];
    ++(isReplaced ? other.replaced : other.kept);
}

void CreationRun::addFailure(const Element& type, const CString& reason)
{
    callbacks.addResult(fillText(loadText(IDS_CREATION_ERROR), type.queryName()), ResultKind::failed);
    callbacks.addResult(asOneLine(reason), ResultKind::reason);
    ++errorCount;
}

void CreationRun::addCancelled(const Element& type)
{
    callbacks.addResult(type.queryName() + " not created, since the creation was cancelled", ResultKind::cancelled);
}

// Also after a cancellation, because types may have been created before.
void CreationRun::finish()
{
    try {
        session.finish();
    } catch (const ClientError& error) {
        callbacks.addResult("The last types that were created may be lost: " + asOneLine(error.what()),
                            ResultKind::reason);
        ++errorCount;
    }
}
