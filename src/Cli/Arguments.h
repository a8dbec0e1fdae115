#pragma once

#include "Cli/CreateTypes.h"
#include "Cli/DependencyFile.h"
#include "Cli/Diagnostics.h"
#include "Cli/Diff.h"
#include "Cli/FullReading.h"
#include "Cli/ReportFile.h"

#include <vector>

class MsgUIDescriptor;

/// What the command line asks for.
struct Arguments
{
    MsgUIDescriptor* importer = nullptr; ///< null: the source tells
    std::vector<CString> sources;        ///< files, "-" for standard input; for tables a data source
    bool isRecursive = false;            ///< folders as sources stand for those below, too
    CString basePath;                    ///< as given; only when hasBasePath
    bool hasBasePath = false;
    std::vector<CString> tables; ///< the tables to import; empty: all
    CString output;              ///< empty: standard output
    bool list = false;
    bool json = false; ///< the list, or the differences
    bool graph = false;
    bool pretty = false; ///< the one type, indented
    CString type;        ///< the one type to write; only when hasType
    bool hasType = false;
    bool always = false; ///< write a file also if it holds the same already
    bool allowEmpty = false;
    Verbosity verbosity = Verbosity::normal;
    FullOptions full;
    DiffOptions diff;
    DependencyOptions dependencies;
    ReportOptions report;
    LogonOptions logon;
    LogonOptions sourceLogon = {"", "", "--source-password-file", " at the database"};
    CreateOptions create;

    /// Whether there is a broker to log on to.
    bool usesBroker() const { return !create.address.empty() || diff.isRepository(); }

    /// As whom the data source of tables is opened.
    const LogonOptions& databaseLogon() const
    {
        return sourceLogon.user.empty() && !usesBroker() ? logon : sourceLogon;
    }
};

/// Reads the command line. When there is nothing to import (help, version, a mistake) everything that there is to say
/// has been said and `exitStatus` is set: kDone, or kUsage for a mistake; the answer is then false.
bool parseArguments(int argc, char** argv, Arguments& arguments, int& exitStatus);

/// Why the command line is invalid for this importer; "" if it is valid.
CString mistakeFor(const Arguments& arguments, const MsgUIDescriptor& importer);

/// Reports a mistake on the command line; answers kUsage.
int reportMistake(std::string_view mistake);
