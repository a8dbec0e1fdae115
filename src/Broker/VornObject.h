#pragma once

#include "Base/Text.h"
#include "Broker/IVorn.h"

#include <memory>

/// Releases an object of a client library, and then the library when it was its last object.
struct VornRelease
{
    std::shared_ptr<void> library;

    void operator()(IVornObject* object) noexcept
    {
        object->Release();
        library.reset();
    }
};

/// Owns an object of a client library and holds the library as long as the object lives.
template <class Interface>
using VornObject = std::unique_ptr<Interface, VornRelease>;

/// Creates the object of a class: out of the library that the settings name under the class of servers
/// (SOFTWARE\Classes\CLSID\{...}\InprocServer32), else out of the client that comes with the program. Null when there
/// is no such library, its interfaces are of another version, or it doesn't know the class; `reason` then says which,
/// for people who set up clients.
VornObject<IVornIntegrationServer> createVornObject(const CString& classId, CString* reason = nullptr);

/// The same as vornQueryInterface(); null also if the library hasn't got that function.
IVornObject* queryInterface(const VornObject<IVornRepository>& repository, const char* name);

template <class Interface>
VornObject<Interface> queryInterface(const VornObject<IVornRepository>& repository, const char* name)
{
    return {static_cast<Interface*>(queryInterface(repository, name)), repository.get_deleter()};
}
