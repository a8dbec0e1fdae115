#pragma once

#include "Base/Text.h"
#include "Database/Handles.h"

#include <map>
#include <string_view>

class MessageReader;

/// The requests to a driver's process. A request is one of these numbers with its arguments; a successful answer is
/// DriverOutcome::done with its results. Both are given here as (arguments) -> (results). The connection's side is
/// CDatabase, CRecordset and runSql().
enum class DriverRequest : std::int32_t
{
    open,      ///< (read only, logon seconds, connection string) -> (is open, owner usage, qualifier usage, is SQLite)
    execute,   ///< (SQL) -> ()
    catalogue, ///< (function, row shape, then for each call 4 times (is given, text)) -> (CatalogueOutcome, rows)
    run        ///< (SQL, then values) -> (number of columns, then the rows' texts)
};

/// Returns the start of a request; append its arguments with putNumber() and putText().
CString startRequest(DriverRequest request);

/// The first number of an answer. noMemory means that the driver's process has too little memory, and becomes
/// std::bad_alloc in the program.
enum class DriverOutcome : std::int32_t
{
    done,
    raised, ///< a CDBException: (connection lost, SQLSTATE, native error, text)
    noMemory
};

/// The first result of DriverRequest::catalogue.
enum class CatalogueOutcome : std::int32_t
{
    noStatement, ///< the driver can't allocate a statement
    listed,
    unsupported ///< the driver lacks the function
};

/// One connection in its driver's process, used by one thread. Drivers are called nowhere else. Requests other than
/// `open` need an open connection.
class DriverHost
{
public:
    /// Carries out a request and returns the answer. A CDBException and a lack of memory become answers too.
    CString answer(std::string_view request);

private:
    // Each appends its results to `answer`, and throws CDBException or std::bad_alloc.
    void carryOut(MessageReader& request, CString& answer);
    void open(MessageReader& request, CString& answer);
    void execute(const CString& sql);
    void listCatalogue(MessageReader& request, CString& answer);
    void run(MessageReader& request, CString& answer);

    // allocateStatement() returns null if the driver can't allocate one, requireStatement() throws its error.
    StatementHandle allocateStatement() const;
    StatementHandle requireStatement() const;
    unsigned infoNumber(unsigned short question) const;
    bool isSqlite() const;
    bool isLost(const CString& state) const;

    EnvironmentHandle environment; // above the connection, which must be freed first
    ConnectionHandle connection;
    // Below the connection, because statements must be freed first. Kept to the end of the connection: a client
    // runs a few statements many times.
    std::map<CString, StatementHandle> prepared; // by SQL text
};

/// Carries out the requests from a socket until it closes, then disconnects. The socket stays open.
void serveDriver(int socket);
