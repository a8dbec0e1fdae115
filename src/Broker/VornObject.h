#pragma once

#include "Base/Text.h"
#include "Broker/IVorn.h"

#include <memory>

/// Releases an object of a client library, and unloads the library with its last object.
struct VornRelease
{
    std::shared_ptr<void> library;

    // In this order: the code of the object lies in the library.
    void operator()(IVornObject* object) noexcept
    {
        object->Release();
        library.reset();
    }
};

/// Owns an object of a client library and keeps the library loaded.
template <class Interface>
using VornObject = std::unique_ptr<Interface, VornRelease>;

/// Creates an object of a class. The library is the one that the settings name for the server class
/// (SOFTWARE\Classes\CLSID\{...}\InprocServer32), else the client that comes with the program. Returns null if the
/// library is missing or can be replaced by other users, has interfaces of another version or lacks the class. `reason`
/// then gets the cause, for administrators of clients. The library gets isStillWanted(), so that its calls can be
/// cancelled.
VornObject<IVornIntegrationServer> createVornObject(const CString& classId, CString& reason);

/// Calls vornQueryInterface(). Returns null also if the library lacks that function.
IVornObject* queryInterface(const VornObject<IVornRepository>& repository, const char* name);

template <class Interface>
VornObject<Interface> queryInterface(const VornObject<IVornRepository>& repository, const char* name)
{
    return {static_cast<Interface*>(queryInterface(repository, name)), repository.get_deleter()};
}
