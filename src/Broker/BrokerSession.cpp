#include "Broker/BrokerSession.h"

#include "Base/Secret.h"
#include "Base/ServerAddress.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <span>

namespace {

// Takes ownership of an object that an operation of `parent` returned. The object keeps the parent's library loaded.
// `object` may be null, which gives an empty owner.
template <class Interface, class Parent>
VornObject<Interface> own(Interface* object, const VornObject<Parent>& parent)
{
    return {object, VornRelease{parent.get_deleter().library}};
}

} // namespace

BrokerSession::~BrokerSession()
{
    const MemoryWipe wipe; // the client's libraries have held the password until now
    // Released here, because members are destroyed only after `wipe`.
    reading.reset();
    creation.reset();
    repository.reset();
    connection.reset();
    server.reset();
}

CString BrokerSession::open(const CString& serverName, unsigned port, const BrokerAccount* account, bool isForReading)
{
    const MemoryWipe wipe;
    description.clear();
    server = createVornObject(isForReading ? kVornReaderClass : kVornServerClass, description);
    if (!server)
        return loadText(IDS_NO_CLIENT);
    const auto address = readServerAddress(serverName, port); // the client rejects a bad address
    CString failure = logOn(address ? address->asText() : formatText("%s:%u", serverName.c_str(), port), account);
    if (failure.empty())
        failure = openRepository();
    // Without IVornCreation, createTypes() would really create types.
    if (failure.empty() && isForReading && (!creation || !reading))
        throw ClientError("The client can't read a repository");
    return failure;
}

// An address that the client rejects is reported as "no broker there".
CString BrokerSession::logOn(const CString& address, const BrokerAccount* account)
{
    VornResult result = server->PutAddress(address.c_str());
    if (result != VornResult::done) {
        describe(*server);
        return loadText(IDS_NO_BROKER);
    }
    IVornConnection* opened = nullptr;
    result = account ? server->LogonAsUser(account->user.c_str(), account->password.c_str(), "*", &opened)
                     : server->Logon(&opened);
    // Owned even after a failure, in case the client returned an object all the same.
    connection = own(opened, server);
    if (result != VornResult::done) {
        describe(*server);
        // VornResult::failed means a refused user or password. Any other failure of a logon counts as no broker.
        return loadText(result == VornResult::clientError ? IDS_NO_BROKER : IDS_LOGIN_FAILED);
    }
    return connection ? "" : loadText(IDS_NO_CONNECTION);
}

CString BrokerSession::openRepository()
{
    IVornRepository* opened = nullptr;
    const VornResult result = connection->GetRepository(&opened);
    repository = own(opened, connection);
    if (result == VornResult::clientError)
        return fillText(loadText(IDS_REPOSITORY_ERROR), connection->queryDescription());
    if (result != VornResult::done) {
        describe(*connection);
        return loadText(IDS_GENERIC_ERROR);
    }
    if (!repository)
        return loadText(IDS_NO_REPOSITORY);
    creation = queryInterface<IVornCreation>(repository, kVornCreation);
    reading = queryInterface<IVornReading>(repository, kVornReading);
    return {};
}

std::vector<CreatedType> BrokerSession::createTypes(const std::vector<CString>& documents, const CString& source,
                                                    VornExisting changed, VornExisting unchanged)
{
    if (!creation)
        // `replace` and `replaceFound` are the last values of VornExisting. A type that must not be replaced is
        // returned as existing, so the caller knows that it has to ask.
        return {{createType(documents.front(), changed >= VornExisting::replace)}};
    std::vector<const char*> texts;
    for (const CString& document : documents)
        texts.push_back(document.c_str());
    std::vector<VornOutcome> outcomes(texts.size());
    std::uint32_t done = 0;
    // A client that settles no type would make the run endless, so that counts as a failure. Its count is bounded,
    // because clients are built elsewhere.
    if (creation->createTypes(texts.data(), static_cast<std::uint32_t>(texts.size()), source.c_str(), changed,
                              unchanged, outcomes.data(), &done) != VornResult::done ||
        done == 0)
        throw ClientError(creation->queryDescription());
    std::vector<CreatedType> types;
    for (const VornOutcome& outcome : std::span(outcomes).first(std::min<std::size_t>(done, outcomes.size())))
        types.push_back({outcome.code, outcome.source ? outcome.source : "", outcome.time, outcome.source != nullptr});
    return types;
}

std::vector<CString> BrokerSession::readFolder(const CString& folder)
{
    const char* const* documents = nullptr;
    std::uint32_t count = 0;
    if (reading->readFolder(folder.c_str(), &documents, &count) != VornResult::done)
        throw ClientError(reading->queryDescription());
    // Copied, because the client's texts are valid until its next call only.
    return {documents, documents + count};
}

unsigned BrokerSession::createType(const CString& document, bool overwrite)
{
    std::uint32_t code = 0;
    if (repository->createType(document.c_str(), overwrite ? 1 : 0, &code) != VornResult::done)
        throw ClientError(repository->queryDescription());
    return code;
}

void BrokerSession::finish()
{
    if (creation && creation->finish() != VornResult::done)
        throw ClientError(creation->queryDescription());
}
