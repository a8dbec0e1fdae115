#pragma once

#include "Base/Progress.h"
#include "Base/Text.h"
#include "Broker/BrokerSession.h"
#include "Broker/ResultKind.h"
#include "Broker/TypeSource.h"

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

class Element;
class MsgBase;

/// The answers to the question whether an existing type is to be replaced, as the overwrite dialog numbers them. `stop`
/// ends the run: neither this type nor any after it is created. The dialog of the wizard and the prompt of the command
/// give the same choices.
enum class OverwriteChoice : int
{
    yes = 0,
    yesToAll = 1,
    no = 2,
    noToAll = 3,
    stop = 4
};

/// The options of a creation run.
struct CreationOptions
{
    TypeSource source = {};      ///< of the types
    bool keepsUnchanged = false; ///< keep a type that exists with the same document, without asking
    bool isDryRun = false;       ///< nothing is created; result lines are only the names of the types
};

/// Counts the types that existed from another source with another document.
struct OtherSource
{
    CString name;     ///< empty if unknown
    int replaced = 0; ///< number of types replaced
    int kept = 0;     ///< number of types kept
};

/// Creates the types of one import in a broker's repository, in order. A type that fails doesn't stop the run. If the
/// progress handler refuses or a question is answered with `stop`, the remaining types only get a line each. Types go
/// to the client in windows of growing size, and each result line is added as soon as the type is settled. The session
/// must outlive the run.
class CreationRun
{
public:
    /// The callbacks of a run. Both must be set. run() calls them in its thread.
    struct Callbacks
    {
        /// Asks whether to replace an existing type. `details` name its other source; empty if it has none.
        std::function<OverwriteChoice(const CString& question, const CString& details)> ask;
        std::function<void(const CString& line, ResultKind kind)> addResult; ///< adds a line to the list of results
    };

    /// The session must be open.
    CreationRun(BrokerSession& session, Callbacks callbacks, CreationOptions options = {});

    /// Creates every type of `message`, in enumeration order, and returns the number of failures. Call it once.
    /// Failures of the client become result lines.
    int run(MsgBase& message);

    /// Returns whether the run left out types because it was cancelled or stopped.
    bool wasCancelled() const { return isCancelled; }

    /// Returns the other sources that the run found, in the order in which it found them.
    const std::vector<OtherSource>& queryOtherSources() const { return otherSources; }

    /// Returns false if the run found types in a repository that stores no sources.
    bool areSourcesStored() const { return sourcesStored; }

private:
    // Steps of the run; `first` is an index into `types`.
    std::size_t createNext(std::size_t first);
    std::vector<CreatedType> createWindow(std::size_t first);
    // recordOutcome() adds the line of one type; decide() asks the user before, if needed.
    void recordOutcome(const Element& type, const CString& document, CreatedType outcome);
    CreatedType decide(const Element& type, const CString& document, CreatedType outcome);
    VornExisting ruleFor(bool isUnchanged) const;
    bool isUndecided(const CreatedType& outcome) const;
    bool isOtherSource(const CreatedType& outcome) const;
    CString detailsOf(const CreatedType& outcome) const;
    void noteSource(const CreatedType& outcome);
    void addFailure(const Element& type, const CString& reason);
    void addCancelled(const Element& type);
    void finish();

    BrokerSession& session;
    const Callbacks callbacks;
    const CreationOptions options;
    std::vector<Element*> types;
    std::vector<CString> documents; // of the current window
    std::size_t window = 1;         // the number of types in one call
    Progress progress;              // counted in settled types
    std::vector<OtherSource> otherSources;
    std::map<CString, std::size_t> sourceIndex; // indices into otherSources
    bool sourcesStored = true;                  // as far as the run has seen
    int errorCount = 0;
    bool yesToAll = false;
    bool noToAll = false;
    bool isCancelled = false;
};
