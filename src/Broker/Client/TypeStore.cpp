#include "Broker/Client/TypeStore.h"

#include <utility>

namespace {

// The revision counts how often the type has been replaced: it is how one statement can tell created from replaced.
// Both databases take the same SQL. It begins with WITH, since the SQLite driver doesn't hand out the rows of a
// statement that begins with INSERT.
constexpr char kCreateTable[] = "CREATE TABLE IF NOT EXISTS typeforge_types "
                                "(name TEXT PRIMARY KEY, document TEXT NOT NULL, revision INTEGER NOT NULL)";
constexpr char kInsert[] = "WITH type (name, document) AS (SELECT ?, ?) "
                           "INSERT INTO typeforge_types (name, document, revision) "
                           "SELECT name, document, 0 FROM type WHERE true "
                           "ON CONFLICT (name) DO NOTHING RETURNING revision";
constexpr char kUpsert[] = "WITH type (name, document) AS (SELECT ?, ?) "
                           "INSERT INTO typeforge_types (name, document, revision) "
                           "SELECT name, document, 0 FROM type WHERE true "
                           "ON CONFLICT (name) DO UPDATE SET document = excluded.document, "
                           "revision = typeforge_types.revision + 1 RETURNING revision";
// Stores nothing, yet needs the table and every right that the others need.
constexpr char kProbe[] = "INSERT INTO typeforge_types (name, document, revision) "
                          "SELECT name, document, revision FROM typeforge_types WHERE false "
                          "ON CONFLICT (name) DO UPDATE SET document = excluded.document";

// A commit waits for the disk if it is synchronous and there is something to write, which the message is. All earlier
// commits reach the disk before it. Where the administrator asks for more than `on` the server goes on doing so.
constexpr char kFinish[] = "SELECT set_config('synchronous_commit', "
                           "CASE reset_val WHEN 'off' THEN 'on' ELSE reset_val END, true), "
                           "pg_logical_emit_message(true, 'typeforge', '') "
                           "FROM pg_settings WHERE name = 'synchronous_commit'";

// What stands in the way of using the table; nothing when it can be used.
std::optional<CDBException> probe(CDatabase& database)
{
    try {
        database.ExecuteSQL(kProbe);
        return {};
    } catch (const CDBException& error) {
        return error;
    }
}

// A database that another program has locked, or that is silent: no use in asking it anything else.
bool isBusy(const CDatabase& database, const CDBException& error)
{
    return !database.IsOpen() || std::string_view(error.what()).find("database is locked") != std::string_view::npos;
}

// Making the table comes second: it needs a right that whoever only adds types may lack, also where the table is
// there. Where it fails because another has just made it, the second probe tells.
void findOrMakeTable(CDatabase& database)
{
    const std::optional<CDBException> missing = probe(database);
    if (!missing)
        return;
    if (isBusy(database, *missing))
        throw *missing;
    try {
        database.ExecuteSQL(kCreateTable);
    } catch (const CDBException&) {
        if (probe(database))
            throw;
        return;
    }
    database.ExecuteSQL(kProbe);
}

} // namespace

TypeStore::TypeStore(std::shared_ptr<CDatabase> open, Place openPlace) : database(std::move(open)), place(openPlace)
{
    findOrMakeTable(*database);
    if (place == Place::server)
        database->ExecuteSQL("SET synchronous_commit = off"); // for the connection
    insert = std::make_unique<CStatement>(*database, kInsert);
    upsert = std::make_unique<CStatement>(*database, kUpsert);
}

TypeStore::~TypeStore()
{
    try {
        finish();
    } catch (...) { // also Cancelled
    }
}

TypeStore::Outcome TypeStore::store(const CString& name, const char* document, bool overwrite)
{
    if (busy)
        throw *busy;
    isPending = true;
    try {
        const CStatement::Rows revisions = (overwrite ? *upsert : *insert).execute({name, document});
        if (revisions.empty())
            return exists;
        return revisions[0][0] == "0" ? created : replaced;
    } catch (const CDBException& error) {
        if (isBusy(*database, error))
            busy = error;
        throw;
    }
}

void TypeStore::finish()
{
    if (place == Place::server && isPending)
        database->ExecuteSQL(kFinish);
    isPending = false;
}
