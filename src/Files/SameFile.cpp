#include "Files/SameFile.h"

#include "Files/Descriptor.h"

#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// Returns whether a folder treats names that differ only in case as one name.
bool ignoresCase(const fs::path& folder)
{
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    int flags = 0;
    if (::ioctl(opened.get(), FS_IOC_GETFLAGS, &flags) == 0 && (flags & FS_CASEFOLD_FL) != 0)
        return true;
    struct statfs system = {};
    return ::fstatfs(opened.get(), &system) == 0 &&
           (system.f_type == MSDOS_SUPER_MAGIC || system.f_type == EXFAT_SUPER_MAGIC ||
            system.f_type == CIFS_SUPER_MAGIC || system.f_type == SMB2_SUPER_MAGIC);
}

// Compares names under which nothing exists yet: the same name in the same folder.
bool wouldBeSameFile(const fs::path& one, const fs::path& other)
{
    std::error_code failure;
    const fs::path folder = one.has_parent_path() ? one.parent_path() : ".";
    const fs::path otherFolder = other.has_parent_path() ? other.parent_path() : ".";
    if (!fs::equivalent(folder, otherFolder, failure))
        return false;
    const CString name = one.filename().string(), otherName = other.filename().string();
    return name == otherName || (lowerAscii(name) == lowerAscii(otherName) && ignoresCase(folder));
}

} // namespace

CString resolveLinks(const CString& fileName)
{
    std::error_code ignored;
    fs::path target = fileName;
    for (int links = 0; links < 40 && fs::is_symlink(target, ignored); ++links) // the kernel's own limit (ELOOP)
        // A relative target starts from the link's folder; an absolute one replaces it (operator/).
        target = target.parent_path() / fs::read_symlink(target, ignored);
    return target;
}

bool isSameFile(const CString& one, const CString& other)
{
    // Only two calls of stat(), because each source is compared with each output.
    struct stat first, second;
    const bool isThere = ::stat(one.c_str(), &first) == 0;
    if (isThere != (::stat(other.c_str(), &second) == 0))
        return false;
    if (isThere)
        return S_ISREG(first.st_mode) && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    return wouldBeSameFile(resolveLinks(one), resolveLinks(other));
}
