#pragma once

#include "Base/Text.h"

#include <map>
#include <vector>

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
    std::vector<CString> roots;                        ///< the main types; empty: the source's own choice
    CString layout;                                    ///< "main", "namespace", or "" for what is usual
    std::map<CString, CString> folders;                ///< by namespace
    bool mergesEqual = false;                          ///< types of several namespaces
    CString name;                                      ///< of the whole; "": the main type's
    std::vector<CString> catalogs;                     ///< files
    std::vector<std::pair<CString, CString>> entities; ///< of parameters, with their values

    /// The first option that is given and wants a full reading; "" if there is none.
    const char* optionOfFull() const;

    /// Why an option has no effect on so many sources; "" if all have.
    CString mistakeFor(std::size_t sourceCount) const;
};

/// Adds --full and the options that go with it.
void addFullOptions(CLI::App& app, FullOptions& options);

/// Whether an importer reads by all rules of its language.
bool readsInFull(const MsgBase& importer);

/// A new importer for the reading as it is wanted, owned by the caller.
MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer);

/// Says which catalogues that the environment names can't be read, of a source read in full with catalogues.
void nameMissingCatalogs(const MsgBase& message, Diagnostics& diagnostics);

/// Says which entities have sections read, of a source all of whose sections were left out.
void nameSwitches(const MsgBase& message, Diagnostics& diagnostics);

/// Says in one line that the importer's full reading knows more of the source, and of what; nothing when it doesn't.
void nameWayOut(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics);
