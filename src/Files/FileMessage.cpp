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

// A cause covers several errno values. The name is tested again to find the right one; if the system now returns
// another cause or none, the cause's first value is used.
CString inWords(const CString& fileName, FileCause cause)
{
    constexpr int errors[] = {ENOENT, ENOTDIR, EMFILE, EACCES, EBADF, EIO, ETXTBSY, EAGAIN, ENOSPC};
    std::error_code again;
    if (std::filesystem::is_directory(fileName, again))
        again = std::make_error_code(std::errc::is_a_directory);
    if (again && fileCauseOf(again.value()) == cause)
        return again.message();
    const auto* const error = std::find_if(std::begin(errors), std::end(errors),
                                           [cause](int candidate) { return fileCauseOf(candidate) == cause; });
    if (error != std::end(errors))
        return std::generic_category().message(*error);
    const std::uintmax_t size = std::filesystem::file_size(fileName, again);
    return cause == FileCause::generic && !again && size > kMaxNamedFile ? inWords(EOVERFLOW)
                                                                         : "The system refused access";
}

CString inWords(int error)
{
    static_assert(kMaxNamedFile == 64 << 20);
    return error == EOVERFLOW ? "It is larger than 64 MB, the limit for such a file"
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
