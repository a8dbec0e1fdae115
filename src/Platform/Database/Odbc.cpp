#include "Platform/Database/Odbc.h"

#include "Platform/Secret.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>

namespace {

constexpr SQLULEN kLoginTimeout = 15; // seconds
// MariaDB's driver takes the login timeout from the connection string alone; others pass over words they don't know.
constexpr std::string_view kLoginTimeoutWord = "CONN_TIMEOUT=15;";
// A driver may quote a whole statement of its own; its start is enough for a message box.
constexpr std::size_t kMessageSize = 512;
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

// An environment made by SQLAllocEnv is one of ODBC 2: drivers answer dates as 9, 10 and 11.
EnvironmentHandle allocateEnvironment()
{
    SQLHENV raw = SQL_NULL_HENV;
    if (SQLAllocEnv(&raw) != SQL_SUCCESS)
        return {};
    return EnvironmentHandle(raw);
}

ConnectionHandle allocateConnection(void* environment)
{
    SQLHANDLE raw = SQL_NULL_HANDLE;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment, &raw)))
        return {};
    return ConnectionHandle(raw);
}

// A value of a connection string; only braces keep what these characters would end. A brace within is doubled.
void appendQuoted(CString& out, const CString& value)
{
    const bool plain = value.find_first_of("[]{}(),;?*=!@") == CString::npos && trimmed(value).size() == value.size();
    if (plain) {
        out += value;
        return;
    }
    out += '{';
    for (const char c : value)
        out.append(c == '}' ? 2 : 1, c);
    out += '}';
}

void buildConnectString(CString& out, const CString& source, const CString& logon)
{
    out.reserve(2 * source.size() + logon.size() + kLoginTimeoutWord.size() + sizeof "DSN={};;");
    if (source.find('=') == CString::npos) {
        out += "DSN=";
        appendQuoted(out, source);
    } else {
        out += source.starts_with(kFrameworkPrefix) ? source.substr(kFrameworkPrefix.size()) : source;
    }
    if (!out.ends_with(';'))
        out += ';';
    out += logon;
    out += kLoginTimeoutWord;
}

// Drivers end their texts as they like.
std::string_view messageText(const SQLCHAR* buffer, SQLSMALLINT length, std::size_t capacity)
{
    const auto* text = reinterpret_cast<const char*>(buffer);
    std::string_view message(text,
                             strnlen(text, std::min<std::size_t>(std::max<SQLSMALLINT>(length, 0), capacity - 1)));
    if (message.size() == capacity - 1)
        dropCutCharacter(message);
    return trimmed(message);
}

} // namespace

void FreeEnvironment::operator()(void* environment) const noexcept
{
    SQLFreeEnv(environment);
}

void FreeConnection::operator()(void* connection) const noexcept
{
    // A connection with an open transaction refuses to disconnect, and one that is connected refuses to go.
    if (!SQL_SUCCEEDED(SQLDisconnect(connection))) {
        SQLEndTran(SQL_HANDLE_DBC, connection, SQL_ROLLBACK);
        SQLDisconnect(connection);
    }
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
}

void FreeStatement::operator()(void* statement) const noexcept
{
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
}

CDBException::CDBException(const CString& sqlState, int native, const CString& text) :
    std::runtime_error(text + " (SQLSTATE " + sqlState + ")"), state(sqlState), nativeError(native)
{}

bool CDBException::isLogonRefused() const
{
    if (state.starts_with("28"))
        return true;
    if (!state.starts_with("08"))
        return false;
    CString text = what();
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    // PostgreSQL's words, in the languages of its servers: "password authentication failed" and so on.
    return std::ranges::any_of(std::array{"pass", "auth", "autent"},
                               [&text](const char* word) { return text.find(word) != text.npos; });
}

void CDBException::raise(short handleKind, void* handle)
{
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, kMessageSize> buffer;
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    CString firstState = "S1000", text;
    int firstNative = 0;
    for (SQLSMALLINT record = 1;
         SQL_SUCCEEDED(SQLGetDiagRec(handleKind, handle, record, state.data(), &native, buffer.data(),
                                     static_cast<SQLSMALLINT>(buffer.size()), &length));
         ++record) {
        if (record == 1) {
            firstState = reinterpret_cast<const char*>(state.data());
            firstNative = native;
        }
        const std::string_view message = messageText(buffer.data(), length, buffer.size());
        if (text.find(message) == text.npos) // some drivers say it twice
            text.append(text.empty() ? "" : "\n").append(message);
    }
    throw CDBException(firstState, firstNative, text.empty() ? "The driver gave no reason" : text);
}

bool CDatabase::Open(const CString& source, Access access, const CString& logon)
{
    Close();
    EnvironmentHandle newEnvironment = allocateEnvironment();
    if (!newEnvironment)
        return false;
    ConnectionHandle opened = allocateConnection(newEnvironment.get());
    if (!opened)
        return false;
    SQLSetConnectAttr(opened.get(), SQL_ATTR_LOGIN_TIMEOUT, numberAttribute(kLoginTimeout), SQL_IS_UINTEGER);
    if (access == readOnly)
        SQLSetConnectAttr(opened.get(), SQL_ATTR_ACCESS_MODE, numberAttribute(SQL_MODE_READ_ONLY), SQL_IS_UINTEGER);

    Secret connect;
    buildConnectString(connect.text, source, logon);
    const SQLRETURN result = SQLDriverConnect(opened.get(), nullptr, sqlText(connect.text), SQL_NTS, nullptr, 0,
                                              nullptr, SQL_DRIVER_NOPROMPT);
    if (result == SQL_NO_DATA)
        return false;
    if (!SQL_SUCCEEDED(result))
        CDBException::raise(SQL_HANDLE_DBC, opened.get());
    environment = std::move(newEnvironment);
    connection = std::move(opened);
    return true;
}

void CDatabase::Close()
{
    connection.reset();
    environment.reset();
}

StatementHandle CDatabase::allocateStatement() const
{
    SQLHANDLE raw = SQL_NULL_HANDLE;
    if (!connection || !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection.get(), &raw)))
        return {};
    return StatementHandle(raw);
}

void CDatabase::ExecuteSQL(const CString& sql)
{
    const StatementHandle statement = allocateStatement();
    if (!statement)
        CDBException::raise(SQL_HANDLE_DBC, handle());
    const SQLRETURN result = SQLExecDirect(statement.get(), sqlText(sql), SQL_NTS);
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA)
        CDBException::raise(SQL_HANDLE_STMT, statement.get());
}

void CDatabase::BeginTrans()
{
    setAutoCommit(false);
}

void CDatabase::CommitTrans()
{
    endTransaction(SQL_COMMIT);
    setAutoCommit(true);
}

void CDatabase::Rollback()
{
    endTransaction(SQL_ROLLBACK);
    setAutoCommit(true);
}

void CDatabase::setAutoCommit(bool on)
{
    const SQLULEN mode = on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
    if (!SQL_SUCCEEDED(SQLSetConnectAttr(handle(), SQL_ATTR_AUTOCOMMIT, numberAttribute(mode), SQL_IS_UINTEGER)))
        CDBException::raise(SQL_HANDLE_DBC, handle());
}

void CDatabase::endTransaction(short completion)
{
    if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, handle(), completion)))
        CDBException::raise(SQL_HANDLE_DBC, handle());
}

CStatement::CStatement(const CDatabase& database, const CString& sql) : statement(database.allocateStatement())
{
    if (!statement)
        CDBException::raise(SQL_HANDLE_DBC, database.handle());
    check(SQLPrepare(statement.get(), sqlText(sql), SQL_NTS));
}

long CStatement::execute(std::initializer_list<std::string_view> values)
{
    return execute(std::span(values.begin(), values.size()));
}

long CStatement::execute(std::span<const std::string_view> values)
{
    SQLFreeStmt(statement.get(), SQL_CLOSE);
    std::vector<SQLLEN> lengths(values.size()); // read by SQLExecute
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string_view value = values[i];
        lengths[i] = static_cast<SQLLEN>(value.size());
        check(SQLBindParameter(statement.get(), static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, SQL_C_CHAR,
                               SQL_LONGVARCHAR, std::max<SQLULEN>(value.size(), 1), 0,
                               const_cast<char*>(value.empty() ? "" : value.data()), lengths[i], &lengths[i]));
    }
    const SQLRETURN result = SQLExecute(statement.get());
    SQLLEN rows = 0;
    if (result != SQL_NO_DATA) { // the answer to a change that met no row
        check(result);
        check(SQLRowCount(statement.get(), &rows));
    }
    SQLFreeStmt(statement.get(), SQL_RESET_PARAMS); // the values end with this call
    return rows;
}

bool CStatement::fetch()
{
    const SQLRETURN result = SQLFetch(statement.get());
    if (result != SQL_NO_DATA)
        check(result);
    return result != SQL_NO_DATA;
}

CString CStatement::queryText(unsigned short column)
{
    CString text;
    std::array<char, 4096> piece;
    for (;;) {
        SQLLEN left = 0; // of the value, this piece included
        const SQLRETURN result =
            SQLGetData(statement.get(), column, SQL_C_CHAR, piece.data(), static_cast<SQLLEN>(piece.size()), &left);
        if (result == SQL_NO_DATA)
            return text;
        check(result);
        if (left == SQL_NULL_DATA)
            return {};
        const std::size_t capacity = piece.size() - 1;
        const bool last = result == SQL_SUCCESS || (left >= 0 && static_cast<std::size_t>(left) <= capacity);
        text.append(piece.data(), strnlen(piece.data(), capacity)); // shorter where a driver keeps a character whole
        if (last)
            return text;
    }
}

void CStatement::check(short result) const
{
    if (!SQL_SUCCEEDED(result))
        CDBException::raise(SQL_HANDLE_STMT, statement.get());
}

CString logonText(const CString& user, const CString& password)
{
    CString text;
    text.reserve(2 * (user.size() + password.size()) + sizeof "UID={};PWD={};"); // no growth: it would leave copies
    text += "UID=";
    appendQuoted(text, user);
    text += ";PWD=";
    appendQuoted(text, password);
    text += ';';
    return text;
}

bool listDataSources(std::vector<DataSource>& out)
{
    const EnvironmentHandle environment = allocateEnvironment();
    if (!environment)
        return false;
    std::array<SQLCHAR, 50> name;
    std::array<SQLCHAR, 300> description;
    const auto text = [](auto& buffer) {
        return CString(messageText(buffer.data(), SQLSMALLINT(buffer.size()), buffer.size()));
    };
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
        name[0] = description[0] = 0;
        if (!SQL_SUCCEEDED(SQLDataSources(environment.get(), direction, name.data(), SQLSMALLINT(name.size()), nullptr,
                                          description.data(), SQLSMALLINT(description.size()), nullptr)))
            return true;
        out.push_back({text(name), text(description)});
    }
}

void dropCutCharacter(std::string_view& text)
{
    std::size_t start = text.size(); // of the last character
    while (start > 0 && text.size() - start < 4 && (text[start - 1] & 0xC0) == 0x80)
        --start;
    if (start == 0)
        return;
    const auto lead = static_cast<unsigned char>(text[--start]);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    if (text.size() - start < length)
        text.remove_suffix(text.size() - start);
}
