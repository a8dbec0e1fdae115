#include "Files/FileMessage.h"

#include "Resources/StringTable.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace {

struct CauseRow
{
    int error;
    FileCause cause;
};

// Each errno value has one cause, and a cause has one or more values. The first value of a cause stands for it in
// words.
constexpr CauseRow kCauses[] = {{ENOENT, FileCause::fileNotFound},      {ENOTDIR, FileCause::badPath},
                                {ENAMETOOLONG, FileCause::badPath},     {ELOOP, FileCause::badPath},
                                {EMFILE, FileCause::tooManyOpenFiles},  {ENFILE, FileCause::tooManyOpenFiles},
                                {EACCES, FileCause::accessDenied},      {EPERM, FileCause::accessDenied},
                                {EROFS, FileCause::accessDenied},       {EISDIR, FileCause::accessDenied},
                                {EBADF, FileCause::invalidFile},        {EIO, FileCause::hardInputOutput},
                                {ETXTBSY, FileCause::sharingViolation}, {EAGAIN, FileCause::lockViolation},
                                {EDEADLK, FileCause::lockViolation},    {ENOSPC, FileCause::diskFull},
                                {EDQUOT, FileCause::diskFull},          {EFBIG, FileCause::diskFull}};

} // namespace

FileCause fileCauseOf(int error)
{
    const auto* const row = std::ranges::find(kCauses, error, &CauseRow::error);
    const FileCause other = error == 0 ? FileCause::none : FileCause::generic;
    return row == std::end(kCauses) ? other : row->cause;
}

CString cantOpen(const CString& fileName, FileCause cause)
{
    return formatText(loadText(IDS_CANT_OPEN), fileName.c_str(), static_cast<unsigned>(cause));
}

// A cause covers several errno values. The name is tested again to find the right one; if the system now returns
// another cause or none, the cause's first value is used. Folders are tested for, because opening one succeeds and only
// reading it fails.
CString inWords(const CString& fileName, FileCause cause)
{
    std::error_code again;
    if (std::filesystem::is_directory(fileName, again))
        again = std::make_error_code(std::errc::is_a_directory);
    if (again && fileCauseOf(again.value()) == cause)
        return again.message();
    if (const auto* const row = std::ranges::find(kCauses, cause, &CauseRow::cause); row != std::end(kCauses))
        return std::generic_category().message(row->error);
    // Devices and pipes, and EOVERFLOW, for a file above the limit, have no cause of their own and count as generic.
    if (cause == FileCause::generic && std::filesystem::is_other(fileName, again))
        return "It is not a regular file";
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
