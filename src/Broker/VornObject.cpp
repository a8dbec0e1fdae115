#include "Broker/VornObject.h"

#include "Base/Progress.h"
#include "Files/SettingsStore.h"

#include <dlfcn.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr char kShippedClient[] = "libvornclient.so";

// By their full paths, since a bare name would be looked for in folders that others may write to.
CString shippedLibrary()
{
    std::error_code failed;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed).parent_path();
    const std::filesystem::path beside = program / kShippedClient;
    if (std::filesystem::exists(beside, failed))
        return beside;
    return program / TYPEFORGE_CLIENT_FOLDER / kShippedClient;
}

// A library runs as the user, so it has to be the user's own, or the system's.
bool isTrusted(const CString& library)
{
    struct stat state = {};
    return library.starts_with('/') && ::stat(library.c_str(), &state) == 0 &&
           (state.st_uid == 0 || state.st_uid == ::geteuid());
}

std::optional<CString> namedLibrary(const CString& classId)
{
    SettingsValue named;
    if (SettingsStore().getValue("SOFTWARE\\Classes\\CLSID\\" + classId + "\\InprocServer32", "", named))
        return named.bytes.c_str(); // the bytes end with a zero
    return std::nullopt;
}

std::shared_ptr<void> openLibrary(const CString& fileName)
{
    void* const handle = dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        return {};
    return {handle, [](void* opened) { dlclose(opened); }};
}

template <class Function>
Function* findFunction(const std::shared_ptr<void>& library, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(library.get(), name));
}

} // namespace

VornObject<IVornIntegrationServer> createVornObject(const CString& classId, CString* reason)
{
    CString ignored;
    CString& why = reason != nullptr ? *reason : ignored;
    const std::optional<CString> named = namedLibrary(classId);
    if (named && !isTrusted(*named)) {
        why = *named + ": not the full path of a library that is the user's own or the system's";
        return {};
    }
    const CString fileName = named ? *named : shippedLibrary();
    std::shared_ptr<void> library = openLibrary(fileName);
    if (!library) {
        why = dlerror();
        return {};
    }
    const auto version = findFunction<decltype(vornInterfaceVersion)>(library, "vornInterfaceVersion");
    const auto create = findFunction<decltype(vornCreateObject)>(library, "vornCreateObject");
    if (!version || !create || version() != kVornInterfaceVersion) {
        why = fileName + ": not a client with interfaces of version " + std::to_string(kVornInterfaceVersion);
        return {};
    }
    // A client may have been made without: its calls can't be cancelled then.
    if (const auto setQuestion = findFunction<decltype(vornSetQuestion)>(library, "vornSetQuestion"))
        setQuestion(isStillWanted);
    VornObject<IVornIntegrationServer> object{create(classId.c_str()), VornRelease{std::move(library)}};
    if (!object)
        why = fileName + ": no class " + classId;
    return object;
}

IVornObject* queryInterface(const VornObject<IVornRepository>& repository, const char* name)
{
    const auto query =
        findFunction<decltype(vornQueryInterface)>(repository.get_deleter().library, "vornQueryInterface");
    return query ? query(repository.get(), name) : nullptr;
}
