#pragma once

#include "Base/Text.h"

#include <vector>

class MsgUIDescriptor;

/// `sources` with each folder replaced by the files in it that are called like the sources of `importer` (null: of any
/// that reads in full, or if there are WSDLs of these alone), sorted by name; with `isRecursive` also by those in
/// folders below, links to folders left out. Throws std::runtime_error for a folder that can't be read or holds none.
std::vector<CString> withoutFolders(const std::vector<CString>& sources, const MsgUIDescriptor* importer,
                                    bool isRecursive);

/// Returns the name of the set `files`, the result of withoutFolders() for `given`: the folder's name if a single
/// folder with several files was given; else "", so that the set is named after its main type.
CString nameOfSet(const std::vector<CString>& given, const std::vector<CString>& files);
