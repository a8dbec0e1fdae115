#pragma once

#include <cstdint>

// What a broker client is to the program: a shared library that exports the first two functions below and hands out
// objects of these interfaces. The third function is there if its work can be ended early, the fourth if it has
// interfaces beyond the first version. Only pointers, integers and zero-terminated UTF-8 texts cross the boundary, and
// no exception, so that client and program may be built apart. A new or changed function of an interface needs a new
// kVornInterfaceVersion, or an interface of its own behind vornQueryInterface().

/// The version of the interfaces in this header.
constexpr std::uint32_t kVornInterfaceVersion = 1;

/// The class identifier of the server object. Not inline: one object for all libraries would never let one go.
constexpr char kVornServerClass[] = "{7B1F0C52-3D64-4E0B-9A57-6C2E81D4F3A9}";

/// The class identifier of a server object whose repositories are only read: nothing is made or changed there, and an
/// IVornCreation tells what it would do, and does nothing. A client may lack it.
constexpr char kVornReaderClass[] = "{2C94E7A1-58B3-4F0D-8E16-B07D3A65C9F4}";

/// How an operation ended.
enum class VornResult : std::int32_t
{
    done = 0,
    clientError = 1, ///< the object's queryDescription() says why
    failed = 2       ///< any other failure; of a logon: the user or the password was refused
};

/// What every object of a client has. An object belongs to whom it was handed to, and lives on when the one that it
/// came from is released.
class IVornObject
{
public:
    /// Ends the object's life.
    virtual void Release() noexcept = 0;

    /// The description of the object's last operation where it failed, "" where it has none. Valid until the next one.
    virtual const char* queryDescription() const noexcept = 0;

protected:
    ~IVornObject() = default;
};

/// The type repository of a broker.
class IVornRepository : public IVornObject
{
public:
    /// Creates one type from its BROKERTYPEDESCRIPTION document; `overwrite` 1 replaces an existing type, 0 doesn't.
    /// `code` becomes 0 created, 1 replaced, 2 exists and was not replaced, 99 refused.
    virtual VornResult createType(const char* document, std::int32_t overwrite, std::uint32_t* code) noexcept = 0;

protected:
    ~IVornRepository() = default;
};

/// What a creation does with a type that exists.
enum class VornExisting : std::int32_t
{
    stop = 0,        ///< leaves it, and leaves the types behind it to the next call
    keep = 1,        ///< leaves it
    replace = 2,     ///< replaces it
    replaceFound = 3 ///< replaces it if it is the type that the last call stopped at, and as it was then; else stops
};

/// What became of a type.
struct VornOutcome
{
    /// 0 created, 1 replaced, 2 exists with another document, 3 exists with the same document, 99 refused.
    std::uint32_t code;

    /// The source and the time, in UTC as "2026-01-31T23:59:59Z", of the type that existed before; "" where that isn't
    /// known. A null source: the repository keeps none. Both are valid until the next call.
    const char* source;
    const char* time;
};

/// A creation of types that keeps for each the source that it comes from. A client that lacks it is used by
/// IVornRepository alone.
class IVornCreation : public IVornObject
{
public:
    /// Creates the types of BROKERTYPEDESCRIPTION documents in their order, each by itself. `changed` says what becomes
    /// of a type that exists with another document, `unchanged` of one that exists with the same. `outcomes` has room
    /// for `count`; `done` becomes how many types have one, at least 1. The last of them is one that a rule has stopped
    /// at, or the next one has failed, or the client has had enough. A failure is the result only of a call whose first
    /// type fails.
    virtual VornResult createTypes(const char* const* documents, std::uint32_t count, const char* source,
                                   VornExisting changed, VornExisting unchanged, VornOutcome* outcomes,
                                   std::uint32_t* done) noexcept = 0;

    /// Returns when all types that were created outlive a crash of the server. Without it they do some time later.
    virtual VornResult finish() noexcept = 0;

protected:
    ~IVornCreation() = default;
};

/// The name of IVornCreation for vornQueryInterface(). A changed interface gets another number.
constexpr char kVornCreation[] = "IVornCreation.1";

/// Reads a repository of the class kVornReaderClass.
class IVornReading : public IVornObject
{
public:
    /// Hands out the documents of the types that lie in `folder` itself ("\\sys\\xml\\"), in the order of their names.
    /// They are valid until the next call.
    virtual VornResult readFolder(const char* folder, const char* const** documents, std::uint32_t* count) noexcept = 0;

protected:
    ~IVornReading() = default;
};

/// The name of IVornReading for vornQueryInterface().
constexpr char kVornReading[] = "IVornReading.1";

/// A logged-on user's connection.
class IVornConnection : public IVornObject
{
public:
    /// Opens the type repository.
    virtual VornResult GetRepository(IVornRepository** repository) noexcept = 0;

protected:
    ~IVornConnection() = default;
};

/// The entrance: knows the broker's address and logs on there.
class IVornIntegrationServer : public IVornObject
{
public:
    /// `address` is "server:port".
    virtual VornResult PutAddress(const char* address) noexcept = 0;

    /// Logs on with a broker account; `domain` is "*", any domain that knows the user.
    virtual VornResult LogonAsUser(const char* user, const char* password, const char* domain,
                                   IVornConnection** connection) noexcept = 0;

    /// Logs on as the user that runs the process.
    virtual VornResult Logon(IVornConnection** connection) noexcept = 0;

protected:
    ~IVornIntegrationServer() = default;
};

extern "C" {
/// The version of the interfaces that the library was built with; asked before anything else.
[[gnu::visibility("default")]] std::uint32_t vornInterfaceVersion() noexcept;

/// A new object of the class, null for a class that the library doesn't have.
[[gnu::visibility("default")]] IVornIntegrationServer* vornCreateObject(const char* classId) noexcept;

/// Tells the library what to ask, from the thread that has called it, while that waits for a server: when the answer is
/// no, whatever it waits for fails soon as a client error.
[[gnu::visibility("default")]] void vornSetQuestion(bool (*isStillWanted)()) noexcept;

/// A new object of the interface called `name` for an open repository of the library; null if the library hasn't got
/// that interface.
[[gnu::visibility("default")]] IVornObject* vornQueryInterface(IVornRepository* repository, const char* name) noexcept;
}
