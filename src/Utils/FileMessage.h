#pragma once

#include "Platform/Files/FileError.h"
#include "Platform/Text.h"

/// Message 2210: that a file can't be opened, with the number of the cause.
CString cantOpen(const CString& fileName, FileCause cause);
