#include "Base/ServerAddress.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <system_error>

namespace {

// Characters that no name or address contains, and that could end or quote a value in a connection string. The syntax
// of names is not checked further, because the system's resolver decides.
constexpr std::string_view kForeign = ";{}=[]\"'";

// inet_pton() doesn't accept zones (RFC 4007, section 11), so they are cut off and not checked.
bool isIPv6(std::string_view text)
{
    in6_addr ignored;
    return inet_pton(AF_INET6, CString(text.substr(0, text.find('%'))).c_str(), &ignored) == 1; // "%eth0" is its zone
}

// Returns whether a text can stand in a connection string as a server, without quotes.
bool isServer(std::string_view text)
{
    const auto isForeign = [](unsigned char c) { return c <= ' ' || c == 127 || kForeign.find(c) != kForeign.npos; };
    return !text.empty() && std::ranges::none_of(text, isForeign);
}

bool readPort(std::string_view digits, unsigned& port)
{
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    return error == std::errc() && end == digits.data() + digits.size() && port > 0 && port <= 65535;
}

} // namespace

CString ServerAddress::asText() const
{
    const bool isBracketed = server.find(':') != CString::npos;
    return (isBracketed ? "[" + server + "]" : server) + ":" + std::to_string(port);
}

std::optional<ServerAddress> readServerAddress(std::string_view text, unsigned defaultPort)
{
    // First, because a colon of a bare IPv6 address would be taken for the one before a port. isServer() checks the
    // zone.
    if (isIPv6(text) && isServer(text))
        return ServerAddress{CString(text), defaultPort};
    // `rest` is the text after the server: empty, or a colon and the port.
    const bool isBracketed = text.starts_with('[');
    const std::size_t end = isBracketed ? text.find(']') : text.find(':');
    const std::string_view server = isBracketed ? text.substr(1, end - 1) : text.substr(0, end);
    const std::string_view rest = end == text.npos ? "" : text.substr(end + (isBracketed ? 1 : 0));
    ServerAddress address{CString(server), defaultPort};
    // Brackets belong to IPv6 addresses, and only to those.
    if (!isServer(server) || isBracketed != isIPv6(server) || (isBracketed && end == text.npos))
        return {};
    if (!rest.empty() && (!rest.starts_with(':') || !readPort(rest.substr(1), address.port)))
        return {};
    return address;
}
