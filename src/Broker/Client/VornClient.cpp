#include "Base/Progress.h"
#include "Base/Secret.h"
#include "Broker/Client/Address.h"
#include "Broker/Client/Roles.h"
#include "Broker/Client/StoreOutcome.h"
#include "Broker/Client/TypeDocument.h"
#include "Broker/Client/TypeReader.h"
#include "Broker/Client/TypeStore.h"
#include "Broker/IVorn.h"
#include "Database/ConnectString.h"
#include "Files/UserFolders.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

// The client that ships: types are rows of a table (TypeTable) in an SQLite file or on a PostgreSQL server (Address). A
// server object creates connections, a connection creates repositories, and a repository creates the other interfaces.
// They share data by shared pointers, because the program may release them in any order. The library links its own copy
// of Base, so the progress handler here is not the program's.
namespace {

// The driver manager's SQLSTATE if it can't load a driver or doesn't know it.
constexpr const char* kNoDriver = "01000";

// A local file that takes longer to open is locked: SQLite's driver waits 10 s, opens it all the same, and would wait
// again with each statement.
constexpr std::chrono::seconds kLockWait(9);

// The base of all objects. Turns exceptions into client errors with a description, because none may leave the library.
template <class Interface>
class ClientObject : public Interface
{
public:
    virtual ~ClientObject() = default;

    void Release() noexcept final { delete this; }
    const char* queryDescription() const noexcept final { return description.c_str(); }

protected:
    // Runs an operation and returns its result. Cancelled is not a std::exception.
    template <class Operation>
    VornResult attempt(Operation operation) noexcept
    {
        description.clear();
        try {
            return operation();
        } catch (const std::exception& error) {
            describe(error.what());
        } catch (const Cancelled&) {
            describe("The connection is closed, because the work was cancelled");
        }
        return VornResult::clientError;
    }

    // Must not throw, because it runs in handlers of exceptions.
    void describe(const char* text) noexcept
    {
        try {
            description = text;
        } catch (const std::exception&) {
            description.clear(); // out of memory
        }
    }

private:
    CString description;
};

// Returns a document with its type's full name, which is empty if it does not describe a type.
NamedDocument named(const char* document)
{
    return {queryTypeName(document).value_or(""), document};
}

// Creates types, or only returns what a creation would do, depending on its storage.
class Creation final : public ClientObject<IVornCreation>
{
public:
    explicit Creation(std::shared_ptr<TypeStorage> openStore) : store(std::move(openStore)) {}

    VornResult createTypes(const char* const* documents, std::uint32_t count, const char* source, VornExisting changed,
                           VornExisting unchanged, VornOutcome* outcomes, std::uint32_t* done) noexcept override
    {
        return attempt([&] {
            types.clear();
            for (std::uint32_t i = 0; i < count; ++i)
                types.push_back(named(documents[i]));
            // Types before a refused document are stored first; the refused one then begins the next call.
            const auto refused = std::ranges::find(types, "", &NamedDocument::name);
            if (refused == types.begin())
                stored = {{StoreOutcome::refused}};
            else
                stored = store->store({types.begin(), refused}, source, {changed, unchanged});
            *done = static_cast<std::uint32_t>(stored.size());
            std::ranges::transform(stored, outcomes, [this](const StoreOutcome& type) { return outcomeOf(type); });
            return VornResult::done;
        });
    }

    VornResult finish() noexcept override
    {
        return attempt([&] {
            store->finish();
            return VornResult::done;
        });
    }

private:
    VornOutcome outcomeOf(const StoreOutcome& type) const
    {
        return {type.code, store->keepsSources() ? type.mark.source.c_str() : nullptr, type.mark.time.c_str()};
    }

    std::shared_ptr<TypeStorage> store;
    std::vector<NamedDocument> types;
    std::vector<StoreOutcome> stored; // of the last call; outcomes point into it
};

class Reading final : public ClientObject<IVornReading>
{
public:
    explicit Reading(std::shared_ptr<TypeReader> openReader) : reader(std::move(openReader)) {}

    VornResult readFolder(const char* folder, const char* const** documents, std::uint32_t* count) noexcept override
    {
        return attempt([&] {
            texts = reader->readFolder(folder);
            pointers.clear();
            for (const CString& text : texts)
                pointers.push_back(text.c_str());
            *documents = pointers.data();
            *count = static_cast<std::uint32_t>(pointers.size());
            return VornResult::done;
        });
    }

private:
    std::shared_ptr<TypeReader> reader;
    std::vector<CString> texts; // of the last call; the caller's pointers lead here
    std::vector<const char*> pointers;
};

// A repository. One for reading has a reader and no store; its IVornCreation stores nothing. The database is null only
// for reading, if there is no repository yet.
class Repository final : public ClientObject<IVornRepository>
{
public:
    Repository(std::shared_ptr<CDatabase> database, TypeTable::Place place, bool readsOnly) :
        reader(readsOnly ? std::make_shared<TypeReader>(database, place) : nullptr),
        store(readsOnly ? nullptr : std::make_shared<TypeStore>(std::move(database), place))
    {}

    VornResult createType(const char* document, std::int32_t overwrite, std::uint32_t* code) noexcept override
    {
        return attempt([&] {
            if (!store)
                throw std::logic_error("The repository is open for reading only");
            const NamedDocument type = named(document);
            *code = type.name.empty() ? StoreOutcome::refused : store->store(type, overwrite != 0);
            return VornResult::done;
        });
    }

    IVornObject* queryInterface(std::string_view name) const
    {
        if (reader && name == kVornReading)
            return new (std::nothrow) Reading(reader);
        if (name != kVornCreation)
            return nullptr;
        return reader ? new (std::nothrow) Creation(reader) : new (std::nothrow) Creation(store);
    }

private:
    const std::shared_ptr<TypeReader> reader;
    const std::shared_ptr<TypeStore> store;
};

class Connection final : public ClientObject<IVornConnection>
{
public:
    Connection(std::shared_ptr<CDatabase> open, TypeTable::Place openPlace, bool isReader) :
        database(std::move(open)), place(openPlace), readsOnly(isReader)
    {}

    VornResult GetRepository(IVornRepository** repository) noexcept override
    {
        return attempt([&] {
            *repository = new Repository(database, place, readsOnly);
            return VornResult::done;
        });
    }

private:
    std::shared_ptr<CDatabase> database; // shared with the repositories, which may live longer; null if there is none
    const TypeTable::Place place;
    const bool readsOnly;
};

class Server final : public ClientObject<IVornIntegrationServer>
{
public:
    explicit Server(bool isReader) : readsOnly(isReader) {}

    VornResult PutAddress(const char* text) noexcept override
    {
        return attempt([&] {
            address.emplace(text);
            return VornResult::done;
        });
    }

    // A PostgreSQL server has no domains, so any is accepted.
    VornResult LogonAsUser(const char* user, const char* password, const char* /* domain */,
                           IVornConnection** connection) noexcept override
    {
        return attempt([&] {
            const Secret secret{password};
            VornResult result = VornResult::failed;
            CString reason; // of the first role, the one that the user named
            // The next role is tried only if this one is refused. Another failure would be the same for all.
            for (const CString& role : rolesOf(user)) {
                const Secret logon{logonText(role, secret.text)};
                result = connect(logon.text, connection);
                if (result != VornResult::failed)
                    break;
                if (reason.empty())
                    reason = queryDescription();
                describe(reason.c_str());
            }
            return result;
        });
    }

    // Without a password: the server decides whether it trusts the login name.
    VornResult Logon(IVornConnection** connection) noexcept override
    {
        return attempt([&] { return connect(logonText(loginName(), {}), connection); });
    }

private:
    // Returns `failed`, with a description, if the server refuses the user. Throws for any other reason.
    VornResult connect(const CString& logon, IVornConnection** connection)
    {
        if (!address)
            throw std::logic_error("There is no address to connect to");
        const auto place = address->isLocal() ? TypeTable::Place::file : TypeTable::Place::server;
        // A repository that was never used is empty, and reading must not create it.
        if (readsOnly && !address->exists()) {
            *connection = new Connection(nullptr, place, readsOnly);
            return VornResult::done;
        }
        auto database = std::make_shared<CDatabase>();
        const auto start = std::chrono::steady_clock::now();
        try {
            if (!database->Open(address->connectString(readsOnly), CDatabase::readWrite,
                                address->isLocal() ? CString() : logon))
                throw std::runtime_error("The ODBC driver manager is not available");
            if (address->isLocal() && std::chrono::steady_clock::now() - start > kLockWait)
                throw std::runtime_error("Another program has locked the repository");
        } catch (const CDBException& error) {
            if (error.queryState() == kNoDriver)
                throw std::runtime_error(error.what() + CString("; the package is ") + address->driverPackage());
            if (!error.isLogonRefused())
                throw;
            describe(error.what());
            return VornResult::failed;
        }
        *connection = new Connection(std::move(database), place, readsOnly);
        return VornResult::done;
    }

    std::optional<Address> address;
    const bool readsOnly;
};

} // namespace

std::uint32_t vornInterfaceVersion() noexcept
{
    return kVornInterfaceVersion;
}

IVornIntegrationServer* vornCreateObject(const char* classId) noexcept
{
    const bool isReader = std::strcmp(classId, kVornReaderClass) == 0;
    return isReader || std::strcmp(classId, kVornServerClass) == 0 ? new (std::nothrow) Server(isReader) : nullptr;
}

void vornSetQuestion(bool (*isStillWanted)()) noexcept
{
    setProgressHandler([isStillWanted](const Progress&) { return isStillWanted(); });
}

IVornObject* vornQueryInterface(IVornRepository* repository, const char* name) noexcept
{
    // All repositories of this library are of this class.
    return static_cast<Repository*>(repository)->queryInterface(name);
}
