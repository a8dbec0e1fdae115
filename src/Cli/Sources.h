#pragma once

#include "Base/Text.h"

#include <vector>

class Diagnostics;
class MsgUIDescriptor;

/// `sources` with each folder replaced by the files in it that are called like the sources of `importer` (null: of any
/// that reads in full), sorted by name; with `isRecursive` also by those in folders below, links to folders left out.
/// Throws std::runtime_error for a folder that can't be read or holds none.
std::vector<CString> withoutFolders(const std::vector<CString>& sources, const MsgUIDescriptor* importer,
                                    bool isRecursive);

/// The files that sources of the command line stand for: "-" is standard input. With `isReadTwice`, standard input and
/// pipes are copied, since they can be read only once.
std::vector<CString> filesOf(const std::vector<CString>& sources, bool isReadTwice);

/// The importer for a source, where the command line names none; null where that can't be told, which has then been
/// said.
MsgUIDescriptor* importerOf(const CString& file, Diagnostics& diagnostics);
