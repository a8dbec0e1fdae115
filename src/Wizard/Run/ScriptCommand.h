#pragma once

#include "Base/Text.h"

#include <vector>

class MsgBase;

/// The steps of the wizard since the importer was chosen, as a script needs them. The pages record them. Holds no
/// password. A step that starts again assigns a new object, so nothing of a former import stays.
struct ScriptCommand
{
    CString source; ///< a file or folder by its absolute name, or a data source
    CString basePath = {};
    CString sourceUser = {}; ///< the user of the data source; empty if it needed no logon
    std::vector<CString> tables = {};
    CString output = {};    ///< the file written, by its absolute name; empty if created in the broker
    CString address = {};   ///< of the broker
    CString user = {};      ///< of the broker; empty for the user that runs the program
    CString overwrite = {}; ///< the command line's word for the answers given; empty if nothing was asked
    std::vector<CString> furtherSources = {}; ///< files and folders read as one source with `source`
    std::vector<CString> catalogs = {};       ///< given to a full reading

    /// Returns the command line of `typeforge-import` that does the same with an importer of the same kind, quoted for
    /// a shell. `message` is the importer after the import: it knows the choices of the full reading.
    CString text(MsgBase& message) const;
};
