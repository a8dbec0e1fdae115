#pragma once

#include "Platform/Text.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

/// A folder of this process, which goes with it.
class Folder
{
public:
    Folder()
    {
        CString pattern = (std::filesystem::temp_directory_path() / "typeforge-fuzz-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        path = pattern + "/";
    }
    ~Folder() { std::filesystem::remove_all(path); }

    CString path;
};

/// The documents of a schema stand behind one another, parted by a form feed: a.xsd, b.xsd and so on.
inline void writeDocuments(const CString& folder, std::string_view bytes)
{
    for (char name = 'a'; name <= 'd'; ++name) {
        const std::string_view document = bytes.substr(0, bytes.find('\f'));
        bytes.remove_prefix(std::min(document.size() + 1, bytes.size()));
        std::ofstream(folder + name + ".xsd", std::ios::binary) << document;
    }
}
