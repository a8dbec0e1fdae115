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

/// The options of the full reading. With an importer that always reads in full, they apply without `isWanted`.
struct FullOptions
{
    bool isWanted = false;
    std::vector<CString> roots;                        ///< the main types; empty: the source's own choice
    CString layout;                                    ///< "main", "namespace", or "" for the default
    std::map<CString, CString> folders;                ///< by namespace
    bool mergesEqual = false;                          ///< merge equal types of several namespaces
    CString name;                                      ///< of the document; "": the main type's
    std::vector<CString> catalogs;                     ///< files
    std::vector<std::pair<CString, CString>> entities; ///< of parameters, with their values

    /// Returns the first given option that requires a full reading; "" if there is none. --entity is not among them,
    /// because the parser already requires --full for it.
    const char* optionOfFull() const;

    /// Returns why an option has no effect on this number of sources; "" if all have one.
    CString usageErrorFor(std::size_t sourceCount) const;
};

/// Adds --full and its options.
void addFullOptions(CLI::App& app, FullOptions& options);

/// Returns a new importer, configured by `options`. The caller owns it. A literal importer ignores the options;
/// usageErrorFor() has refused them.
MsgBase* createImporter(const FullOptions& options, const MsgUIDescriptor& importer);

/// After a full reading, warns about catalogues of the environment that can't be read, and about entities that would
/// include sections if all were left out. If the import succeeded, also warns about options without effect on the
/// source.
void adviseOnFullReading(const MsgBase& message, Diagnostics& diagnostics);

/// Warns if the source uses constructs that only the full reading supports, and names them. Does nothing if the
/// importer has no full reading besides its literal one. Opens the source again.
void suggestFullReading(const MsgUIDescriptor& importer, const CString& source, Diagnostics& diagnostics);
