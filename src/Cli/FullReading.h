#pragma once

#include "Base/Text.h"

class Diagnostics;
class MsgBase;
class MsgUIDescriptor;
namespace CLI {
class App;
}

/// How the command line wants a source read in full.
struct FullOptions
{
    bool isWanted = false;
    CString root; ///< the main type; empty: the source's own choice
};

/// Adds --full and the option that goes with it.
void addFullOptions(CLI::App& app, FullOptions& options);

/// A new importer for the reading as it is wanted, owned by the caller.
MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer);

/// Says in one line that the importer's full reading knows more of the source, and of what; nothing when it doesn't.
void nameWayOut(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics);
