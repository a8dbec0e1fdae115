#include "Cli/Broker.h"

#include "Base/Secret.h"
#include "Base/ServerAddress.h"
#include "Broker/BrokerSession.h"
#include "Cli/Diagnostics.h"
#include "Cli/Logon.h"
#include "Files/KeptPipe.h"
#include "Import/MsgBase.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <vector>

// A repository to compare with takes the place of a document. Its types are kept as a text under the name that the user
// gave, so the importer of type documents reads them like a file.
namespace {

// Returns whether a document describes a type without a kind. Readers of a list of types stop at such a type, so it has
// to come last. The document then has one start tag and its end tag, or one empty tag.
bool hasNoContent(const CString& document)
{
    return document.find('<', document.find('<') + 1) == document.rfind("</") || document.ends_with("/>");
}

} // namespace

CString addressError(const CString& address)
{
    return readServerAddress(address, kDefaultPort) ? "" : "not SERVER or SERVER:PORT: " + address;
}

bool openBroker(BrokerSession& session, const CString& address, const LogonOptions& logon, bool isForReading)
{
    Secret password;
    if (!logon.user.empty())
        readPassword(logon, password.text);
    const BrokerAccount account{logon.user, password.text};
    const BrokerAccount* const user = logon.user.empty() ? nullptr : &account;
    CString failure = session.open(address, kDefaultPort, user, isForReading);
    if (failure.empty())
        return true;
    // Some texts end with a full stop, and the client's words follow as their reason.
    if (const CString& words = session.queryDescription(); !words.empty())
        failure = CString(trimmed(failure, ".")) + ": " + words;
    report(failure);
    return false;
}

bool keepRepository(MsgBase& message, const CString& document, const LogonOptions& logon)
{
    // A password may be in memory from here on.
    keepOutOfCores();
    BrokerSession session;
    if (!openBroker(session, document.substr(kBroker.size()), logon, true))
        return false;
    // Each folder is read once. Other folders of the repository are not part of the comparison.
    std::set<CString> folders;
    message.beginEnum();
    while (const Element* type = message.enumNext())
        folders.insert(type->queryPath());
    std::vector<CString> documents;
    for (const CString& folder : folders)
        std::ranges::move(session.readFolder(folder), std::back_inserter(documents));
    // A type without a kind would end the list for its reader.
    std::stable_partition(documents.begin(), documents.end(), [](const CString& each) { return !hasNoContent(each); });
    CString text = "<types>";
    for (const CString& each : documents)
        text += each;
    if (keepText(document, text + "</types>"))
        return true;
    report("can't store the types of " + document);
    return false;
}
