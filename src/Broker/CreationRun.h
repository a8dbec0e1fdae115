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
/// ends the run: neither this type nor any after it is created.
enum class OverwriteChoice : int
{
    yes = 0,
    yesToAll = 1,
    no = 2,
    noToAll = 3,
    stop = 4
};

/// What a creation run is to do.
struct CreationOptions
{
    TypeSource source = {};       ///< of the types
    bool leavesUnchanged = false; ///< a type that exists with the same document is left without a question
    bool isDryRun = false;        ///< nothing is created: lines that say so are the type's name alone
};

/// The types of another source that a run has met: they exist, and were different.
struct OtherSource
{
    CString name;     ///< "" if it isn't known
    int replaced = 0; ///< how many were replaced
    int kept = 0;     ///< how many were not
};

/// Creates the types of one import in a broker's repository, in their order. A type that fails doesn't stop it. If the
/// handler of its progress says no, or a question is answered with `stop`, the types that are left get a line each, and
/// no more.
class CreationRun
{
public:
    /// What the run wants of its surroundings. Both must be set.
    struct Callbacks
    {
        /// A type exists. The details name the other source that it came from; "" if there is none.
        std::function<OverwriteChoice(const CString& question, const CString& details)> ask;
        std::function<void(const CString& line, ResultKind kind)> addResult; ///< a line for the list of results
    };

    CreationRun(BrokerSession& session, Callbacks callbacks, CreationOptions options = {});

    /// Creates every type of `message`, in enumeration order, and answers how many failed. To all holds for this run.
    int run(MsgBase& message);

    /// Whether the last run has left types out because it was cancelled or stopped.
    bool wasCancelled() const { return isCancelled; }

    /// The other sources that the last run has met, in the order in which it met them.
    const std::vector<OtherSource>& queryOtherSources() const { return otherSources; }

    /// False if the last run has met types whose sources the repository doesn't keep.
    bool areSourcesKept() const { return sourcesKept; }

private:
    void begin(MsgBase& message);
    std::size_t createNext(std::size_t first);
    std::vector<CreatedType> createWindow(std::size_t first);
    void settle(const Element& type, const CString& document, CreatedType outcome);
    CreatedType decide(const Element& type, const CString& document, CreatedType outcome);
    VornExisting ruleFor(bool isUnchanged) const;
    bool isOpen(const CreatedType& outcome) const;
    bool isOtherSource(const CreatedType& outcome) const;
    CString detailsOf(const CreatedType& outcome) const;
    void noteSource(const CreatedType& outcome);
    void addFailure(const Element& type, const CString& reason);
    void addLeft(const Element& type);
    void finish();

    BrokerSession& session;
    const Callbacks callbacks;
    const CreationOptions options;
    std::vector<Element*> types;
    std::vector<CString> documents; // of the window
    std::size_t window = 1;         // how many types are handed to the client at once
    Progress progress;
    std::vector<OtherSource> otherSources;
    std::map<CString, std::size_t> sourceIndex; // into otherSources
    bool sourcesKept = true;
    int errorCount = 0;
    bool yesToAll = false;
    bool noToAll = false;
    bool isCancelled = false;
};
