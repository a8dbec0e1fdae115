#include "Database/Odbc.h"

#include "Base/Progress.h"
#include "Base/Secret.h"
#include "Database/ConnectString.h"

#include <sql.h>
#include <sqlext.h>

#include <array>

namespace {

constexpr SQLULEN kLoginTimeout = 15; // seconds
constexpr std::string_view kFrameworkPrefix = "ODBC;";

// The calls take unsigned characters that they don't change.
SQLCHAR* sqlText(const CString& text)
{
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

SQLPOINTER numberAttribute(SQLULEN value)
{
    return reinterpret_cast<SQLPOINTER>(value);
}

ConnectionHandle allocateConnection(void* environment, CDatabase::Access access)
{
    SQLHANDLE raw = SQL_NULL_HANDLE;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment, &raw)))
        return {};
    SQLSetConnectAttr(raw, SQL_ATTR_LOGIN_TIMEOUT, numberAttribute(kLoginTimeout), SQL_IS_UINTEGER);
    if (access == CDatabase::readOnly)
        SQLSetConnectAttr(raw, SQL_ATTR_ACCESS_MODE, numberAttribute(SQL_MODE_READ_ONLY), SQL_IS_UINTEGER);
    return ConnectionHandle(raw);
}

CString sourceText(const CString& source)
{
    if (source.find('=') == CString::npos)
        return dataSourceText(source);
    return plainConnection(source.starts_with(kFrameworkPrefix) ? source.substr(kFrameworkPrefix.size()) : source);
}

void buildConnectString(CString& out, const CString& source, CDatabase::Access access, const CString& logon)
{
    Secret own(sourceText(source)); // it may hold a password of its own
    const CString words = connectionWords(own.text, access == CDatabase::readOnly);
    out.reserve(own.text.size() + logon.size() + words.size() + sizeof ";"); // no growth: it would leave copies
    out += own.text;
    if (!out.ends_with(';'))
        out += ';';
    out += logon;
    out += words;
}

// An attempt to connect, which may outlive the patience for it.
struct Attempt
{
    std::shared_ptr<DatabaseHandles> handles;
    Secret connect;
    bool connected = false;

    void run()
    {
        const MemoryWipe wipe; // this thread's memory holds the password too
        const SQLRETURN result = SQLDriverConnect(handles->connection.get(), nullptr, sqlText(connect.text), SQL_NTS,
                                                  nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
        connected = SQL_SUCCEEDED(result);
        if (!connected && result != SQL_NO_DATA)
            CDBException::raise(SQL_HANDLE_DBC, handles->connection.get());
    }
};

bool isSqlite(void* connection)
{
    std::array<SQLCHAR, 32> name = {};
    SQLGetInfo(connection, SQL_DBMS_NAME, name.data(), SQLSMALLINT(name.size()), nullptr);
    return std::string_view(reinterpret_cast<const char*>(name.data())) == "SQLite";
}

// SQLite's driver opens any file and lists no tables in one that is no database. To read something tells.
void lookInto(CDatabase& database)
{
    try {
        database.ExecuteSQL("PRAGMA schema_version");
    } catch (...) {
        database.Close();
        throw;
    }
}

[[noreturn]] void raiseSilence(std::chrono::milliseconds patience)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(patience).count();
    throw CDBException("HYT00", 0,
                       "The database has not answered for " + std::to_string(seconds) +
                           " seconds; the connection has been given up");
}

} // namespace

bool CDatabase::Open(const CString& source, Access access, const CString& logon)
{
    Close();
    const MemoryWipe wipe;
    const auto attempt = std::make_shared<Attempt>();
    attempt->handles = std::make_shared<DatabaseHandles>();
    attempt->handles->environment = allocateEnvironment();
    if (attempt->handles->environment)
        attempt->handles->connection = allocateConnection(attempt->handles->environment.get(), access);
    if (!attempt->handles->connection)
        return false;
    buildConnectString(attempt->connect.text, source, access, logon);
    callDriver([attempt] { attempt->run(); });
    if (!attempt->connected)
        return false;
    handles = attempt->handles;
    if (access == readOnly && isSqlite(handle()))
        lookInto(*this);
    return true;
}

void CDatabase::Close()
{
    if (!handles)
        return;
    const MemoryWipe wipe; // the driver has kept the password up to here
    handles.reset();
}

void CDatabase::wait(std::function<void()> call)
{
    if (!handles)
        throw CDBException("08003", 0, "The connection to the database is gone");
    callDriver(std::move(call));
}

void CDatabase::callDriver(std::function<void()> call)
{
    const DriverThread::End end = driver.run(patience, std::move(call));
    if (end == DriverThread::End::back)
        return;
    if (handles)
        handles->isGivenUp = true;
    handles.reset(); // the call has them
    if (end == DriverThread::End::unwanted)
        throw Cancelled();
    raiseSilence(patience);
}

OpenStatement CDatabase::allocateStatement() const
{
    SQLHANDLE raw = SQL_NULL_HANDLE;
    if (!handles || !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, handle(), &raw)))
        raw = SQL_NULL_HANDLE;
    return {handles, StatementHandle(raw, FreeStatement{handles.get()})};
}

unsigned CDatabase::queryInfo(unsigned short question) const
{
    SQLUINTEGER answer = 0;
    if (!handles || !SQL_SUCCEEDED(SQLGetInfo(handle(), question, &answer, sizeof answer, nullptr)))
        return 0;
    return answer;
}

bool CDatabase::hasOwners() const
{
    return queryInfo(SQL_OWNER_USAGE) != 0;
}

void CDatabase::ExecuteSQL(const CString& sql)
{
    const auto statement = std::make_shared<OpenStatement>(allocateStatement());
    wait([statement, sql] {
        if (!*statement)
            CDBException::raise(SQL_HANDLE_DBC, statement->database->connection.get());
        const SQLRETURN result = SQLExecDirect(statement->handle.get(), sqlText(sql), SQL_NTS);
        if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA)
            CDBException::raise(SQL_HANDLE_STMT, statement->handle.get());
    });
}
