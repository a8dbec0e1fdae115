#include "Xml/XmlSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr std::size_t kSize = 1 << 16;

} // namespace

XmlSource::XmlSource(const CString& fileName, std::size_t most) : buffer(new char[kSize])
{
    file.emplace(fileName, most);
    error = file->queryError();
    if (!error)
        fill(); // reports an unreadable file before anything is parsed
}

int XmlSource::read(char* out, int room)
{
    if (at == filled && !fill())
        return error ? -1 : 0;
    const std::size_t piece = std::min(static_cast<std::size_t>(room), filled - at);
    std::memcpy(out, bytes + at, piece);
    at += piece;
    return static_cast<int>(piece);
}

bool XmlSource::fill()
{
    if (!file)
        return false;
    const ssize_t got = file->read(buffer.get(), kSize);
    if (got < 0)
        error = errno;
    bytes = buffer.get();
    at = 0;
    filled = got > 0 ? static_cast<std::size_t>(got) : 0;
    count += filled;
    return got > 0;
}
