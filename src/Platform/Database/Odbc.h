#pragma once

#include "Platform/Text.h"

#include <initializer_list>
#include <memory>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

// ODBC over the driver manager unixODBC, whose headers stay inside this folder's sources. Names and texts go both ways
// as UTF-8, by the narrow calls: drivers lose names of the wide ones.

struct FreeEnvironment
{
    void operator()(void* environment) const noexcept;
};
struct FreeConnection
{
    void operator()(void* connection) const noexcept; ///< undoes an open transaction and disconnects first
};
struct FreeStatement
{
    void operator()(void* statement) const noexcept;
};
using EnvironmentHandle = std::unique_ptr<void, FreeEnvironment>;
using ConnectionHandle = std::unique_ptr<void, FreeConnection>;
using StatementHandle = std::unique_ptr<void, FreeStatement>;

/// What a driver or the driver manager said of a call that failed. what() is the driver's text with the SQLSTATE, fit
/// to be shown.
class CDBException : public std::runtime_error
{
public:
    CDBException(const CString& state, int nativeError, const CString& text);

    /// The five characters of the SQLSTATE; those of ODBC 2 where the versions differ (S1000, not HY000).
    const CString& queryState() const { return state; }

    /// The database's own number of the error, 0 where it has none.
    int queryNativeError() const { return nativeError; }

    /// True when another user or password may help. Not every driver has the SQLSTATE for it, so the text counts too.
    bool isLogonRefused() const;

    /// Throws what is known of the last call on a handle, of the kind that ODBC numbers 1 to 4. It has to be the next
    /// thing done with the handle: every call replaces the diagnostics.
    [[noreturn]] static void raise(short handleKind, void* handle);

private:
    CString state;
    int nativeError;
};

/// One open connection to a data source. Statements and recordsets on it must be gone before it is.
class CDatabase
{
public:
    enum Access
    {
        readOnly,
        readWrite
    };

    /// Opens a data source by its name, or by a whole connection string when `source` holds a '='. `logon` is added to
    /// it, see logonText(). A driver that fails raises CDBException; false is left for a connection that can't even be
    /// tried. The driver asks nobody anything; a server that is silent for 15 seconds counts as failed.
    bool Open(const CString& source, Access access = readOnly, const CString& logon = {});

    /// Closes statements' ground under them: undoes what isn't committed and disconnects. Does nothing when not open.
    void Close();

    bool IsOpen() const { return connection != nullptr; }

    /// Runs one statement without parameters and leaves its result aside. Raises CDBException.
    void ExecuteSQL(const CString& sql);

    /// From here on nothing lasts until CommitTrans(). Raises CDBException, as the two others do.
    void BeginTrans();
    void CommitTrans();
    void Rollback();

    /// The connection for calls of ODBC; null when not open.
    void* handle() const { return connection.get(); }

    /// A new statement, empty when there is none to give.
    StatementHandle allocateStatement() const;

private:
    void setAutoCommit(bool on);
    void endTransaction(short completion);

    EnvironmentHandle environment; // above the connection, which has to go first
    ConnectionHandle connection;
};

/// One statement of SQL with question marks for its values, prepared once and run as often as wanted.
class CStatement
{
public:
    /// Raises CDBException, as everything here does.
    CStatement(const CDatabase& database, const CString& sql);

    /// Runs it with texts in place of the question marks, in their order, and answers how many rows it changed, -1
    /// where the driver doesn't tell.
    long execute(std::span<const std::string_view> values);
    long execute(std::initializer_list<std::string_view> values = {});

    /// Moves to the next row of the result; false when there is none.
    bool fetch();

    /// A column of the row as text, however long, counted from 1; each to be asked once per row, from left to right.
    /// A null value is empty.
    CString queryText(unsigned short column);

private:
    void check(short result) const;

    StatementHandle statement;
};

/// "UID=…;PWD=…;" with both values quoted as connection strings want it. It holds the password: wipe() it after use.
CString logonText(const CString& user, const CString& password);

struct DataSource
{
    CString name;
    CString description;
};

/// Appends the data sources of user and system that the driver manager knows, names cut to 49 bytes and descriptions to
/// 299. False when there is no ODBC environment to ask.
bool listDataSources(std::vector<DataSource>& out);

/// Takes a UTF-8 character that a cut has left incomplete off the end of `text`.
void dropCutCharacter(std::string_view& text);
