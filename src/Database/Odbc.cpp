#include "Database/Odbc.h"

#include "Base/Secret.h"
#include "Database/ConnectSettings.h"
#include "Database/ConnectString.h"
#include "Database/DriverHost.h"
#include "Database/DriverMessage.h"
#include "Database/TlsMode.h"

#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>
#include <unistd.h>
#include <vector>

// Each connection is a process (DriverProcess), and each request to it one message with one answer (DriverHost). A
// failure in the driver is returned as an answer and leaves the connection open, unless it is lost. A failure between
// the processes closes the connection, because it is unknown how far the driver came.
namespace {

// A prefix that other frameworks put before connection strings. The driver manager rejects it (IM002).
constexpr std::string_view kFrameworkPrefix = "ODBC;";

// Returns the connection string of a source without a logon.
CString sourceText(const CString& source)
{
    if (source.find('=') == CString::npos)
        return dataSourceText(source);
    return plainConnection(source.starts_with(kFrameworkPrefix) ? source.substr(kFrameworkPrefix.size()) : source);
}

// Appends the connection string without the attributes for TLS.
void buildConnectString(CString& out, const CString& source, CDatabase::Access access, const CString& logon,
                        std::chrono::seconds loginTimeout)
{
    Secret own(sourceText(source)); // may hold a password
    const CString suffix = connectionSuffix(own.text, access == CDatabase::readOnly, loginTimeout);
    out.reserve(own.text.size() + logon.size() + suffix.size() + 100); // growing would leave copies
    out += own.text;
    if (!out.ends_with(';'))
        out += ';';
    out += logon;
    out += suffix;
}

// Returns the file of a source whose driver opens a file, with the reason why it can't be opened; empty for other
// sources, and if it can. The driver's own error has neither. Asked only after a failure, because the file may change
// between the test and the driver's own access.
CString fileProblem(const CString& connection)
{
    if (!hasDriver(connection, {"sqlite"}))
        return {};
    const CString file = settingOf(connection, "Database");
    std::error_code failure;
    if (std::filesystem::is_directory(file, failure))
        failure = std::make_error_code(std::errc::is_a_directory);
    else if (::access(file.c_str(), R_OK) != 0)
        failure.assign(errno, std::generic_category());
    return failure && !file.empty() ? "; its file is " + file + ": " + failure.message() : CString();
}

[[noreturn]] void raise(MessageReader& answer)
{
    const CString state(answer.text());
    const std::int32_t native = answer.number();
    throw CDBException(state, native, CString(answer.text()));
}

} // namespace

bool CDatabase::Open(const CString& source, Access access, const CString& logon)
{
    Close();
    Secret connection;
    buildConnectString(connection.text, source, access, logon, loginTimeout);
    const std::vector<TlsAttempt> attempts = tlsAttempts(connection.text);
    try {
        return connect(connection.text, access, attempts.front());
    } catch (const CDBException& error) {
        if (attempts.size() == 1 || !attempts[1].mayHelp(error))
            throw;
        // A probe only finds out why the server refused the user; it is never used as the connection.
        if (attempts[1].isProbe) {
            if (canConnect(connection.text, access, attempts[1]))
                throw CDBException("08004", 0,
                                   "The server accepts this user over TLS only, which the data source turns off");
            throw;
        }
    }
    return connect(connection.text, access, attempts[1]);
}

bool CDatabase::connect(const CString& connection, Access access, const TlsAttempt& attempt)
{
    Secret request(startRequest(DriverRequest::open));
    request.text.reserve(connection.size() + attempt.attributes.size() + 100); // growing would leave copies
    putNumber(request.text, access == readOnly);
    putNumber(request.text, static_cast<std::int32_t>(loginTimeout.count()));
    // The attributes for TLS come last, where they override earlier ones. The joined text is moved into the Secret,
    // which wipes it.
    putText(request.text, Secret(connection + attempt.attributes).text);
    process = std::make_unique<DriverProcess>(dataSourceOf(connection));
    try {
        const CString answer = call(request.text);
        MessageReader reader(answer);
        const bool isOpen = reader.number() != 0;
        ownerUsage = reader.number();
        qualifierUsage = reader.number();
        sqlite = reader.number() != 0;
        if (!isOpen)
            Close();
        return isOpen;
    } catch (const CDBException& error) {
        Close();
        throw CDBException(error.queryState(), error.queryNativeError(), error.queryText() + fileProblem(connection));
    } catch (...) {
        Close();
        throw;
    }
}

bool CDatabase::canConnect(const CString& connection, Access access, const TlsAttempt& attempt)
{
    try {
        const bool isOpen = connect(connection, access, attempt);
        Close();
        return isOpen;
    } catch (const CDBException&) {
        return false;
    }
}

void CDatabase::Close()
{
    process.reset();
}

CString CDatabase::call(std::string_view request)
{
    // An earlier call may have failed and closed the connection.
    if (!process)
        throw CDBException("08003", 0, "The connection to the database is gone");
    CString answer;
    try {
        answer = process->call(request, timeout);
    } catch (...) {
        Close(); // a late answer would be taken for that of the next request
        throw;
    }
    MessageReader reader(answer);
    switch (static_cast<DriverOutcome>(reader.number())) {
    case DriverOutcome::done:
        // Cuts the outcome off in place, without a copy of the results.
        return answer.erase(0, answer.size() - reader.size());
    case DriverOutcome::noMemory:
        throw std::bad_alloc();
    case DriverOutcome::raised:
        if (reader.number() != 0)
            Close();
        raise(reader);
    }
    throw CDBException("S1000", 0, "The driver's process has sent an unknown answer");
}

void CDatabase::ExecuteSQL(const CString& sql)
{
    CString request = startRequest(DriverRequest::execute);
    putText(request, sql);
    call(request);
}
