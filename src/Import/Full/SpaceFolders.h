#pragma once

#include "Import/Full/SourceTypes.h"

/// The folder of each namespace, without a backslash behind it, "" for the first one, which is none: what the caller
/// wants, else the last part of the URI that begins with a letter, joined to the parts behind it by "-". Where several
/// come to the same name, the parts before tell them apart.
std::vector<CString> foldersOf(std::span<const SourceTypes::Space> spaces);
