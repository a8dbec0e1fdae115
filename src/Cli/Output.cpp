#include "Cli/Output.h"

#include "Cli/Diagnostics.h"
#include "Files/FileMessage.h"

#include <cerrno>
#include <cstdio>
#include <unistd.h>

Output::Output(const CString& fileName) : fileName(fileName)
{
    if (!fileName.empty() && fileName != "-" && fileName != kStandardOutput)
        file = std::make_unique<AtomicFile>(fileName, AtomicFile::Special::written);
}

void Output::write(std::string_view bytes)
{
    if (file)
        file->write(bytes);
    else if (cause == FileCause::none && std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size())
        cause = fileCauseOf(errno);
}

void Output::keepUnchanged(off_t ignoredFrom, off_t ignoredCount)
{
    if (file)
        file->keepUnchanged(ignoredFrom, ignoredCount);
}

bool Output::isTerminal() const
{
    return !file && ::isatty(STDOUT_FILENO) == 1;
}

FileCause Output::commit()
{
    if (file)
        return file->commit();
    if (cause == FileCause::none && std::fflush(stdout) != 0)
        cause = fileCauseOf(errno);
    return cause;
}

bool Output::finish()
{
    const FileCause end = commit();
    if (end != FileCause::none)
        reportWriteError(file ? fileName : "-", end);
    return end == FileCause::none;
}

void reportWriteError(const CString& fileName, FileCause cause)
{
    report("can't write " + (fileName == "-" ? "standard output" : fileName) + ": " + inWords(fileName, cause));
}
