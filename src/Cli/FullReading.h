#pragma once

#include "Platform/Text.h"

class FullMessage;
class MsgBase;
class MsgUIDescriptor;
namespace CLI {
class App;
}

/// How the command line wants a source read in full.
struct FullOptions
{
    bool isWanted = false;
    CString root;   ///< the main type; empty: the source's own choice
    CString report; ///< where what wasn't carried over goes; empty: nowhere, "-": to standard error
};

/// Adds --full and the options that go with it.
void addFullOptions(CLI::App& app, FullOptions& options);

/// Throws CLI::ParseError when a full reading is wanted of an importer that has none.
void checkFullOptions(const FullOptions& options, const MsgUIDescriptor& importer);

/// A new importer for the full reading as it is wanted, owned by the caller.
FullMessage* createFull(const FullOptions& options, const MsgUIDescriptor& importer);

/// Writes what `message` did not carry over to where that is wanted. False when it can't be written, which has then
/// been reported.
bool writeReport(const FullMessage& message, const FullOptions& options);

/// Says in one line that the importer's full reading knows more of the source, and of what; nothing when it doesn't.
void nameWayOut(const MsgUIDescriptor& importer, const CString& source);
