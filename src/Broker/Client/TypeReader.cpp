#include "Broker/Client/TypeReader.h"

#include "Broker/Client/TypeStatements.h"
#include "Database/Statement.h"

#include <utility>

namespace {

// Probes return no row, but need the table and the columns that they name.
constexpr char kProbe[] = "SELECT name, document, revision FROM typeforge_types WHERE false";
constexpr char kProbeSources[] = "SELECT source, source_time, source_revision FROM typeforge_types WHERE false";
// Not with LIKE, to which `_` and `\` in names are special.
constexpr char kReadFolder[] = "SELECT name, document FROM typeforge_types "
                               "WHERE substr(name, 1, length(CAST(? AS TEXT))) = ? ORDER BY name";

// The errors for a missing table or column: SQLSTATEs, or SQLite's words.
struct Missing
{
    const char *state, *otherState, *words;
};
constexpr Missing kMissingTable = {"42P01", "42S02", "no such table"};
constexpr Missing kMissingColumn = {"42703", "42S22", "no such column"};

// Runs a probe. Returns false if it fails with one of the errors in `missing`.
bool exists(CDatabase& database, const char* probe, const Missing& missing)
{
    try {
        database.ExecuteSQL(probe);
        return true;
    } catch (const CDBException& error) {
        const CString& state = error.queryState();
        if (state != missing.state && state != missing.otherState &&
            error.queryText().find(missing.words) == CString::npos)
            throw;
        return false;
    }
}

} // namespace

TypeReader::TypeReader(std::shared_ptr<CDatabase> open, TypeTable::Place place) :
    database(open && exists(*open, kProbe, kMissingTable) ? std::move(open) : nullptr),
    table(place, database && exists(*database, kProbeSources, kMissingColumn))
{}

std::vector<StoreOutcome> TypeReader::store(std::span<const NamedDocument> types, const CString&, ExistingRules rules)
{
    std::vector<StoreOutcome> outcomes;
    for (const NamedDocument& type : types) {
        outcomes.push_back(find(type, rules));
        if (stops(outcomes.back(), rules))
            break;
    }
    return outcomes;
}

StoreOutcome TypeReader::find(const NamedDocument& type, ExistingRules rules) const
{
    const SqlRows rows = database ? runSql(*database, findStatement(table), {type.document, type.name}) : SqlRows();
    if (rows.empty())
        return {StoreOutcome::created};
    const bool isSame = rows[0][1] == "1";
    const SourceMark mark = {rows[0][2], rows[0][3]};
    // `replace` and `replaceFound`. The latter is not checked against an earlier outcome, because nothing is replaced.
    if (rules.ruleFor(isSame) >= VornExisting::replace)
        return {StoreOutcome::replaced, mark};
    return {isSame ? StoreOutcome::unchanged : StoreOutcome::exists, mark};
}

std::vector<CString> TypeReader::readFolder(const CString& folder) const
{
    std::vector<CString> documents;
    if (!database)
        return documents;
    // The server also returns the types of folders below. Their names have a further backslash.
    for (auto& row : runSql(*database, kReadFolder, {folder, folder}))
        if (row[0].find('\\', folder.size()) == CString::npos)
            documents.push_back(std::move(row[1]));
    return documents;
}
