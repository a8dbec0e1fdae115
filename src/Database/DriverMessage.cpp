#include "Database/DriverMessage.h"

#include "Database/DBException.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>

// A message is its length and its bytes. A number takes four bytes, a text its length in eight and its bytes, an
// optional text a number that tells whether the text follows.
namespace {

// Precedes each message, in native byte order, because both ends run the same program.
using Length = std::uint64_t;

// The rest of a message and its length, transferred by one sendmsg(2) or recvmsg(2), so that the message is not copied
// behind its length.
struct Transfer
{
    Transfer(const Length* length, const char* message, std::size_t size) :
        parts{iovec{const_cast<Length*>(length), sizeof *length}, iovec{const_cast<char*>(message), size}}
    {
        header.msg_iov = parts.data();
        header.msg_iovlen = parts.size();
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    std::size_t left() const { return parts[0].iov_len + parts[1].iov_len; }

    // Moves past the bytes transferred, which may end in either part.
    void advance(std::size_t size)
    {
        for (iovec& part : parts) {
            const std::size_t done = std::min(size, part.iov_len);
            part.iov_base = static_cast<char*>(part.iov_base) + done;
            part.iov_len -= done;
            size -= done;
        }
    }

    std::array<iovec, 2> parts;
    msghdr header = {};
};

// Returns whether a call that failed with this errno value can be repeated.
bool isAgain(int error)
{
    return error == EAGAIN || error == EINTR;
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
    Transfer transfer(&length, message.data(), message.size());
    while (transfer.left() > 0) {
        const ssize_t sent = ::sendmsg(socket, &transfer.header, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && !isAgain(errno))
            return false;
        if (sent < 0)
            wait(POLLOUT);
        else
            transfer.advance(static_cast<std::size_t>(sent));
    }
    return true;
}

bool receiveMessage(int socket, CString& message, const SocketWait& wait)
{
    // Requests and answers alternate, so the socket never holds bytes of a further message.
    std::array<char, 16 * 1024> piece;
    Length length = 0;
    std::size_t lengthLeft = sizeof length;
    message.clear();
    while (lengthLeft > 0 || message.size() < length) {
        // Before each piece, so that a slow sender can be cancelled.
        wait(POLLIN);
        Transfer transfer(&length, piece.data(), piece.size());
        transfer.advance(sizeof length - lengthLeft);
        const ssize_t size = ::recvmsg(socket, &transfer.header, MSG_DONTWAIT);
        if (size == 0 || (size < 0 && !isAgain(errno)))
            return false;
        if (size < 0)
            continue;
        const std::size_t ofLength = std::min(lengthLeft, static_cast<std::size_t>(size));
        lengthLeft -= ofLength;
        message.append(piece.data(), static_cast<std::size_t>(size) - ofLength);
    }
    explicit_bzero(piece.data(), piece.size()); // may have held a password
    return true;
}
