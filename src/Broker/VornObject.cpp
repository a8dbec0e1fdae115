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

// Returns the client that comes with the program by its full path. A bare name would be searched in folders that others
// may write to. The program's path comes from the kernel, not from its arguments, which the caller chooses. The library
// is beside the program in a build, and in the other folder in an installation.
CString shippedLibrary()
{
    std::error_code failed;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failed).parent_path();
    const std::filesystem::path beside = program / kShippedClient;
    if (std::filesystem::exists(beside, failed))
        return beside;
    return program / TYPEFORGE_CLIENT_FOLDER / kShippedClient;
}

// Returns whether users other than this one and root could replace a file or folder. In a sticky folder they can't
// replace what isn't theirs, but they can add libraries to it. Access control lists can't give more than the group's
// bits allow (acl(5), the mask).
bool isWritableByOthers(const std::filesystem::path& path, bool mayBeSticky)
{
    struct stat link = {}, state = {};
    if (::lstat(path.c_str(), &link) != 0 || ::stat(path.c_str(), &state) != 0)
        return false; // then it can't be loaded either
    // The owner can change the permissions at any time. A link's own owner can replace the link.
    for (const uid_t owner : {link.st_uid, state.st_uid})
        if (owner != 0 && owner != ::geteuid())
            return true;
    const bool isWritable = (state.st_mode & (S_IWGRP | S_IWOTH)) != 0;
    return isWritable && !(mayBeSticky && (state.st_mode & S_ISVTX) != 0);
}

// Returns the part of the path that lets others replace the library: itself or a folder above; empty if none does. The
// library runs with the user's rights.
CString writablePartOf(const std::filesystem::path& library)
{
    for (std::filesystem::path part = library; part.has_relative_path(); part = part.parent_path())
        if (isWritableByOthers(part, part != library && part != library.parent_path()))
            return part;
    return {};
}

// Returns why a library is not loaded; empty if it may be. Checks the given name and the file that it leads to. Only
// for libraries that the settings name, because the shipped one is installed with the program.
CString untrustedReason(const CString& library)
{
    if (!library.starts_with('/'))
        return library + ": not the full path of a library";
    std::error_code failed;
    CString writable = writablePartOf(library);
    if (writable.empty())
        writable = writablePartOf(std::filesystem::canonical(library, failed));
    return writable.empty() ? CString() : library + ": not loaded, since others may write " + writable;
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
    // RTLD_NOW: a missing symbol is reported here, not by a crash in a later call.
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

VornObject<IVornIntegrationServer> createVornObject(const CString& classId, CString& reason)
{
    // The server class for both classes, because one library has both.
    const std::optional<CString> named = namedLibrary(kVornServerClass);
    if (const CString untrusted = named ? untrustedReason(*named) : CString(); !untrusted.empty()) {
        reason = untrusted;
        return {};
    }
    const CString fileName = named ? *named : shippedLibrary();
    std::shared_ptr<void> library = openLibrary(fileName);
    if (!library) {
        reason = dlerror();
        return {};
    }
    const auto version = findFunction<decltype(vornInterfaceVersion)>(library, "vornInterfaceVersion");
    const auto create = findFunction<decltype(vornCreateObject)>(library, "vornCreateObject");
    // The version is checked first, because the layout of objects of another version is unknown.
    if (!version || !create || version() != kVornInterfaceVersion) {
        reason = fileName + ": not a client with interfaces of version " + std::to_string(kVornInterfaceVersion);
        return {};
    }
    // Optional: without it, the client's calls can't be cancelled.
    if (const auto setQuestion = findFunction<decltype(vornSetQuestion)>(library, "vornSetQuestion"))
        setQuestion(isStillWanted);
    VornObject<IVornIntegrationServer> object{create(classId.c_str()), VornRelease{std::move(library)}};
    if (!object)
        reason = fileName + ": no class " + classId;
    return object;
}

IVornObject* queryInterface(const VornObject<IVornRepository>& repository, const char* name)
{
    const auto query =
        findFunction<decltype(vornQueryInterface)>(repository.get_deleter().library, "vornQueryInterface");
    return query ? query(repository.get(), name) : nullptr;
}
