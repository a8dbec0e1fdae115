#pragma once

#include "Base/Text.h"
#include "Broker/ResultKind.h"

#include <functional>

class BrokerSession;
class Element;
class MsgBase;

/// The answers to the question whether an existing type is to be replaced, as the overwrite dialog numbers them.
enum class OverwriteChoice : int
{
    yes = 0,
    yesToAll = 1,
    no = 2,
    noToAll = 3
};

/// Creates the types of one import in a broker's repository, one after the other. A type that fails doesn't stop it.
/// Where the handler of its progress says no, the types that are left get a line each, and no more.
class CreationRun
{
public:
    /// What the run wants of its surroundings. Both must be set.
    struct Callbacks
    {
        std::function<OverwriteChoice(const CString& question)> ask;         ///< a type exists
        std::function<void(const CString& line, ResultKind kind)> addResult; ///< a line for the list of results
    };

    CreationRun(BrokerSession& session, Callbacks callbacks);

    /// Creates every type of `message`, in enumeration order, and answers how many failed. To all holds for this run.
    int run(MsgBase& message);

    /// Whether the last run has left types out because nobody wanted it to go on.
    bool wasCancelled() const { return isCancelled; }

private:
    void create(Element& type);
    void finish();
    unsigned createOrAsk(const Element& type);

    BrokerSession& session;
    const Callbacks callbacks;
    CString document; // of the type in hand
    int errorCount = 0;
    bool yesToAll = false;
    bool noToAll = false;
    bool isCancelled = false;
};
