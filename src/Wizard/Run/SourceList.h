#pragma once

#include "Base/Text.h"

#include <vector>

class MsgUIDescriptor;

/// The files and folders that the text of a file field names. Several stand in double quotes, with a blank between
/// them and a quote inside a name doubled; every other text, and the name of an existing file, is one name.
std::vector<CString> sourcesIn(const CString& text);

/// The text that names these; "" for none.
CString textOfSources(const std::vector<CString>& names);

/// Whether an importer, or the full reading of its kind of source, reads several files as one source.
bool readsSeveral(const MsgUIDescriptor& importer);

bool isFolder(const CString& name);
