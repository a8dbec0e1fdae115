#pragma once

#include "Base/Text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

/// A temporary folder of this process, in memory if the system has /dev/shm; removed at exit. A target makes one and
/// reuses it, because creating files took much of the time of an execution.
class Folder
{
public:
    Folder()
    {
        const std::filesystem::path shared = "/dev/shm";
        const auto parent = std::filesystem::exists(shared) ? shared : std::filesystem::temp_directory_path();
        CString pattern = (parent / "typeforge-fuzz-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        path = pattern + "/";
    }
    ~Folder() { std::filesystem::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// Sets the contents of a file. An unchanged file isn't written again, so no other code may write it.
    void write(const CString& name, std::string_view bytes)
    {
        const auto [known, isNew] = written.try_emplace(name, bytes);
        if (!isNew && known->second == bytes)
            return;
        known->second = bytes;
        std::ofstream(path + name, std::ios::binary) << bytes;
    }

    /// Splits documents at form feeds, and writes them as a, b, c and d with `suffix`; those that are missing become
    /// empty. So one input holds a source and the documents that it refers to by these names. XML can't contain a form
    /// feed.
    void writeDocuments(const CString& suffix, std::string_view bytes)
    {
        for (char name = 'a'; name <= 'd'; ++name) {
            const std::string_view document = bytes.substr(0, bytes.find('\f'));
            bytes.remove_prefix(std::min(document.size() + 1, bytes.size()));
            write(name + suffix, document);
        }
    }

    /// Removes all files, also those that other code has written.
    void clear()
    {
        for (const auto& entry : std::filesystem::directory_iterator(path))
            std::filesystem::remove_all(entry);
        written.clear();
    }

    /// The folder with a final slash.
    CString path;

private:
    std::map<CString, CString> written;
};
