#include "Database/TlsMode.h"

#include "Database/ConnectSettings.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>

// Modes are named as in libpq, and each driver gets its own attributes for them. A driver that ignores an option it
// doesn't know would connect in plain text, so a source that sets "require" or more is refused for such a driver.
namespace {

// The sslmode values of libpq, from lax to strict.
enum Mode
{
    disable,
    allow,
    prefer,
    require,
    verifyCa,
    verifyFull
};
constexpr std::string_view kModes[] = {"disable", "allow", "prefer", "require", "verify-ca", "verify-full"};

enum class Driver
{
    postgres,
    mariaDb,
    local, ///< opens files
    mySql, ///< has its own values for SSLmode, and prefers TLS
    other
};

// A part of each driver's name and of its library's name, in lower case. The first row that fits counts.
constexpr struct
{
    Driver driver;
    const char *name, *library;
} kDrivers[] = {{Driver::postgres, "postgres", "psqlodbc"},
                {Driver::mariaDb, "mariadb", "maodbc"},
                {Driver::local, "sqlite", "sqlite"},
                {Driver::mySql, "mysql", "myodbc"}};

Driver driverOf(const CString& connection)
{
    for (const auto& row : kDrivers)
        if (hasDriver(connection, {row.name, row.library}))
            return row.driver;
    return Driver::other;
}

std::optional<Mode> modeNamed(std::string_view name)
{
    const auto* const found = std::ranges::find(kModes, name);
    return found == std::end(kModes) ? std::nullopt : std::optional(static_cast<Mode>(found - kModes));
}

[[noreturn]] void refuse(const CString& what, const CString& value)
{
    CString modes;
    for (const std::string_view each : kModes)
        modes.append(modes.empty() ? "" : ", ").append(each);
    throw CDBException("S1009", 0, what + " is \"" + value + "\", and none of " + modes);
}

// Returns the source's SSLmode, nothing if it has none. Of several, the strictest counts, because drivers don't agree
// on whether the first or the last one does. For a driver that is not supported, unknown modes are skipped, because it
// may have modes of its own.
std::optional<Mode> ownMode(const CString& connection, bool isSupported)
{
    std::vector<CString> values = valuesOf(connection, "SSLmode");
    std::erase(values, "");
    if (values.empty())
        values.push_back(settingOf(connection, "SSLmode"));
    std::optional<Mode> strictest;
    for (const CString& value : values) {
        const std::optional<Mode> mode = modeNamed(lowerAscii(trimmed(value)));
        if (!mode && isSupported && !value.empty())
            refuse("SSLmode", value);
        strictest = std::max(strictest, mode);
    }
    return strictest;
}

// Returns the mode of PGSSLMODE. A value that libpq doesn't know counts as the strictest mode for a driver that is not
// supported: it may have been meant to require TLS.
Mode modeOfEnvironment(bool isSupported)
{
    const char* const variable = std::getenv("PGSSLMODE");
    const std::optional<Mode> mode = variable ? modeNamed(variable) : prefer;
    if (!mode && isSupported)
        refuse("The variable PGSSLMODE", variable);
    return mode.value_or(verifyFull);
}

// Returns the attempts for MariaDB's driver. FORCETLS alone is only a preference; SSLVERIFY keeps the driver from
// connecting in plain text. A source without a mode that sets these attributes is connected as it is.
std::vector<TlsAttempt> mariaDbAttempts(const CString& connection, std::optional<Mode> own)
{
    const CString force = settingOf(connection, "FORCETLS"), verify = settingOf(connection, "SSLVERIFY");
    if (!own && (!verify.empty() || (!force.empty() && force != "0")))
        return {{""}};
    const Mode mode = own ? *own : force == "0" ? disable : modeOfEnvironment(true);
    // The second attempt is a probe: it finds out whether the server accepts the user over TLS only.
    if (mode == disable)
        return {{"FORCETLS=0;"}, {"FORCETLS=1;SSLVERIFY=0;", true}};
    if (mode < require)
        return {{"FORCETLS=1;SSLVERIFY=0;"}, {"FORCETLS=0;SSLVERIFY=0;"}};
    return {{"FORCETLS=1;SSLVERIFY=1;"}};
}

} // namespace

bool TlsAttempt::mayHelp(const CDBException& error) const
{
    // MariaDB's error numbers ER_ACCESS_DENIED_ERROR and CR_SSL_CONNECTION_ERROR.
    constexpr int kAccessDenied = 1045, kTlsFailed = 2026;
    return error.queryNativeError() == (isProbe ? kAccessDenied : kTlsFailed);
}

std::vector<TlsAttempt> tlsAttempts(const CString& connection)
{
    const Driver driver = driverOf(connection);
    // An attempt without attributes leaves TLS to the driver.
    if (driver == Driver::local)
        return {{""}};
    const bool isSupported = driver == Driver::postgres || driver == Driver::mariaDb;
    const std::optional<Mode> own = ownMode(connection, isSupported);
    if (driver == Driver::mariaDb)
        return mariaDbAttempts(connection, own);
    if (!isSupported && own >= require)
        throw CDBException("S1C00", 0,
                           "This driver may not apply SSLmode=" + CString(kModes[*own]) +
                               "; set the driver's own option for TLS");
    if (driver == Driver::mySql || (!isSupported && own) || (!own && !settingOf(connection, "CA").empty()))
        return {{""}}; // CA is PostgreSQL's abbreviation
    return {{"SSLmode=" + CString(kModes[own ? *own : modeOfEnvironment(isSupported)]) + ";"}};
}
