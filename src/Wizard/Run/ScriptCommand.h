#pragma once

#include "Base/Text.h"

#include <vector>

class MsgBase;

/// What the wizard has done since the importer was chosen, as far as a script would have to say it. The pages note it;
/// a password is none of it.
struct ScriptCommand
{
    CString source; ///< a file or a folder by its name from the root, or a data source
    CString basePath = {};
    CString sourceUser = {}; ///< who was logged on to the data source; empty: nobody had to be
    std::vector<CString> tables = {};
    CString output = {};    ///< the file that was written, by its name from the root; empty: created in the broker
    CString address = {};   ///< of the broker
    CString user = {};      ///< of the broker; empty: the user that runs the program
    CString overwrite = {}; ///< the word of the command line for the answers that were given; empty: nothing was asked
    std::vector<CString> furtherSources = {}; ///< files and folders that are read as one source with `source`

    /// The command line of `typeforge-import` that does the same with an importer of the same kind, as a shell takes
    /// it.
    CString text(const MsgBase& message) const;
};

/// The name of a file from the root, whatever the current folder is later.
CString absoluteName(const CString& fileName);
