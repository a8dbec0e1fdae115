#pragma once

#include "Base/Text.h"

#include <functional>
#include <optional>
#include <string_view>

// The messages between the program and a driver's process: numbers and texts, one after the other.

/// Append a number or a text to a message.
void putNumber(CString& message, std::int32_t number);
void putText(CString& message, std::string_view text);
void putOptionalText(CString& message, const std::optional<CString>& text);

/// Reads the parts of a message in order, as views into it. Throws CDBException if the message ends too early, because
/// a driver may have damaged the memory of its process. The kinds of parts are not marked in the message, because both
/// sides are the same program.
class MessageReader
{
public:
    explicit MessageReader(std::string_view message) : left(message) {}

    /// Return the next part of the message, which must be of that kind.
    std::int32_t number();
    std::string_view text(); ///< a view into the message
    std::optional<CString> optionalText();
    bool isAtEnd() const { return left.empty(); }
    std::size_t size() const { return left.size(); } ///< unread bytes

private:
    std::string_view take(std::size_t size);

    std::string_view left;
};

/// Returns when the socket is ready for `events` of poll(2). May throw to end the wait. Called with POLLIN before each
/// receive, and with POLLOUT after a send that would block.
using SocketWait = std::function<void(short events)>;

/// Send or receive a whole message. Both return false if the other side has closed the socket. No call blocks in the
/// socket itself, so that `wait` can end it at any time. After an exception or a false result, the message may be half
/// sent, and the socket can't be used any more.
bool sendMessage(int socket, std::string_view message, const SocketWait& wait);
bool receiveMessage(int socket, CString& message, const SocketWait& wait);
