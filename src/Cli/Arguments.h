#pragma once

#include "Cli/CreateTypes.h"
#include "Cli/DependencyFile.h"
#include "Cli/Diagnostics.h"
#include "Cli/Diff.h"
#include "Cli/FullReading.h"
#include "Cli/ReportFile.h"

#include <optional>
#include <vector>

class MsgUIDescriptor;

/// The options and sources of a command line. Each unit of the command defines the options of its own subject, adds
/// them to the parser and checks them. parseArguments() checks options of different units against each other.
struct Arguments
{
    MsgUIDescriptor* importer = nullptr; ///< null: chosen by the source
    std::vector<CString> sources;        ///< files, "-" for standard input; for odbc a data source
    bool isRecursive = false;            ///< folders as sources include their subfolders
    std::vector<CString> argumentFiles;  ///< of "@FILE"
    std::optional<CString> basePath;     ///< as given; nothing: the importer's
    std::vector<CString> tables;         ///< names of tables to import; empty: all
    CString output;                      ///< empty: standard output
    bool list = false;                   ///< write the list of types instead
    bool json = false;                   ///< for the list or the differences
    bool graph = false;                  ///< write the graph of the types instead
    bool pretty = false;                 ///< indent the document of `type`
    CString type;                        ///< the only type to write; empty: all
    bool always = false;                 ///< write the file even if nothing changed
    bool allowEmpty = false;             ///< an import without types succeeds
    Verbosity verbosity = Verbosity::normal;
    FullOptions full;
    DiffOptions diff;
    DependencyOptions dependencies;
    ReportOptions report;
    LogonOptions logon; ///< at the broker; at the database if no broker needs it
    LogonOptions sourceLogon = {"", "", "--source-password-file", " at the database"};
    CreateOptions create; ///< creates types instead of writing them

    /// Returns the exit status of a failure: kFailed, but kUsage with --diff, because 1 then means a difference.
    /// diff(1) returns 2 for trouble.
    ExitStatus failedStatus() const { return diff.document.empty() ? kFailed : kUsage; }

    /// Returns whether the command needs a logon to a broker.
    bool usesBroker() const { return !create.address.empty() || diff.isRepository(); }

    /// Returns the logon for a data source of tables: --source-user, else --user if no broker needs that.
    const LogonOptions& databaseLogon() const
    {
        return sourceLogon.user.empty() && !usesBroker() ? logon : sourceLogon;
    }
};

/// Parses the command line. Returns false if there is nothing to import. The output or error has then been written, and
/// `exitStatus` is set: kDone after --help, --version and the like, kNotWritten if their output failed, kUsage for an
/// invalid command line.
bool parseArguments(int argc, char** argv, Arguments& arguments, int& exitStatus);

/// Returns why the command line is invalid for this importer; empty if it is valid. Called as soon as the importer is
/// known: by parseArguments() if the command line names it, else by runImport() when the source has chosen it.
CString usageErrorFor(const Arguments& arguments, const MsgUIDescriptor& importer);

/// Reports an invalid command line to standard error, with a pointer to --help. Returns kUsage.
int reportUsageError(std::string_view usageError);
