#pragma once

#include "Base/Text.h"

#include <vector>

class MsgUIDescriptor;

/// Returns the importer of the sources in a folder, which importerFor() recognises. Files that belong to other sources
/// don't count: the schemas beside a WSDL, messages beside schemas, documents of types beside any other. `isRecursive`
/// includes subfolders, but no links to folders. Throws std::runtime_error if there is none, or if several have
/// sources.
MsgUIDescriptor& importerForFolder(const CString& folder, bool isRecursive);

/// Returns `sources` with each folder replaced by the source files in it, sorted by name. These are the files with a
/// suffix of `importer`; null stands for importerForFolder(). Throws std::runtime_error if a folder can't be read or
/// has no source. Other sources stay in the list, whether they exist or not.
std::vector<CString> withoutFolders(const std::vector<CString>& sources, const MsgUIDescriptor* importer,
                                    bool isRecursive);

/// Returns the name of the set `files`, the result of withoutFolders() for `given`: the folder's name if a single
/// folder with several files was given. Returns "" otherwise; the set is then named after its main type.
CString nameOfSet(const std::vector<CString>& given, const std::vector<CString>& files);
