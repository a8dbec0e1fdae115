#pragma once

#include "Base/Text.h"

/// The size limit, in bytes, of a file that a source names, and of JSON and YAML. Other files that the user names may
/// have any size.
inline constexpr std::size_t kMaxNamedFile = 64 << 20;

/// The numbers of the causes in message 2210. Some have no errno value and never occur.
enum class FileCause : unsigned
{
    none = 0,
    generic = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentFolder = 7,
    folderFull = 8,
    badSeek = 9,
    hardInputOutput = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14
};

/// Returns the cause of an errno value: `none` for 0, `generic` for a value without a number of its own.
FileCause fileCauseOf(int error);

/// Returns message 2210: the file can't be opened, with the number of the cause. inWords() returns the details below
/// it.
CString cantOpen(const CString& fileName, FileCause cause);

/// Returns a cause in the words of the system, without the file's name. The file is tested again, so call it directly
/// after the failure.
CString inWords(const CString& fileName, FileCause cause);
CString inWords(int error); ///< for an errno value

/// The names that stand for standard input and output. Standard input has its name in /proc, which can be opened again
/// and then reads a regular file from its start. shownFile() returns the name for the user: "-" for standard input.
inline constexpr char kStandardInput[] = "/proc/self/fd/0";
inline constexpr char kStandardOutput[] = "/dev/stdout";
CString shownFile(const CString& fileName);

/// Returns a place as diagnostics write it: "FILE:LINE:COL". Line and column are left out if they are 0, and the result
/// is empty if the file name is.
CString placeInWords(const CString& fileName, std::size_t line, std::size_t column);
