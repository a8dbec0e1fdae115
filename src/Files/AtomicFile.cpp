#include "Files/AtomicFile.h"

#include "Files/SameFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

// The content is gathered beside the target, in a temporary file that a rename can put in its place. If the owner,
// group or permissions of the target can't be given to such a file, or the folder takes none, the content is gathered
// in memory (memfd_create(2)), and commit() copies it over the target. A failed rename leads to the same copy. In each
// case the target stays untouched until the content is complete.
namespace {

constexpr std::size_t kBufferSize = 1 << 16;

// Returns the permissions that a new file gets under the process's umask. umask(2) can't be read without being set.
// Files that another thread creates in between get no mask, except those of mkostemps(3), which are the user's alone.
mode_t newFileMode()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// Returns whether a file has an ACL beside its permissions. A folder's default ACL gives one to new files too.
bool hasAcl(const CString& fileName)
{
    return ::getxattr(fileName.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
}

// Gives a file its new size before any byte is overwritten. A full disk then leaves the old file intact, and no old
// byte can remain after the end of the new content. On a file system without fallocate(2), posix_fallocate(3) writes to
// each block at the end of the file; holes before it are not looked for, because the file may not be readable.
bool resize(int file, off_t size)
{
    struct stat before = {};
    if (::fstat(file, &before) != 0)
        return false;
    if (size < before.st_size)
        return ::ftruncate(file, size) == 0;
    if (size == before.st_size || ::fallocate(file, 0, 0, size) == 0)
        return true;
    const int error = errno == EOPNOTSUPP ? ::posix_fallocate(file, before.st_size, size - before.st_size) : errno;
    if (error == 0)
        return true;
    if (::ftruncate(file, before.st_size) == 0)
        errno = error;
    return false;
}

// Copies from the start of `from` to the position of `to`, inside the kernel.
bool copy(int from, int to, off_t size)
{
    for (off_t at = 0; at < size;)
        if (::sendfile(to, from, &at, static_cast<std::size_t>(size - at)) < 0 && errno != EINTR)
            return false;
    return true;
}

} // namespace

AtomicFile::AtomicFile(const CString& fileName, Special special)
{
    open(fileName, special);
}

void AtomicFile::open(const CString& fileName, Special special)
{
    struct stat state = {};
    replaces = ::stat(fileName.c_str(), &state) == 0;
    if (!replaces && errno != ENOENT)
        return fail();
    if (replaces && !S_ISREG(state.st_mode)) {
        errno = S_ISDIR(state.st_mode) ? EISDIR : ENOTSUP;
        // O_NOCTTY: a terminal that is written to must not become the controlling terminal of the process.
        if (special == Special::written)
            out.reset(::open(fileName.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        return out.isOpen() ? void() : fail();
    }
    // A read-only file is not replaced, even if its folder would allow it. The rename below only needs the right to
    // write to the folder.
    if (replaces && ::access(fileName.c_str(), W_OK) != 0)
        return fail();
    target = resolveLinks(fileName);
    // The name was empty.
    if (target.empty()) {
        errno = ENOENT;
        return fail();
    }
    out.reset(temporary.create(target.substr(0, target.rfind('/') + 1), ".typeforge-"));
    const bool isReady = out.isOpen() && (replaces ? copyPermissions(state) : ::fchmod(out.get(), newFileMode()) == 0);
    // A file that does not exist can't be overwritten, so a failure in its folder is final.
    if (!isReady && !(replaces && openMemory()))
        fail();
}

// Gives the new file the owner, group and permissions of the old one, so that no user gains a right. Returns false if
// the system refuses or either file has an ACL. chown() comes before chmod(), because it clears the setuid and setgid
// bits.
bool AtomicFile::copyPermissions(const struct stat& old) const
{
    return !hasAcl(target) && !hasAcl(temporary.queryName()) && ::fchown(out.get(), old.st_uid, old.st_gid) == 0 &&
           ::fchmod(out.get(), old.st_mode & 07777) == 0;
}

// Opens a file in memory for the new content, so that the old file is overwritten in place only when the new one is
// complete. Restores errno, so that fail() reports why the temporary file was not possible.
bool AtomicFile::openMemory()
{
    const int error = errno;
    temporary.remove();
    out.reset(::memfd_create("typeforge", MFD_CLOEXEC));
    errno = error;
    return out.isOpen();
}

// Keeps errno of the first failure; later ones only follow from it.
void AtomicFile::fail()
{
    if (error == 0)
        error = errno;
}

void AtomicFile::flush()
{
    if (error == 0 && !out.write(buffer))
        fail();
    buffer.clear();
}

void AtomicFile::write(std::string_view bytes)
{
    if (buffer.size() + bytes.size() > kBufferSize)
        flush();
    if (error != 0)
        return;
    // Large pieces are written without a copy. The buffer is empty then, because such a piece doesn't fit beside other
    // bytes.
    if (bytes.size() < kBufferSize)
        buffer.append(bytes);
    else if (!out.write(bytes))
        fail();
}

int AtomicFile::commit()
{
    flush();
    // Nothing is put in place after a failure, or if the bytes went to the target directly.
    const bool isToPlace = error == 0 && !target.empty();
    if (isToPlace && keepsUnchanged && isUnchanged())
        temporary.remove();
    else if (isToPlace && !place())
        fail();
    // A file system may report a full disk or a quota only here (close(2)).
    if (!out.close())
        fail();
    return error;
}

void AtomicFile::keepUnchanged(off_t from, off_t count)
{
    keepsUnchanged = true;
    ignoredFrom = from;
    ignoredEnd = from + count;
}

// Reads the new content back from its file, because the buffer has been flushed.
bool AtomicFile::isUnchanged() const
{
    struct stat before = {}, written = {};
    // O_NONBLOCK, in case the name has become a pipe meanwhile.
    const Descriptor old(::open(target.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!replaces || !old.isOpen() || ::fstat(old.get(), &before) != 0 || ::fstat(out.get(), &written) != 0 ||
        !S_ISREG(before.st_mode) || before.st_size != written.st_size)
        return false;
    std::vector<char> pieces(2 * kBufferSize);
    char* const left = pieces.data();
    char* const right = left + kBufferSize;
    for (off_t at = 0; at < written.st_size;) {
        const ssize_t size = ::pread(out.get(), left, kBufferSize, at);
        if (size <= 0 || ::pread(old.get(), right, static_cast<std::size_t>(size), at) != size)
            return false;
        const off_t from = std::clamp<off_t>(ignoredFrom - at, 0, size),
                    end = std::clamp<off_t>(ignoredEnd - at, 0, size);
        // The ignored range is copied from the other side, so that it compares equal.
        std::copy(left + from, left + end, right + from);
        if (!std::equal(left, left + size, right))
            return false;
        at += size;
    }
    return true;
}

bool AtomicFile::place()
{
    if (!temporary.exists())
        return overwrite();
    // Before the rename, or a crash could leave an empty file under the name.
    if (::fsync(out.get()) != 0)
        return false;
    // The rename fails over a mounted file, and in a sticky folder over a file of another user.
    return temporary.renameTo(target) || (replaces && overwrite());
}

bool AtomicFile::overwrite() const
{
    struct stat written = {};
    // Without O_TRUNC, so that a full disk leaves the old content.
    const Descriptor file(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
    return file.isOpen() && ::fstat(out.get(), &written) == 0 && resize(file.get(), written.st_size) &&
           copy(out.get(), file.get(), written.st_size) && ::fsync(file.get()) == 0;
}
