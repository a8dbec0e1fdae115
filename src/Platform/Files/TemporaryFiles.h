#pragma once

#include "Platform/Files/FileError.h"
#include "Platform/Text.h"

#include <memory>
#include <vector>

/// Files that exist as long as the object, readable by the user alone. They are deleted with it, and also when the
/// process is ended by SIGTERM, SIGINT or SIGHUP, or by exit().
class TemporaryFiles
{
public:
    TemporaryFiles();
    ~TemporaryFiles();
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;

    /// Makes a new file `folder`/QEL_*`suffix` that holds `bytes`. `name` becomes its name, also when it can't be made.
    FileCause add(const CString& folder, std::string_view bytes, CString& name, std::string_view suffix = ".xml");

    /// Deletes the files of all objects. Safe in a signal handler.
    static void deleteAll() noexcept;

private:
    struct File;
    static void forget(const File* file);

    std::vector<std::unique_ptr<File>> files;
};
