#pragma once

#include "Base/Text.h"

/// Where a name leads when it is a symbolic link, also when nothing is there yet. A link in a circle comes back as it
/// is.
CString behindLinks(const CString& fileName);

/// True if both names lead to one regular file, or would once it is there: whatever links, hard links and folders the
/// names take, and in folders that ignore case. Pipes and devices are no files.
bool isSameFile(const CString& one, const CString& other);
