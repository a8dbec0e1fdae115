#include "Files/FileError.h"

#include <cerrno>

FileCause fileCauseOf(int error)
{
    switch (error) {
    case 0:
        return FileCause::none;
    case ENOENT:
        return FileCause::fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        return FileCause::badPath;
    case EMFILE:
    case ENFILE:
        return FileCause::tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return FileCause::accessDenied;
    case EBADF:
        return FileCause::invalidFile;
    case EIO:
        return FileCause::hardInputOutput;
    case ETXTBSY:
        return FileCause::sharingViolation;
    case EAGAIN:
    case EDEADLK:
        return FileCause::lockViolation;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return FileCause::diskFull;
    default:
        return FileCause::generic;
    }
}
