#pragma once

#include "Base/Text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

/// A folder of this process in memory, where the system has one there, which goes with it.
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

    /// Gives a file these contents. A file that has them already isn't touched, so nobody else may write it.
    void write(const CString& name, std::string_view bytes)
    {
        const auto [known, isNew] = written.try_emplace(name, bytes);
        if (!isNew && known->second == bytes)
            return;
        known->second = bytes;
        std::ofstream(path + name, std::ios::binary) << bytes;
    }

    /// Documents stand behind one another, parted by a form feed: a, b, c and d, and `suffix`.
    void writeDocuments(const CString& suffix, std::string_view bytes)
    {
        for (char name = 'a'; name <= 'd'; ++name) {
            const std::string_view document = bytes.substr(0, bytes.find('\f'));
            bytes.remove_prefix(std::min(document.size() + 1, bytes.size()));
            write(name + suffix, document);
        }
    }

    CString path;

private:
    std::map<CString, CString> written;
};
