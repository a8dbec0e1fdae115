#pragma once

#include "Base/Text.h"

#include <vector>

class Diagnostics;
class MsgUIDescriptor;

/// Returns the files to open for the sources of the command line; "-" is standard input. With `isReadTwice`, standard
/// input and pipes are copied, because they can be read only once. Throws std::runtime_error if that fails. The result
/// has as many names as `sources`, in their order.
std::vector<CString> filesOf(const std::vector<CString>& sources, bool isReadTwice);

/// Returns the importer for a source, chosen by its content and name. Null if there is none, which has been reported.
/// Reads the beginning of the file, so a pipe must have been copied. A note names the choice.
MsgUIDescriptor* importerOf(const CString& file, Diagnostics& diagnostics);
