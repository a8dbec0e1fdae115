#include "Xml/XmlSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr std::size_t kSize = 1 << 16; // bytes

// Returns whether a byte is the first one of several that encode a character in UTF-8.
bool startsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0xC0;
}

} // namespace

XmlSource::XmlSource(const CString& fileName, std::size_t most) : buffer(new char[kSize])
{
    file.emplace(fileName, most);
    bytes = buffer.get();
    error = file->queryError();
    if (!error)
        fill(); // reports an unreadable file before anything is parsed
}

int XmlSource::read(char* out, int room)
{
    constexpr std::size_t lookAhead = 2; // a byte may be held back, and one is looked at
    if (filled - at <= lookAhead)
        fill();
    // A failure is returned only when all bytes before it have been passed on.
    if (at == filled)
        return error ? -1 : 0;
    // libxml2 2.9.14 takes the first byte of a character for a character if the piece before ended there inside of a
    // name (xmlCurrentChar). So no piece ends there, and the last byte that was read is held back until the file ends.
    std::size_t piece = std::min(static_cast<std::size_t>(room), filled - at - (isEnded ? 0 : 1));
    if (piece > 1 && at + piece < filled && startsCharacter(bytes[at + piece]))
        --piece;
    std::memcpy(out, bytes + at, piece);
    at += piece;
    return static_cast<int>(piece);
}

// Reads the next bytes of a file behind the remaining ones. Sets `isEnded` at the end or after an error.
void XmlSource::fill()
{
    if (isEnded)
        return;
    filled -= at;
    // At most two bytes, see read().
    std::memmove(buffer.get(), buffer.get() + at, filled);
    at = 0;
    const ssize_t got = file->read(buffer.get() + filled, kSize - filled);
    if (got < 0)
        error = errno;
    isEnded = got <= 0;
    const std::size_t added = isEnded ? 0 : static_cast<std::size_t>(got);
    filled += added;
    count += added;
}
