#pragma once

#include "Files/AtomicFile.h"

#include <memory>

/// An output of the command: a file that is replaced as a whole or not at all, or standard output. An object that is
/// destroyed without finish() leaves an older file as it was.
class Output
{
public:
    /// "" and "-" are standard output. So is /dev/stdout: if it is redirected to a file, output goes into the open
    /// file instead of replacing it.
    explicit Output(const CString& fileName);

    /// Keeps a file unchanged if it already holds the bytes written; see AtomicFile::keepUnchanged(). Build tools that
    /// compare times then don't rebuild its dependents. Has no effect on standard output.
    void keepUnchanged(off_t ignoredFrom = 0, off_t ignoredCount = 0);

    /// Appends bytes. After a failure it does nothing; finish() reports the first failure.
    void write(std::string_view bytes);

    /// Passes on at once what has been written to standard output.
    void flush();

    /// Returns whether standard output is a terminal, read by people. False for a file.
    bool isTerminal() const { return isOnTerminal; }

    /// Ends the output. Returns false on failure, which has been reported.
    bool finish();

private:
    CString fileName;
    std::unique_ptr<AtomicFile> file; // null for standard output
    bool isOnTerminal;
    int error = 0; // the errno value of the first failure; of a file once it is finished
};
