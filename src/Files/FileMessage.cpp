#include "Files/FileMessage.h"

#include "Files/File.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

CString cantOpen(const CString& fileName, FileCause cause)
{
    return formatText(loadText(IDS_CANT_OPEN), fileName.c_str(), static_cast<unsigned>(cause));
}

// A cause stands for several errno values, and the first one's text is used. A folder is the exception, because it can
// be recognised.
CString inWords(const CString& fileName, FileCause cause)
{
    constexpr int errors[] = {ENOENT, ENOTDIR, EMFILE, EACCES, EBADF, EIO, ETXTBSY, EAGAIN, ENOSPC};
    std::error_code ignored;
    if (cause == FileCause::accessDenied && std::filesystem::is_directory(fileName, ignored))
        return std::generic_category().message(EISDIR);
    const auto* const error = std::find_if(std::begin(errors), std::end(errors),
                                           [cause](int candidate) { return fileCauseOf(candidate) == cause; });
    if (error != std::end(errors))
        return std::generic_category().message(*error);
    const std::uintmax_t size = std::filesystem::file_size(fileName, ignored);
    return cause == FileCause::generic && !ignored && size > kMaxNamedFile ? inWords(EOVERFLOW)
                                                                           : "The system refused access";
}

CString inWords(int error)
{
    static_assert(kMaxNamedFile == 64 << 20);
    return error == EOVERFLOW ? "It is larger than 64 MB, the limit for a file that a source names"
                              : std::generic_category().message(error);
}

CString shownFile(const CString& fileName)
{
    return fileName == kStandardInput ? "-" : fileName;
}

CString placeInWords(const CString& fileName, std::size_t line, std::size_t column)
{
    CString place = shownFile(fileName);
    if (!place.empty() && line > 0)
        place += ":" + std::to_string(line) + (column > 0 ? ":" + std::to_string(column) : "");
    return place;
}
