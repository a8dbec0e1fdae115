#include "Broker/Client/TypeStore.h"

#include "Broker/Client/TypeBatch.h"
#include "Broker/Client/TypeStatements.h"

#include <ctime>
#include <tuple>
#include <utility>

// A type is inserted. If it exists already, its revision is read, and it is replaced only if it still has that
// revision, so that no change of another program is lost. Each of these statements is a transaction. If one finds the
// type changed, they start over. runBatch() does the same for many types in a program on the server, and leaves
// types that it can't store to storeOne().
namespace {

// Fewer types are stored faster one by one, because the server compiles the program for each batch.
constexpr std::size_t kMinBatch = 32;

// A type that another program changes between two statements is tried again. More often than this, it is the table that
// drops or hides rows, by a trigger or a policy.
constexpr int kMaxAttempts = 100;

// Commits synchronously, which waits until this and all earlier commits are on disk. The logical message gives the
// commit something to write. A stronger setting of the administrator than `on` is kept.
constexpr char kFinish[] = "SELECT set_config('synchronous_commit', "
                           "CASE reset_val WHEN 'off' THEN 'on' ELSE reset_val END, true), "
                           "pg_logical_emit_message(true, 'typeforge', '') "
                           "FROM pg_settings WHERE name = 'synchronous_commit'";

CString timeNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    char text[sizeof "2026-01-31T23:59:59Z"] = "";
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", gmtime_r(&now, &parts));
    return text;
}

} // namespace

TypeStore::TypeStore(std::shared_ptr<CDatabase> open, TypeTable::Place place) :
    database(std::move(open)), table(*database, place), hasBatches(place == TypeTable::Place::server)
{
    if (place == TypeTable::Place::server)
        database->ExecuteSQL("SET synchronous_commit = off"); // for the connection
}

// A program may release the repository without a finish(). A failure can't be reported then.
TypeStore::~TypeStore()
{
    try {
        finish();
    } catch (...) { // also Cancelled
    }
}

StoreOutcome::Code TypeStore::store(const NamedDocument& type, bool overwrite)
{
    // Without a source; the statements have both parameters in any case.
    const Values values = {type.name, type.document, "", ""};
    if (!overwrite)
        return run(insertStatement(table), values).empty() ? StoreOutcome::exists : StoreOutcome::created;
    return run(upsertStatement(table), values).at(0).at(0) == "0" ? StoreOutcome::created : StoreOutcome::replaced;
}

std::vector<StoreOutcome> TypeStore::store(std::span<const NamedDocument> types, const CString& source,
                                           ExistingRules rules)
{
    // The time of the call, which all of its types get.
    const SourceMark mark = {source, timeNow()};
    const bool isBatch = hasBatches && !busy && types.size() >= kMinBatch;
    if (isBatch)
        if (std::vector<StoreOutcome> stored = storeBatch(types, mark, rules); !stored.empty())
            return stored;
    std::vector<StoreOutcome> stored = {storeOne(types.front(), mark, rules)};
    if (isBatch && !stops(stored.back(), rules))
        hasBatches = false; // the batch should have stored that type
    try {
        while (!isBatch && stored.size() < types.size() && !stops(stored.back(), rules))
            stored.push_back(storeOne(types[stored.size()], mark, rules));
    } catch (const CDBException&) { // the next call will throw it
    }
    return stored;
}

// Stores types as a batch. Returns nothing if the first type needs storeOne(), or if the server refuses the program.
std::vector<StoreOutcome> TypeStore::storeBatch(std::span<const NamedDocument> types, const SourceMark& mark,
                                                ExistingRules rules)
{
    isPending = true;
    try {
        return runBatch(*database, table, types, mark, rules);
    } catch (const CDBException&) {
        if (!database->IsOpen())
            throw;
        return {};
    }
}

// Stores one type. Repeats if another program changed the type between two statements.
StoreOutcome TypeStore::storeOne(const NamedDocument& type, const SourceMark& mark, ExistingRules rules)
{
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        if (!run(insertStatement(table), {type.name, type.document, mark.source, mark.time}).empty())
            return {StoreOutcome::created};
        const SqlRows rows = run(findStatement(table), {type.document, type.name});
        if (rows.empty())
            continue;
        const auto& [revision, same, source, time] = std::tie(rows[0][0], rows[0][1], rows[0][2], rows[0][3]);
        const bool isSame = same == "1";
        const VornExisting rule = rules.ruleFor(isSame);
        // A change by another program has raised the revision, so replaceFound only replaces the type that the user was
        // asked about.
        const Found found = {type.name, revision};
        if (rule == VornExisting::replace || (rule == VornExisting::replaceFound && found == lastStopped)) {
            if (!run(updateStatement(table), {type.name, type.document, mark.source, mark.time, revision}).empty())
                return {StoreOutcome::replaced, {source, time}};
            continue;
        }
        lastStopped = found;
        return {isSame ? StoreOutcome::unchanged : StoreOutcome::exists, {source, time}};
    }
    throw CDBException("S1000", 0, "The table typeforge_types neither takes the type nor shows it");
}

SqlRows TypeStore::run(const CString& sql, Values values)
{
    if (busy)
        throw *busy;
    // Set before the call, because a failed one can have stored something.
    isPending = true;
    try {
        return runSql(*database, sql, values);
    } catch (const CDBException& error) {
        if (isBusy(*database, error))
            busy = error;
        throw;
    }
}

void TypeStore::finish()
{
    // Not for a file, whose commits survive the end of the process (Address).
    if (table.place == TypeTable::Place::server && isPending)
        database->ExecuteSQL(kFinish);
    isPending = false;
}
