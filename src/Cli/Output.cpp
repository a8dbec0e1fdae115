#include "Cli/Output.h"

#include "Cli/Diagnostics.h"
#include "Cli/ProgressLine.h"
#include "Files/FileMessage.h"

#include <cerrno>
#include <cstdio>
#include <unistd.h>

Output::Output(const CString& fileName) : fileName(fileName)
{
    if (!fileName.empty() && fileName != "-" && fileName != kStandardOutput)
        file = std::make_unique<AtomicFile>(fileName, AtomicFile::Special::written);
    isOnTerminal = !file && ::isatty(STDOUT_FILENO) == 1;
}

void Output::write(std::string_view bytes)
{
    if (isOnTerminal)
        ProgressLine::end();
    if (file)
        file->write(bytes);
    else if (error == 0 && std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size())
        error = errno;
}

void Output::flush()
{
    if (!file && error == 0 && std::fflush(stdout) != 0)
        error = errno;
}

void Output::keepUnchanged(off_t ignoredFrom, off_t ignoredCount)
{
    if (file)
        file->keepUnchanged(ignoredFrom, ignoredCount);
}

// Flushes standard output, because a full disk or a closed pipe would otherwise be noticed at the end of the process,
// after its exit status is decided.
bool Output::finish()
{
    flush();
    if (file)
        error = file->commit();
    if (error != 0)
        report("can't write " + (file ? fileName : "standard output") + ": " + inWords(error));
    return error == 0;
}
