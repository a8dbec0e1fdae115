#pragma once

#include <cstdint>

// The interface between the program and a broker client: a shared library that exports the first two functions below
// and returns objects of these interfaces. It exports the third function if its waits can be cancelled, the fourth if
// it has interfaces beyond the first version. Only pointers, integers and zero-terminated UTF-8 texts cross the
// boundary, and no exceptions, so that client and program can be built apart. A new or changed function of an interface
// needs a new kVornInterfaceVersion, or an interface of its own that vornQueryInterface() returns.

/// The version of the interfaces in this header.
constexpr std::uint32_t kVornInterfaceVersion = 1;

/// The class identifier of the server object. Not inline, because GCC would make it a unique symbol, which keeps a
/// loaded library from being unloaded.
constexpr char kVornServerClass[] = "{7B1F0C52-3D64-4E0B-9A57-6C2E81D4F3A9}";

/// The class identifier of a server object for reading only: its repositories create and change nothing, and an
/// IVornCreation only returns what it would do. A client may lack it.
constexpr char kVornReaderClass[] = "{2C94E7A1-58B3-4F0D-8E16-B07D3A65C9F4}";

/// The result of an operation.
enum class VornResult : std::int32_t
{
    done = 0,
    clientError = 1, ///< the object's queryDescription() gives the reason
    failed = 2       ///< any other failure; at a logon: the user or the password was refused
};

/// The base of all objects of a client. The caller that receives an object owns it. It stays valid after the object
/// that it came from is released.
class IVornObject
{
public:
    /// Frees the object.
    virtual void Release() noexcept = 0;

    /// Returns the description of the object's last operation if that failed, empty if there is none. Valid until the
    /// next operation.
    virtual const char* queryDescription() const noexcept = 0;

protected:
    ~IVornObject() = default;
};

/// The type repository of a broker.
class IVornRepository : public IVornObject
{
public:
    /// Creates one type from its BROKERTYPEDESCRIPTION document. `overwrite` 1 replaces an existing type, 0 keeps it.
    /// Sets `code` to 0 if created, 1 if replaced, 2 if it exists and was kept, 99 if the document was refused.
    virtual VornResult createType(const char* document, std::int32_t overwrite, std::uint32_t* code) noexcept = 0;

protected:
    ~IVornRepository() = default;
};

/// What a creation does with an existing type.
enum class VornExisting : std::int32_t
{
    stop = 0,        ///< keeps it and ends the call; the following types are left to the next one
    keep = 1,        ///< keeps it
    replace = 2,     ///< replaces it
    replaceFound = 3 ///< replaces it if the last call stopped at it and it is unchanged since; else stops
};

/// The outcome for one type.
struct VornOutcome
{
    enum Code : std::uint32_t
    {
        created = 0,
        replaced = 1,
        exists = 2,    ///< with another document
        unchanged = 3, ///< exists with the same document
        refused = 99   ///< the document does not describe a type
    };

    std::uint32_t code; ///< of Code, as the code of IVornRepository::createType()

    /// The source and the time (UTC, "2026-01-31T23:59:59Z") of the type that existed before; empty if unknown. The
    /// source is null if the repository stores none. Both are valid until the next call.
    const char* source;
    const char* time;
};

/// Creates types and stores the source of each. If a client lacks it, the program uses IVornRepository.
class IVornCreation : public IVornObject
{
public:
    /// Creates types from BROKERTYPEDESCRIPTION documents, in order, each in a transaction of its own. `changed`
    /// applies to a type that exists with another document, `unchanged` to one that exists with the same. `outcomes`
    /// has room for `count`. Sets `done` to the number of outcomes, at least 1. The call may end early: at a type where
    /// a rule stops, before a type that fails, or at a limit of the client. It returns a failure only if its first type
    /// fails.
    virtual VornResult createTypes(const char* const* documents, std::uint32_t count, const char* source,
                                   VornExisting changed, VornExisting unchanged, VornOutcome* outcomes,
                                   std::uint32_t* done) noexcept = 0;

    /// Waits until all created types survive a crash of the server. Without this call, they do some time later.
    virtual VornResult finish() noexcept = 0;

protected:
    ~IVornCreation() = default;
};

/// The name of IVornCreation for vornQueryInterface(). A changed interface needs another number.
constexpr char kVornCreation[] = "IVornCreation.1";

/// Reads a repository that was opened through kVornReaderClass.
class IVornReading : public IVornObject
{
public:
    /// Sets `documents` and `count` to the documents of the types directly in `folder` ("\\sys\\xml\\"), ordered by
    /// name. Valid until the next call.
    virtual VornResult readFolder(const char* folder, const char* const** documents, std::uint32_t* count) noexcept = 0;

protected:
    ~IVornReading() = default;
};

/// The name of IVornReading for vornQueryInterface().
constexpr char kVornReading[] = "IVornReading.1";

/// The connection of a user who is logged on.
class IVornConnection : public IVornObject
{
public:
    /// Opens the type repository.
    virtual VornResult GetRepository(IVornRepository** repository) noexcept = 0;

protected:
    ~IVornConnection() = default;
};

/// The client's first object: holds the broker's address and logs on.
class IVornIntegrationServer : public IVornObject
{
public:
    /// Sets the broker's address, "server:port".
    virtual VornResult PutAddress(const char* address) noexcept = 0;

    /// Logs on with a broker account. `domain` is "*": any domain that knows the user.
    virtual VornResult LogonAsUser(const char* user, const char* password, const char* domain,
                                   IVornConnection** connection) noexcept = 0;

    /// Logs on as the user that runs the process.
    virtual VornResult Logon(IVornConnection** connection) noexcept = 0;

protected:
    ~IVornIntegrationServer() = default;
};

extern "C" {
/// Returns the version of the interfaces that the library was built with. Called before anything else.
[[gnu::visibility("default")]] std::uint32_t vornInterfaceVersion() noexcept;

/// Returns a new object of a class, null if the library doesn't have it.
[[gnu::visibility("default")]] IVornIntegrationServer* vornCreateObject(const char* classId) noexcept;

/// Sets the callback that the library polls while it waits for a server, in the thread of the waiting call. If it
/// returns false, the wait soon fails with a client error.
[[gnu::visibility("default")]] void vornSetQuestion(bool (*isStillWanted)()) noexcept;

/// Returns a new object of the interface `name` for an open repository of the library, null if the library lacks that
/// interface.
[[gnu::visibility("default")]] IVornObject* vornQueryInterface(IVornRepository* repository, const char* name) noexcept;
}
