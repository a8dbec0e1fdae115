#include "Cli/OutputConflict.h"

#include "Cli/Arguments.h"
#include "Database/ConnectSettings.h"
#include "Files/FileMessage.h"
#include "Files/SameFile.h"
#include "Import/MsgUIDescriptor.h"
#include "Import/SourceReport.h"

#include <cstdint>

namespace {

std::vector<CString> outputsOf(const Arguments& arguments)
{
    std::vector<CString> outputs;
    for (const CString& file : {arguments.output, arguments.report.file, arguments.dependencies.file})
        if (!file.empty() && file != "-")
            outputs.push_back(file);
    return outputs;
}

// Returns the file of a data source whose driver reads a file; empty if the driver connects to a server.
CString databaseFile(const CString& source)
{
    const CString connection = source.find('=') == CString::npos ? "DSN=" + source : source;
    return hasDriver(connection, {"sqlite"}) ? settingOf(connection, "Database") : CString();
}

} // namespace

CString conflictingOutput(const Arguments& arguments, const MsgUIDescriptor& importer,
                          const std::vector<CString>& files)
{
    std::vector<CString> others = files;
    if (importer.querySource().readsTables)
        others = {databaseFile(files.front())};
    others.push_back(arguments.diff.document == "-" ? "" : arguments.diff.document);
    others.push_back(arguments.logon.passwordFile);
    others.push_back(arguments.sourceLogon.passwordFile);
    others.insert(others.end(), arguments.full.catalogs.begin(), arguments.full.catalogs.end());
    others.insert(others.end(), arguments.argumentFiles.begin(), arguments.argumentFiles.end());
    if (arguments.output.empty() || arguments.output == "-")
        others.push_back(kStandardOutput); // which may be redirected to a file
    if (arguments.report.file == "-")
        others.push_back("/dev/stderr");
    for (const CString& written : outputsOf(arguments)) {
        for (const CString& other : others)
            if (!other.empty() && (written != kStandardOutput || other != written) && isSameFile(written, other))
                return written;
        others.push_back(written);
    }
    return {};
}

CString outputThatWasRead(const Arguments& arguments, const MsgUIDescriptor& importer, const SourceReport& report)
{
    if (importer.querySource().readsTables)
        return {}; // the report names the data source, which is not a file
    for (const CString& written : outputsOf(arguments))
        for (std::uint32_t file = 0; file < report.fileCount(); ++file)
            if (const CString& name = report.fileNameOf(file); !name.empty() && isSameFile(written, name))
                return written;
    return {};
}
