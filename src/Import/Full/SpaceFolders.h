#pragma once

#include "Import/Full/SourceTypes.h"

/// Returns the folder of each namespace, without a backslash at the end; "" for the first one, which stands for no
/// namespace. It is the folder set by the caller, else the last part of the URI that begins with a letter, joined to
/// the parts after it by "-". If several would be equal, preceding parts are added, and then numbers. The result
/// depends on all namespaces of an import, and only the numbers depend on their order.
std::vector<CString> foldersOf(std::span<const SourceTypes::Space> spaces);
