#include "Database/DriverHost.h"

#include "Base/Secret.h"
#include "Database/DBException.h"
#include "Database/DriverMessage.h"
#include "Database/StatementRows.h"

#include <sql.h>
#include <sqlext.h>

#include <array>
#include <new>
#include <poll.h>

namespace {

// Returns a text as ODBC's functions take it: unsigned, and not const although they don't change it.
SQLCHAR* sqlText(const CString& text)
{
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

// ODBC passes numbers as pointers (SQLSetConnectAttr).
SQLPOINTER numberAttribute(SQLULEN value)
{
    return reinterpret_cast<SQLPOINTER>(value);
}

// Returns a connection that is not open, or null. A driver may ignore or reject either attribute, which is why the
// results are not checked.
ConnectionHandle allocateConnection(void* environment, bool isReadOnly, SQLULEN loginSeconds)
{
    SQLHANDLE raw = SQL_NULL_HANDLE;
    if (!environment || !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment, &raw)))
        return {};
    SQLSetConnectAttr(raw, SQL_ATTR_LOGIN_TIMEOUT, numberAttribute(loginSeconds), SQL_IS_UINTEGER);
    if (isReadOnly)
        SQLSetConnectAttr(raw, SQL_ATTR_ACCESS_MODE, numberAttribute(SQL_MODE_READ_ONLY), SQL_IS_UINTEGER);
    return ConnectionHandle(raw);
}

bool connect(void* connection, const CString& text)
{
    const MemoryWipe wipe; // drivers copy the password
    // SQL_DRIVER_NOPROMPT: no driver may open a window.
    const SQLRETURN result =
        SQLDriverConnect(connection, nullptr, sqlText(text), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    // SQL_NO_DATA means that a dialog was cancelled, which is no failure.
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA)
        CDBException::raise(SQL_HANDLE_DBC, connection);
    return SQL_SUCCEEDED(result);
}

template <class Number>
CString startWith(Number number)
{
    CString message;
    putNumber(message, static_cast<std::int32_t>(number));
    return message;
}

} // namespace

CString startRequest(DriverRequest request)
{
    return startWith(request);
}

CString DriverHost::answer(std::string_view request)
{
    try {
        // An exception drops the results in this answer.
        CString answer = startWith(DriverOutcome::done);
        MessageReader reader(request);
        carryOut(reader, answer);
        return answer;
    } catch (const CDBException& error) {
        CString answer = startWith(DriverOutcome::raised);
        putNumber(answer, isLost(error.queryState()));
        putText(answer, error.queryState());
        putNumber(answer, error.queryNativeError());
        putText(answer, error.queryText());
        return answer;
    } catch (const std::bad_alloc&) {
        return startWith(DriverOutcome::noMemory);
    }
}

void DriverHost::carryOut(MessageReader& request, CString& answer)
{
    switch (static_cast<DriverRequest>(request.number())) {
    case DriverRequest::open:
        return open(request, answer);
    case DriverRequest::execute:
        return execute(CString(request.text()));
    case DriverRequest::catalogue:
        return listCatalogue(request, answer);
    case DriverRequest::run:
        return run(request, answer);
    }
}

void DriverHost::open(MessageReader& request, CString& answer)
{
    const bool isReadOnly = request.number() != 0;
    const auto loginSeconds = static_cast<SQLULEN>(request.number());
    const Secret text{CString(request.text())};
    // Not checked one by one: a null environment gives a null connection.
    environment = allocateEnvironment();
    connection = allocateConnection(environment.get(), isReadOnly, loginSeconds);
    const bool isOpen = connection && connect(connection.get(), text.text);
    // SQLite's driver opens any file and finds no tables in one that isn't a database. Reading something reports the
    // error.
    if (isOpen && isReadOnly && isSqlite())
        execute("PRAGMA schema_version");
    putNumber(answer, isOpen);
    for (const SQLUSMALLINT question : {SQL_OWNER_USAGE, SQL_QUALIFIER_USAGE})
        putNumber(answer, isOpen ? static_cast<std::int32_t>(infoNumber(question)) : 0);
    putNumber(answer, isOpen && isSqlite());
}

void DriverHost::execute(const CString& sql)
{
    const StatementHandle statement = requireStatement();
    const SQLRETURN result = SQLExecDirect(statement.get(), sqlText(sql), SQL_NTS);
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA)
        CDBException::raise(SQL_HANDLE_STMT, statement.get());
}

void DriverHost::listCatalogue(MessageReader& request, CString& answer)
{
    const auto function = static_cast<SQLUSMALLINT>(request.number());
    const std::string_view shape = request.text();
    SQLUSMALLINT isSupported = SQL_FALSE;
    // A driver may lack a catalogue function, which is no error of the database.
    if (!SQL_SUCCEEDED(SQLGetFunctions(connection.get(), function, &isSupported)) || !isSupported)
        return putNumber(answer, static_cast<std::int32_t>(CatalogueOutcome::unsupported));
    const StatementHandle statement = allocateStatement();
    if (!statement)
        return putNumber(answer, static_cast<std::int32_t>(CatalogueOutcome::noStatement));
    putNumber(answer, static_cast<std::int32_t>(CatalogueOutcome::listed));
    while (!request.isAtEnd()) {
        CatalogueArguments arguments;
        for (std::optional<CString>& argument : arguments)
            argument = request.optionalText();
        runCatalogue(statement.get(), function, shape, std::move(arguments), answer);
    }
}

// Prepares the statement unless an earlier request has. If that fails, its entry stays null, so that the next request
// prepares it again.
void DriverHost::run(MessageReader& request, CString& answer)
{
    const CString sql(request.text());
    StatementHandle& statement = prepared[sql];
    if (!statement) {
        StatementHandle made = requireStatement();
        if (!SQL_SUCCEEDED(SQLPrepare(made.get(), sqlText(sql), SQL_NTS)))
            CDBException::raise(SQL_HANDLE_STMT, made.get());
        statement = std::move(made);
    }
    std::vector<CString> values;
    while (!request.isAtEnd())
        values.emplace_back(request.text());
    runStatement(statement.get(), std::move(values), answer);
}

StatementHandle DriverHost::allocateStatement() const
{
    SQLHANDLE raw = SQL_NULL_HANDLE;
    if (!connection || !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection.get(), &raw)))
        return {};
    return StatementHandle(raw);
}

StatementHandle DriverHost::requireStatement() const
{
    StatementHandle statement = allocateStatement();
    if (!statement)
        CDBException::raise(SQL_HANDLE_DBC, connection.get());
    return statement;
}

// Returns a number of SQLGetInfo(), 0 if the driver doesn't report it.
unsigned DriverHost::infoNumber(unsigned short question) const
{
    SQLUINTEGER answer = 0;
    return SQL_SUCCEEDED(SQLGetInfo(connection.get(), question, &answer, sizeof answer, nullptr)) ? answer : 0;
}

// By the name that the driver reports, because the connection string may name only a data source.
bool DriverHost::isSqlite() const
{
    std::array<SQLCHAR, 32> name = {};
    SQLGetInfo(connection.get(), SQL_DBMS_NAME, name.data(), SQLSMALLINT(name.size()), nullptr);
    return std::string_view(reinterpret_cast<const char*>(name.data())) == "SQLite";
}

// Returns whether the connection is lost. Not every driver sets the SQLSTATE for it, so its attribute is read too.
bool DriverHost::isLost(const CString& state) const
{
    if (state.starts_with("08"))
        return true;
    SQLUINTEGER isDead = SQL_CD_FALSE;
    return connection &&
           SQL_SUCCEEDED(
               SQLGetConnectAttr(connection.get(), SQL_ATTR_CONNECTION_DEAD, &isDead, SQL_IS_UINTEGER, nullptr)) &&
           isDead == SQL_CD_TRUE;
}

void serveDriver(int socket)
{
    const SocketWait wait = [socket](short events) {
        pollfd ready = {socket, events, 0};
        while (::poll(&ready, 1, -1) < 0) {
        }
    };
    DriverHost host;
    Secret request; // may hold a password
    while (receiveMessage(socket, request.text, wait)) {
        const CString answer = host.answer(request.text);
        wipe(request.text);
        if (!sendMessage(socket, answer, wait))
            return;
    }
}
