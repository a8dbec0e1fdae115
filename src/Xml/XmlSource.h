#pragma once

#include "Files/File.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

/// The bytes of a document: of a text, or of a file, which is read in larger pieces than libxml2 asks for. libxml2 asks
/// for 4,000 bytes at a time, and each request would be a system call.
class XmlSource
{
public:
    /// Opens a file, of which at most `most` bytes are read, and reads its first piece; see queryError().
    XmlSource(const CString& fileName, std::size_t most);

    /// The text must live as long as the source.
    explicit XmlSource(std::string_view document) :
        bytes(document.data()), filled(document.size()), count(document.size()), isEnded(true)
    {}

    /// Reads as read(2) does. Calls the system only if the last piece is nearly used up. May return fewer bytes than
    /// are there.
    int read(char* out, int room);

    /// Returns the errno value of a failure, or 0.
    int queryError() const { return error; }

    /// Returns the number of bytes read so far. The parser may have consumed fewer, by up to a buffer.
    std::size_t queryCount() const { return count; }

    /// Returns the size in bytes that the system reports; 0 for a pipe.
    std::size_t querySize() const { return file ? file->querySize() : 0; }

private:
    void fill();

    std::optional<InputFile> file; // empty for a text
    int error = 0;
    // `buffer` holds the file's last piece. `at` and `filled` are offsets into `bytes`, which is the buffer or the
    // text.
    std::unique_ptr<char[]> buffer;
    const char* bytes = nullptr;
    std::size_t at = 0;
    std::size_t filled = 0;
    std::size_t count = 0;
    bool isEnded = false; // nothing is left to read after the bytes
};
