#pragma once

#include "Base/Text.h"

/// Returns the target of a symbolic link, also if nothing exists there yet, and any other name unchanged. A link in a
/// circle is followed 40 times, like in the kernel, and the last link returned.
CString resolveLinks(const CString& fileName);

/// Returns whether both names lead to the same regular file, or would once it exists: through links, hard links and
/// folders, and in folders that ignore case. Returns false for pipes and devices.
bool isSameFile(const CString& one, const CString& other);
