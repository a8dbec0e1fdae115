#include "Broker/Client/TypeTable.h"

#include "Database/Statement.h"

#include <optional>
#include <string_view>

namespace {

// The revision counts the replacements of a type. The source belongs to source_revision: an earlier version of the
// program replaces a type without updating the source.
constexpr char kCreateTable[] = "CREATE TABLE IF NOT EXISTS typeforge_types "
                                "(name TEXT PRIMARY KEY, document TEXT NOT NULL, revision INTEGER NOT NULL, "
                                "source TEXT, source_time TEXT, source_revision INTEGER)";
constexpr const char* kAddColumns[] = {"ALTER TABLE typeforge_types ADD COLUMN source TEXT",
                                       "ALTER TABLE typeforge_types ADD COLUMN source_time TEXT",
                                       "ALTER TABLE typeforge_types ADD COLUMN source_revision INTEGER"};

// These statements store nothing, but need the table and all rights that the other statements need.
constexpr char kProbe[] = "INSERT INTO typeforge_types (name, document, revision) "
                          "SELECT name, document, revision FROM typeforge_types WHERE false "
                          "ON CONFLICT (name) DO UPDATE SET document = excluded.document";
constexpr char kProbeSources[] =
    "INSERT INTO typeforge_types (name, document, revision, source, source_time, source_revision) "
    "SELECT name, document, revision, source, source_time, source_revision FROM typeforge_types WHERE false "
    "ON CONFLICT (name) DO UPDATE SET document = excluded.document, source = excluded.source";

// Only PostgreSQL has this function; elsewhere the statement fails.
constexpr char kMissingRights[] =
    "SELECT string_agg(needed, ', ') FROM unnest(ARRAY['SELECT', 'INSERT', 'UPDATE']) needed "
    "WHERE NOT has_table_privilege('typeforge_types', needed)";

// Runs a statement and returns its error, nothing if it succeeds. Throws the error of a busy database.
std::optional<CDBException> attempt(CDatabase& database, const char* sql)
{
    try {
        database.ExecuteSQL(sql);
        return {};
    } catch (const CDBException& error) {
        if (isBusy(database, error))
            throw;
        return error;
    }
}

// Returns the rights on the table that the role lacks, separated by ", "; empty if it has them or there is no table.
CString missingRights(CDatabase& database)
{
    try {
        return runSql(database, kMissingRights).at(0).at(0);
    } catch (const CDBException& error) {
        if (isBusy(database, error))
            throw;
        return {}; // a file, for example, has no rights
    }
}

// Throws the missing rights if the table exists, because the server's error would then be about creating it.
[[noreturn]] void raiseMissing(CDatabase& database, const CDBException& failure)
{
    const CString rights = missingRights(database);
    if (rights.empty())
        throw failure;
    throw CDBException("42501", 0, "The table typeforge_types exists, but this user has no right to " + rights + " it");
}

// Creates the table only if the probe fails, because users who only add types may lack the right to create it. If
// another program creates it at the same moment, the second probe succeeds.
void findOrMakeTable(CDatabase& database)
{
    if (!attempt(database, kProbe))
        return;
    const std::optional<CDBException> failure = attempt(database, kCreateTable);
    if (const std::optional<CDBException> missing = attempt(database, kProbe))
        raiseMissing(database, failure ? *failure : *missing);
}

// Adds each column separately, because another program may be adding them too, or have been interrupted.
void addSourceColumns(CDatabase& database, TypeTable::Place place)
{
    if (place == TypeTable::Place::server) // a lock request in the queue blocks all others
        database.ExecuteSQL("SET lock_timeout = '1s'");
    for (const char* column : kAddColumns)
        attempt(database, column);
    if (place == TypeTable::Place::server)
        database.ExecuteSQL("RESET lock_timeout");
}

} // namespace

bool isBusy(const CDatabase& database, const CDBException& error)
{
    return !database.IsOpen() || std::string_view(error.what()).find("database is locked") != std::string_view::npos;
}

TypeTable::TypeTable(CDatabase& database, Place openPlace) : place(openPlace)
{
    // The usual case: one statement finds the table, all columns and all rights.
    keepsSources = !attempt(database, kProbeSources);
    if (keepsSources)
        return;
    findOrMakeTable(database);
    keepsSources = !attempt(database, kProbeSources);
    if (keepsSources)
        return;
    // Fails silently for a role that may not alter the table; types are then stored without sources.
    addSourceColumns(database, place);
    keepsSources = !attempt(database, kProbeSources);
}
