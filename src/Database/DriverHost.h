#pragma once

#include "Base/Text.h"
#include "Database/Handles.h"

#include <map>
#include <string_view>

class MessageReader;

/// What a driver's process is asked for. Each request starts with one of these numbers; what follows, and what the
/// answer holds behind DriverOutcome::done, stands with it as (request) -> (answer).
enum class DriverRequest : std::int32_t
{
    open,    ///< (is it read only, seconds for the logon, connection string) -> (is it open, usage of owners, usage of
             ///< qualifiers)
    execute, ///< (SQL) -> ()
    catalogue, ///< (function, shape of a row, then calls of four times (is it given, text)) -> (CatalogueOutcome, rows)
    prepare,   ///< (SQL) -> ()
    run        ///< (SQL as prepared, then values) -> (number of columns, then the rows' texts)
};

/// A request that its arguments can be appended to.
CString startRequest(DriverRequest request);

/// What an answer starts with.
enum class DriverOutcome : std::int32_t
{
    done,
    raised, ///< a CDBException: (is the connection lost, SQLSTATE, native error, text)
    noMemory
};

enum class CatalogueOutcome : std::int32_t
{
    noStatement, ///< the driver has none to give
    listed,
    unsupported ///< the driver lacks the function
};

/// One connection in the process of its driver: the only place where drivers are called.
class DriverHost
{
public:
    /// Carries out a request and returns the answer.
    CString answer(std::string_view request);

private:
    void carryOut(MessageReader& request, CString& answer);
    void open(MessageReader& request, CString& answer);
    void execute(const CString& sql);
    void listCatalogue(MessageReader& request, CString& answer);
    void prepare(const CString& sql);
    void run(MessageReader& request, CString& answer);

    StatementHandle allocateStatement() const;
    StatementHandle requireStatement() const;
    unsigned number(unsigned short question) const;
    bool isSqlite() const;
    bool isLost(const CString& state) const;

    EnvironmentHandle environment; // above the connection, which has to go first
    ConnectionHandle connection;
    std::map<CString, StatementHandle> prepared; // by their SQL
};

/// Carries out what comes over the socket, up to its end, and disconnects.
void serveDriver(int socket);
