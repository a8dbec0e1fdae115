#pragma once

#include "Platform/Files/AtomicFile.h"

#include <memory>

/// Where the command line writes: a file, which appears whole or not at all, or standard output.
class Output
{
public:
    /// "" stands for standard output, as does /dev/stdout, so that a file behind it is added to.
    explicit Output(const CString& fileName);

    void write(std::string_view bytes);

    /// Ends the output; `none` when all of it has arrived.
    FileCause commit();

private:
    std::unique_ptr<AtomicFile> file; // none for standard output
    FileCause cause = FileCause::none;
};
