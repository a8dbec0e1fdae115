#include "Broker/IVorn.h"

#include <cstring>

// A client that fails in the way that the server's name in its address says, and succeeds in everything else.

namespace {

template <class Interface>
class TestObject : public Interface
{
public:
    explicit TestObject(const char* behaviour) : mode(behaviour) {}
    virtual ~TestObject() = default;
    void Release() noexcept final { delete this; }
    const char* queryDescription() const noexcept final { return "the client's words"; }

protected:
    bool is(const char* behaviour) const { return std::strcmp(mode, behaviour) == 0; }

    // Ends an operation as the mode says: "Xerror", "Xfailure", "Xnothing", else with an object of the next kind.
    template <class Next, class Out>
    VornResult handOut(const char* error, const char* failure, const char* nothing, Out** out) const
    {
        *out = is(error) || is(failure) || is(nothing) ? nullptr : new Next(mode);
        return is(error) ? VornResult::clientError : is(failure) ? VornResult::failed : VornResult::done;
    }

    const char* mode;
};

// The documents it is handed are known by their order: codes 0, 1, 99, 5, then an error, then 0 again.
class TestRepository final : public TestObject<IVornRepository>
{
public:
    using TestObject::TestObject;

    VornResult createType(const char*, std::int32_t, std::uint32_t* code) noexcept override
    {
        static constexpr std::uint32_t kCodes[] = {0, 1, 99, 5, 0, 0};
        *code = kCodes[call];
        return call++ == 4 ? VornResult::clientError : VornResult::done;
    }

private:
    int call = 0;
};

class TestConnection final : public TestObject<IVornConnection>
{
public:
    using TestObject::TestObject;

    VornResult GetRepository(IVornRepository** repository) noexcept override
    {
        return handOut<TestRepository>("repository-error", "repository-failure", "no-repository", repository);
    }
};

class TestServer final : public TestObject<IVornIntegrationServer>
{
public:
    TestServer() : TestObject("") {}

    VornResult PutAddress(const char* address) noexcept override
    {
        static constexpr const char* kModes[] = {"address-error", "logon-error",      "logon-failure",
                                                 "no-connection", "repository-error", "repository-failure",
                                                 "no-repository"};
        for (const char* const known : kModes)
            if (std::strncmp(address, known, std::strcspn(address, ":")) == 0)
                mode = known;
        return is("address-error") ? VornResult::clientError : VornResult::done;
    }

    VornResult LogonAsUser(const char*, const char*, const char*, IVornConnection** connection) noexcept override
    {
        return Logon(connection);
    }

    VornResult Logon(IVornConnection** connection) noexcept override
    {
        return handOut<TestConnection>("logon-error", "logon-failure", "no-connection", connection);
    }
};

} // namespace

std::uint32_t vornInterfaceVersion() noexcept
{
    return TEST_CLIENT_VERSION;
}

IVornIntegrationServer* vornCreateObject(const char* classId) noexcept
{
    return std::strcmp(classId, kVornServerClass) == 0 ? new TestServer : nullptr;
}
