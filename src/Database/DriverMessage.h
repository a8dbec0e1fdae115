#pragma once

#include "Base/Text.h"

#include <functional>
#include <optional>
#include <string_view>

// What the program and a driver's process say to each other: messages of numbers and texts, one behind the other.

/// Appends to a message.
void putNumber(CString& message, std::int32_t number);
void putText(CString& message, std::string_view text);
void putOptionalText(CString& message, const std::optional<CString>& text);

/// Takes a message apart. Raises CDBException if the message ends before what is asked for.
class MessageReader
{
public:
    explicit MessageReader(std::string_view message) : left(message) {}

    std::int32_t number();
    std::string_view text(); ///< a view into the message
    std::optional<CString> optionalText();
    bool isAtEnd() const { return left.empty(); }
    std::size_t size() const { return left.size(); } ///< the bytes that have not been taken yet

private:
    std::string_view take(std::size_t size);

    std::string_view left;
};

/// Returns once the socket is ready for `events` of poll(); may raise whatever ends the wait.
using SocketWait = std::function<void(short events)>;

/// Sends a whole message, or receives one. False if the other side has gone.
bool sendMessage(int socket, std::string_view message, const SocketWait& wait);
bool receiveMessage(int socket, CString& message, const SocketWait& wait);
