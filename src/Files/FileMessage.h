#pragma once

#include "Base/Text.h"
#include "Files/FileError.h"

/// Message 2210: that a file can't be opened, with the number of the cause.
CString cantOpen(const CString& fileName, FileCause cause);

/// The same cause in the words of the system, without the file's name.
CString inWords(const CString& fileName, FileCause cause);
CString inWords(int error); ///< of an errno value

/// The files that stand for standard input and output, and how the first is shown.
inline constexpr char kStandardInput[] = "/proc/self/fd/0";
inline constexpr char kStandardOutput[] = "/dev/stdout";
CString shownFile(const CString& fileName);

/// A place as diagnostics write it: "FILE:LINE:COL", as far as it is known; "" if nothing is.
CString placeInWords(const CString& fileName, std::size_t line, std::size_t column);
