#pragma once

#include "Base/Text.h"

#include <optional>

/// The port of a broker if none is given.
inline constexpr unsigned kDefaultPort = 7250;

/// The host and port of a server. A name is not resolved, and an address is kept as it was written.
struct ServerAddress
{
    CString server; ///< a name or an address; an IPv6 address without brackets
    unsigned port = 0;

    /// Returns "SERVER:PORT", with an IPv6 address in brackets.
    CString asText() const;
};

/// Reads "SERVER" and "SERVER:PORT", where SERVER is a name, an IPv4 address or an IPv6 address in brackets (RFC 3986,
/// 3.2.2), and a bare IPv6 address without brackets. Returns nothing for any other text, and for a port outside of 1 to
/// 65535. A text without a port gets `defaultPort`, which is not checked.
std::optional<ServerAddress> readServerAddress(std::string_view text, unsigned defaultPort);
