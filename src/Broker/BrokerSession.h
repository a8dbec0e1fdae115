#pragma once

#include "Broker/VornObject.h"

#include <stdexcept>

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

    /// Why open() failed, for whom the text for the error box tells too little: the client's own words, or the system's
    /// where there is no client. "" where they are in the text, and where there are none.
    const CString& queryDescription() const { return description; }

    /// Creates one type and answers the client's result code. Raises ClientError.
    unsigned createType(const CString& document, bool overwrite);

    /// Returns when the types that were created outlive a crash of the server, if the client can tell. Raises
    /// ClientError if some may be lost.
    void finish();

private:
    CString logOn(const CString& address, const BrokerAccount* account);
    CString openRepository();
    void describe(const IVornObject& object) { description = object.queryDescription(); }

    VornObject<IVornIntegrationServer> server;
    VornObject<IVornConnection> connection;
    VornObject<IVornRepository> repository;
    VornObject<IVornCreation> creation; // null if the client has no such interface
    CString description;
};
