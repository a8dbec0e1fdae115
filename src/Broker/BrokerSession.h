#pragma once

#include "Broker/VornObject.h"

#include <stdexcept>
#include <vector>

/// What a client said of an operation that failed; what() is its description, "" where it gave none.
class ClientError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A broker user, as far as one isn't logged on as the user that runs the program.
struct BrokerAccount
{
    const CString& user;
    const CString& password;
};

/// What became of a type. Codes are the client's.
struct CreatedType
{
    static constexpr unsigned created = 0, replaced = 1, exists = 2, unchanged = 3, refused = 99;

    unsigned code = created;

    /// Where the type that existed before came from, and when; "" where that isn't known.
    CString source = {};
    CString time = {};
    bool isSourceKept = false; ///< false where the repository keeps no sources
};

/// What becomes of types that exist.
struct ExistingTypes
{
    VornExisting changed;   ///< with another document
    VornExisting unchanged; ///< with the same one
};

/// The client's objects for one creation run, released with it.
class BrokerSession
{
public:
    BrokerSession() = default;
    ~BrokerSession();
    BrokerSession(const BrokerSession&) = delete;
    BrokerSession& operator=(const BrokerSession&) = delete;

    /// Creates the client, logs on (without an account: as the user that runs the program) and opens the repository.
    /// `server` may name a port itself, which goes before `port`: readServerAddress(). Answers "", or the text for the
    /// error box.
    CString open(const CString& server, unsigned port, const BrokerAccount* account);

    /// The same for a repository that is only read: nothing there is made or changed, and createTypes() tells what it
    /// would do. Raises ClientError for a client that lacks that.
    CString openForReading(const CString& server, unsigned port, const BrokerAccount* account);

    /// Why open() failed, for whom the text for the error box tells too little: the client's own words, or the system's
    /// where there is no client. "" where they are in the text, and where there are none.
    const CString& queryDescription() const { return description; }

    /// Creates one type by the repository itself and returns the client's code. Raises ClientError.
    unsigned createType(const CString& document, bool overwrite);

    /// False for a client that knows of no sources: it creates one type at a time, and unchanged ones are none to it.
    bool hasCreation() const { return creation != nullptr; }

    /// Creates types from their documents in their order, as IVornCreation::createTypes() does, and returns what became
    /// of the first ones. Raises ClientError.
    std::vector<CreatedType> createTypes(const std::vector<CString>& documents, const CString& source,
                                         ExistingTypes existing);

    /// The documents of the types in a folder, of a repository that is open for reading. Raises ClientError.
    std::vector<CString> readFolder(const CString& folder);

    /// Returns when the types that were created outlive a crash of the server, if the client can tell. Raises
    /// ClientError if some may be lost.
    void finish();

private:
    CString open(const char* classId, const CString& server, unsigned port, const BrokerAccount* account);
    CString logOn(const CString& address, const BrokerAccount* account);
    CString openRepository();
    void describe(const IVornObject& object) { description = object.queryDescription(); }

    VornObject<IVornIntegrationServer> server;
    VornObject<IVornConnection> connection;
    VornObject<IVornRepository> repository;
    VornObject<IVornCreation> creation; // null if the client has no such interface
    VornObject<IVornReading> reading;   // the same
    CString description;
};
