#pragma once

#include "Base/Text.h"

#include <vector>

class Diagnostics;
class MsgUIDescriptor;

/// The files that sources of the command line stand for: "-" is standard input. With `isReadTwice`, standard input and
/// pipes are copied, since they can be read only once.
std::vector<CString> filesOf(const std::vector<CString>& sources, bool isReadTwice);

/// The importer for a source, where the command line names none; null where that can't be told, which has then been
/// said.
MsgUIDescriptor* importerOf(const CString& file, Diagnostics& diagnostics);
