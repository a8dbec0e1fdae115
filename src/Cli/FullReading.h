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

/// The options of the full reading.
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

    /// Returns the first given option that requires a full reading; "" if there is none.
    const char* optionOfFull() const;

    /// Why an option has no effect on so many sources; "" if all have.
    CString mistakeFor(std::size_t sourceCount) const;
};

/// Adds --full and its options.
void addFullOptions(CLI::App& app, FullOptions& options);

/// Returns whether an importer reads by all rules of its language.
bool readsInFull(const MsgBase& importer);

/// Returns a new importer, configured by `options`. The caller owns it.
MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer);

/// Says which catalogues that the environment names can't be read, of a source read in full with catalogues.
void nameMissingCatalogs(const MsgBase& message, Diagnostics& diagnostics);

/// Says which entities have sections read, of a source all of whose sections were left out.
void nameSwitches(const MsgBase& message, Diagnostics& diagnostics);

/// If the full reading supports more of what the source uses, warns and says what.
void nameWayOut(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics);
