#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

/// A temporary folder, removed with the object and all that is in it. Throws if it can't be created.
class TempDir
{
public:
    TempDir()
    {
        if (!mkdtemp(folder.data()))
            throw std::runtime_error("no temporary folder");
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Returns the path of a file in the folder; without a name that of the folder, with a final slash.
    std::string path(const std::string& name = {}) const { return folder + "/" + name; }

    /// Writes a file, creating its folders, and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    /// Returns the contents of a file; empty if it can't be read.
    static std::string read(const std::string& file)
    {
        std::ostringstream bytes;
        bytes << std::ifstream(file, std::ios::binary).rdbuf();
        return bytes.str();
    }

private:
    std::string folder = std::filesystem::temp_directory_path() / "typeforge-test-XXXXXX";
};
