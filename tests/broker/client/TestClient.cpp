#include "Broker/IVorn.h"

#include <string>

// A client that fails if the address names an error, such as "logon-error", and succeeds otherwise.

namespace {

template <class Interface>
class TestObject : public Interface
{
public:
    explicit TestObject(std::string behaviour) : mode(std::move(behaviour)) {}
    virtual ~TestObject() = default;
    void Release() noexcept final { delete this; }
    const char* queryDescription() const noexcept override { return "the client's words"; }

protected:
    template <class Next, class Out>
    VornResult handOut(const std::string& stage, Out** out) const
    {
        if (mode == stage + "-error")
            return VornResult::clientError;
        if (mode == stage + "-failure")
            return VornResult::failed;
        if (mode != stage + "-nothing")
            *out = new Next(mode);
        return VornResult::done;
    }

    std::string mode;
};

// Returns the codes 0, 1, 99, 5, then an error, then 0.
class TestRepository final : public TestObject<IVornRepository>
{
public:
    using TestObject::TestObject;
    const char* queryDescription() const noexcept override { return "the client's\r\n\twords"; }
    VornResult createType(const char*, std::int32_t, std::uint32_t* code) noexcept override
    {
        static constexpr std::uint32_t kCodes[] = {0, 1, 99, 5};
        *code = call < 4 ? kCodes[call] : 0;
        return call++ == 4 ? VornResult::clientError : VornResult::done;
    }

private:
    int call = 0;
};

class TestConnection final : public TestObject<IVornConnection>
{
public:
    using TestObject::TestObject;
    VornResult GetRepository(IVornRepository** out) noexcept override
    {
        return handOut<TestRepository>("repository", out);
    }
};

class TestServer final : public TestObject<IVornIntegrationServer>
{
public:
    TestServer() : TestObject("") {}
    VornResult PutAddress(const char* address) noexcept override
    {
        mode = address;
        mode.resize(mode.rfind(':'));
        return mode == "address-error" ? VornResult::clientError : VornResult::done;
    }
    VornResult LogonAsUser(const char*, const char*, const char*, IVornConnection** out) noexcept override
    {
        return Logon(out);
    }
    VornResult Logon(IVornConnection** out) noexcept override { return handOut<TestConnection>("logon", out); }
};

} // namespace

std::uint32_t vornInterfaceVersion() noexcept
{
    return TEST_CLIENT_VERSION;
}

IVornIntegrationServer* vornCreateObject(const char* classId) noexcept
{
    return classId == std::string(kVornServerClass) ? new TestServer : nullptr;
}
