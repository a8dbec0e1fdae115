#include "Database/DriverMessage.h"

#include "Database/DBException.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>

// A message is its length and its bytes. A number takes four bytes, a text its length in eight and its bytes, an
// optional text a number that tells whether the text follows.
namespace {

// Precedes each message, in native byte order, because both ends run the same program.
using Length = std::uint64_t;

// Returns whether a call that failed with this errno value can be repeated.
bool isAgain(int error)
{
    return error == EAGAIN || error == EINTR;
}

bool sendAll(int socket, std::string_view bytes, const SocketWait& wait)
{
    while (!bytes.empty()) {
        const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && !isAgain(errno))
            return false;
        if (sent < 0)
            wait(POLLOUT);
        else
            bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

// Receives `size` bytes. The text grows with what arrives, because a damaged process may send any length.
bool receiveAll(int socket, std::size_t size, CString& out, const SocketWait& wait)
{
    std::array<char, 16 * 1024> piece;
    out.clear();
    while (out.size() < size) {
        // Before each piece, so that a slow sender can be cancelled.
        wait(POLLIN);
        const ssize_t got = ::recv(socket, piece.data(), std::min(piece.size(), size - out.size()), MSG_DONTWAIT);
        if (got == 0 || (got < 0 && !isAgain(errno)))
            return false;
        out.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }
    explicit_bzero(piece.data(), piece.size()); // may have held a password
    return true;
}

} // namespace

void putNumber(CString& message, std::int32_t number)
{
    message.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void putText(CString& message, std::string_view text)
{
    const Length length = text.size();
    message.append(reinterpret_cast<const char*>(&length), sizeof length).append(text);
}

void putOptionalText(CString& message, const std::optional<CString>& text)
{
    putNumber(message, text.has_value());
    if (text)
        putText(message, *text);
}

std::string_view MessageReader::take(std::size_t size)
{
    if (size > left.size())
        throw CDBException("S1000", 0, "The driver's process has sent an incomplete message");
    const std::string_view taken = left.substr(0, size);
    left.remove_prefix(size);
    return taken;
}

std::int32_t MessageReader::number()
{
    std::int32_t number;
    std::memcpy(&number, take(sizeof number).data(), sizeof number);
    return number;
}

std::string_view MessageReader::text()
{
    Length length;
    std::memcpy(&length, take(sizeof length).data(), sizeof length);
    return take(length);
}

std::optional<CString> MessageReader::optionalText()
{
    return number() != 0 ? std::optional<CString>(text()) : std::nullopt;
}

bool sendMessage(int socket, std::string_view message, const SocketWait& wait)
{
    const Length length = message.size();
    return sendAll(socket, {reinterpret_cast<const char*>(&length), sizeof length}, wait) &&
           sendAll(socket, message, wait);
}

bool receiveMessage(int socket, CString& message, const SocketWait& wait)
{
    Length length;
    if (!receiveAll(socket, sizeof length, message, wait))
        return false;
    std::memcpy(&length, message.data(), sizeof length);
    return receiveAll(socket, length, message, wait);
}
