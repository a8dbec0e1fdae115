#pragma once

#include "Base/Text.h"

#include <vector>

class MsgUIDescriptor;

/// Returns the files and folders that the text of a file field names. Several names are in double quotes, separated by
/// blanks, with a quote inside a name doubled. Any other text, and the name of an existing file, is one name. Returns
/// at least one name, which may be empty.
std::vector<CString> sourcesIn(const CString& text);

/// The same by absolute names; nothing for an empty text.
std::vector<CString> absoluteSourcesIn(const CString& text);

/// Returns the text for these names, from which sourcesIn() reads the same names; empty for none.
CString textOfSources(const std::vector<CString>& names);

/// Returns whether an importer, or the full reading of its kind of source, reads several files as one source. Reads no
/// source.
bool readsSeveral(const MsgUIDescriptor& importer);

/// Returns a file's absolute name, which does not depend on the current folder. Links are not followed. The name is
/// returned as it is if the current folder is gone.
CString absoluteName(const CString& fileName);

/// Returns whether a name is that of a folder.
bool isFolder(const CString& name);
