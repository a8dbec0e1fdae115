#include "Cli/TableSource.h"

#include "Base/Secret.h"
#include "Database/ConnectString.h"
#include "Database/Tables.h"
#include "Import/MsgBase.h"
#include "Resources/StringTable.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

// Names with a dot, or with blanks around them, are looked up before the import, because the importer takes a bare name
// as a pattern over all owners. Other tables are looked up after the import, and only if they have no type with fields,
// because each lookup is a query of the catalogue.
namespace {

// Returns the names of the tables as an import takes them, each once. Names that it can't take are left out; the
// importer reports them. A name is a line of the importer's source.
CString namesOf(const std::vector<ChosenTable>& tables)
{
    CString names;
    std::set<CString> known;
    for (const ChosenTable& each : tables)
        if (each.isNamable() && known.insert(each.table.name).second)
            names += each.table.name + '\n';
    return names;
}

// Throws std::runtime_error if two tables would become types of the same name. A type is named after its table, without
// owner or database.
void requireDifferentNames(const std::vector<ChosenTable>& tables)
{
    std::map<CString, const TableName*> known;
    for (const ChosenTable& each : tables)
        if (const auto [first, isNew] = known.emplace(each.table.name, &each.table); !isNew)
            throw std::runtime_error(first->second->text() + " and " + each.table.text() + " would become one type, " +
                                     each.table.name + "; import each alone, with its own --base-path");
}

// Returns a hint if the database refuses the logon and only --user was given, which applies to the broker.
CString logonHint(const Arguments& arguments, const CDBException& error)
{
    const bool isMissing = arguments.usesBroker() && arguments.sourceLogon.user.empty();
    return isMissing && error.isLogonRefused() ? "; --source-user logs on to the database" : "";
}

} // namespace

void TableSource::import(MsgBase& message, const Arguments& arguments, const CString& basePath,
                         Diagnostics& diagnostics)
{
    // A password may be in memory from here on.
    keepOutOfCores();
    try {
        read(dynamic_cast<ODBCMessage&>(message), arguments, basePath, diagnostics);
    } catch (const CDBException& error) {
        diagnostics.error(shownSource(error.what()) + logonHint(arguments, error)); // may quote the connection string
    }
}

// Without tables there is nothing to import; importSources() then reports that no types were found.
void TableSource::read(ODBCMessage& message, const Arguments& arguments, const CString& basePath,
                       Diagnostics& diagnostics)
{
    if (!open(arguments))
        return diagnostics.error(loadText(IDS_SELECT_DATASOURCE));
    std::vector<ChosenTable> tables = pickTables(arguments.tables);
    if (arguments.tables.empty() && !listTables(tables))
        return diagnostics.error(loadText(IDS_NO_DATABASE));
    if (tables.empty())
        return;
    message.setChosen(tables);
    message.parseData(namesOf(tables), basePath);
    requireTables(message, tables, diagnostics);
}

bool TableSource::open(const Arguments& arguments)
{
    const LogonOptions& options = arguments.databaseLogon();
    Secret logon;
    if (!options.user.empty()) {
        Secret password;
        readPassword(options, password.text);
        logon.text = logonText(options.user, password.text);
    }
    return database.Open(arguments.sources.front(), CDatabase::readOnly, logon.text);
}

// Lists all tables whose type is TABLE. Returns false if the driver can't.
bool TableSource::listTables(std::vector<ChosenTable>& tables)
{
    CTables found(&database);
    if (!found.Open(nullptr, nullptr, nullptr, "'TABLE'"))
        return false;
    for (found.MoveFirst(); !found.IsEOF(); found.MoveNext())
        tables.push_back({found.queryName(), ChosenTable::listed});
    return true;
}

// Looks up the given names. A name with a dot is a table's whole name if there is such a table, else a qualified name.
std::vector<ChosenTable> TableSource::pickTables(const std::vector<CString>& names)
{
    std::vector<ChosenTable> tables;
    std::set<CString> known;
    for (const CString& each : names) {
        CString name(trimmed(each));
        if (name != each && CTables(&database).mayContain(each))
            name = each; // blanks are a part of it
        if (!known.insert(name).second)
            continue;
        const bool mayBeQualified = name.find('.') != CString::npos && !CTables(&database).mayContain(name);
        const std::optional<TableName> table = mayBeQualified ? qualifiedTable(name) : std::nullopt;
        if (table && std::ranges::find(tables, *table, &ChosenTable::table) != tables.end())
            continue; // the same table by another name
        tables.push_back(table ? ChosenTable{*table, ChosenTable::exact} : ChosenTable{{"", "", name}});
    }
    requireDifferentNames(tables);
    return tables;
}

// Tries each dot, because names can have dots themselves. The driver takes the part behind the dot as a pattern, so its
// results are compared with the whole name.
std::optional<TableName> TableSource::qualifiedTable(const CString& name)
{
    for (std::size_t dot = name.find('.'); dot != CString::npos; dot = name.find('.', dot + 1)) {
        CTables tables(&database);
        tables.Open(nullptr, nullptr, name.substr(dot + 1).c_str(), nullptr); // with any owner and qualifier
        for (tables.MoveFirst(); !tables.IsEOF(); tables.MoveNext())
            if (const TableName table = tables.queryName();
                table.text() == name || (!table.owner.empty() && table.qualifier + "." + table.text() == name))
                return table;
    }
    return std::nullopt;
}

// Reports the first requested table that doesn't exist. A type with fields proves that its table exists, which saves a
// query.
void TableSource::requireTables(MsgBase& message, const std::vector<ChosenTable>& tables, Diagnostics& diagnostics)
{
    std::set<CString> withFields;
    message.beginEnum();
    while (const Element* table = message.enumNext())
        if (table->queryChildren().size() != 0)
            withFields.insert(table->queryName());
    for (const ChosenTable& each : tables)
        if (each.how == ChosenTable::byName && !withFields.contains(each.table.name) &&
            !CTables(&database).mayContain(each.table.name))
            return diagnostics.error("there is no table called " + each.table.name);
}
