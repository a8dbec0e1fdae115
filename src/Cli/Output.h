#pragma once

#include "Files/AtomicFile.h"

#include <memory>

/// Where the command line writes: a file, which appears whole or not at all, or standard output.
class Output
{
public:
    /// "" and "-" stand for standard output, as does /dev/stdout, so that a file behind it is added to.
    explicit Output(const CString& fileName);

    /// Leaves a file as it is that already holds the bytes written; see AtomicFile::keepUnchanged().
    void keepUnchanged(off_t ignoredFrom = 0, off_t ignoredCount = 0);

    void write(std::string_view bytes);

    /// Whether people see what is written as it comes.
    bool isTerminal() const;

    /// Ends the output; `none` when all of it has arrived.
    FileCause commit();

    /// The same; false when something is lost, which has then been reported.
    bool finish();

private:
    CString fileName;
    std::unique_ptr<AtomicFile> file; // none for standard output
    FileCause cause = FileCause::none;
};

/// Reports that a file, "-" for standard output, can't be written.
void reportUnwritten(const CString& fileName, FileCause cause);
