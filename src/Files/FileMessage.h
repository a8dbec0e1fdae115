#pragma once

#include "Base/Text.h"
#include "Files/FileError.h"

/// Returns message 2210: the file can't be opened, with the number of the cause.
CString cantOpen(const CString& fileName, FileCause cause);

/// Returns a cause in the words of the system, without the file's name.
CString inWords(const CString& fileName, FileCause cause);
CString inWords(int error); ///< for an errno value

/// The names that stand for standard input and output. shownFile() returns the name for the user: "-" for standard
/// input.
inline constexpr char kStandardInput[] = "/proc/self/fd/0";
inline constexpr char kStandardOutput[] = "/dev/stdout";
CString shownFile(const CString& fileName);

/// Returns a place as diagnostics write it: "FILE:LINE:COL". Line and column are left out if they are 0, and the result
/// is empty if the file name is.
CString placeInWords(const CString& fileName, std::size_t line, std::size_t column);
