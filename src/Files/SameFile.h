#pragma once

#include "Base/Text.h"

/// Returns the target of a symbolic link, also if nothing exists there yet, and any other name unchanged. In a cycle,
/// 40 links are followed, as in the kernel, and the last one is returned.
CString resolveLinks(const CString& fileName);

/// Returns whether both names lead to the same regular file, or would once it exists: through links, hard links and
/// folders, and in folders that ignore case. Returns false for pipes and devices. Protects a source from being
/// overwritten by the output of its own import.
bool isSameFile(const CString& one, const CString& other);
