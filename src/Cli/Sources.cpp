#include "Cli/Sources.h"

#include "Cli/Diagnostics.h"
#include "Files/Descriptor.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Files/KeptPipe.h"
#include "Import/Registry/ImporterChoice.h"

#include <cerrno>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Returns whether kStandardInput can be opened by its readers, `twice` or once. A regular file can be opened again from
// its start; a pipe can be read once; a socket can't be opened, nor can a file that only another user may open. The
// offset must be 0, because opening /proc/self/fd/0 anew starts at the beginning, which the user may have skipped.
bool canBeOpened(bool twice)
{
    struct stat state = {};
    if (::fstat(STDIN_FILENO, &state) != 0)
        return true; // closed: opening it fails with its own error
    if (::access(kStandardInput, R_OK) != 0)
        return false;
    if (S_ISREG(state.st_mode))
        return ::lseek(STDIN_FILENO, 0, SEEK_CUR) == 0;
    return !twice && !S_ISSOCK(state.st_mode);
}

// Replaces standard input by an unnamed file that holds all of its data.
void copyStandardInput()
{
    const Descriptor copy(copyToFile(STDIN_FILENO));
    if (!copy.isOpen() || ::dup2(copy.get(), STDIN_FILENO) < 0)
        throw std::runtime_error("can't copy standard input: " + inWords(errno));
}

// Returns whether a source is a connection string of ODBC, which has a "=" and is no file.
bool isConnectionString(const CString& source)
{
    return source.find('=') != CString::npos && testReadable(source) == FileCause::fileNotFound;
}

} // namespace

std::vector<CString> filesOf(const std::vector<CString>& sources, bool isReadTwice)
{
    std::vector<CString> files;
    for (const CString& source : sources) {
        if (source == "-" && !canBeOpened(isReadTwice))
            copyStandardInput();
        else if (isReadTwice && isPipe(source) && !keepPipe(source))
            throw std::runtime_error("can't copy " + source + ": " + inWords(errno));
        files.push_back(source == "-" ? kStandardInput : source);
    }
    return files;
}

MsgUIDescriptor* importerOf(const CString& file, Diagnostics& diagnostics)
{
    MsgUIDescriptor* const importer = isConnectionString(file) ? importerNamed("odbc") : importerFor(file);
    if (importer) {
        diagnostics.note(CString("read as a source for ") + importer->querySource().word, file);
    } else {
        const FileCause cause = testReadable(file);
        const std::string_view foreign = foreignAdvice(file);
        const bool isReadable = cause == FileCause::none || cause == FileCause::generic;
        diagnostics.add({file, !isReadable       ? inWords(file, cause)
                               : foreign.empty() ? "its importer is unknown; name one before the source"
                                                 : CString(foreign)});
    }
    return importer;
}
