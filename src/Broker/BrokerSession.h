#pragma once

#include "Broker/VornObject.h"

#include <stdexcept>
#include <vector>

/// Thrown if an operation of the client fails. what() is the client's description, empty if it gave none.
class ClientError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The broker user to log on as, if that is not the user that runs the program. It holds references, so that no copy of
/// the password has to be wiped. They must be valid during the call that takes it.
struct BrokerAccount
{
    const CString& user;
    const CString& password;
};

/// The outcome for one type.
struct CreatedType
{
    using enum VornOutcome::Code;

    unsigned code = created; ///< the client's, usually one of the above

    /// The source and time of the type that existed before; empty if unknown.
    CString source = {};
    CString time = {};
    bool isSourceStored = false; ///< false if the repository stores no sources
};

/// The client's objects for one creation run. Releases them in the right order and wipes the password. One thread at a
/// time may use it.
class BrokerSession
{
public:
    BrokerSession() = default;
    ~BrokerSession();
    BrokerSession(const BrokerSession&) = delete;
    BrokerSession& operator=(const BrokerSession&) = delete;

    /// Creates the client, logs on and opens the repository. Without an account, logs on as the user that runs the
    /// program. A port in `server` overrides `port`, see readServerAddress(). Returns an empty text, or the text for
    /// the error box.
    ///
    /// If `isForReading`, nothing in the repository is created or changed, and createTypes() returns what it would do.
    /// Throws ClientError if the client lacks this.
    CString open(const CString& server, unsigned port, const BrokerAccount* account, bool isForReading = false);

    /// Returns the details of a failure of open(): the client's own words, or the system's if the client can't be
    /// loaded. Empty if there are none, or the error box already shows them.
    const CString& queryDescription() const { return description; }

    /// Creates one type through the repository itself and returns the client's code. Throws ClientError. A code that is
    /// not in CreatedType is unknown.
    unsigned createType(const CString& document, bool overwrite);

    /// Returns whether the client has IVornCreation. Without it, types are created one at a time, without sources, and
    /// an unchanged type counts as existing.
    bool hasCreation() const { return creation != nullptr; }

    /// Creates types from their documents, in order, as IVornCreation::createTypes() does. Returns the outcomes of the
    /// first ones, at least one. Throws ClientError.
    std::vector<CreatedType> createTypes(const std::vector<CString>& documents, const CString& source,
                                         VornExisting changed, VornExisting unchanged);

    /// Returns the documents of the types in a folder. The session must be open for reading. Throws ClientError. The
    /// folder begins and ends with a backslash.
    std::vector<CString> readFolder(const CString& folder);

    /// Waits until the created types survive a crash of the server, if the client supports it. Throws ClientError if
    /// some may be lost.
    void finish();

private:
    // Each step returns the text for the error box, empty if it succeeded, and sets the description.
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
