#pragma once

#include "Base/Text.h"

#include <optional>

/// Where a server listens.
struct ServerAddress
{
    CString server; ///< a name or an address; that of IPv6 without brackets
    unsigned port = 0;

    /// "SERVER:PORT", an IPv6 address in brackets.
    CString asText() const;
};

/// Reads "SERVER" and "SERVER:PORT", where SERVER is a name, an IPv4 address or an IPv6 address in brackets (RFC 3986,
/// 3.2.2), and an IPv6 address that stands alone, without brackets. Nothing for any other text, and for a port that
/// isn't from 1 to 65535. Where the text has no port it is `defaultPort`, whatever that is.
std::optional<ServerAddress> readServerAddress(std::string_view text, unsigned defaultPort);
