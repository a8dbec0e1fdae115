#include "Cli/TableSource.h"

#include "Base/QELApp.h"
#include "Base/Secret.h"
#include "Database/ConnectString.h"
#include "Database/Tables.h"
#include "Import/MsgBase.h"
#include "Resources/StringIds.h"

#include <set>

namespace {

struct NoTable
{
    CString name;
};

} // namespace

void TableSource::import(MsgBase& message, const Arguments& arguments, const CString& basePath,
                         Diagnostics& diagnostics)
{
    keepOutOfCores();
    try {
        read(message, arguments, basePath);
    } catch (const CDBException& error) {
        diagnostics.error(error.what());
    } catch (const NoTable& table) {
        diagnostics.error("there is no table called " + table.name);
    }
}

void TableSource::read(MsgBase& message, const Arguments& arguments, const CString& basePath)
{
    if (!open(arguments))
        return;
    CString names;
    for (const CString& table : arguments.tables)
        names += table + '\n';
    if ((arguments.tables.empty() && !listTables(names)) || names.empty())
        return;
    message.parseData(names, basePath);
    requireTables(message, arguments.tables);
}

// With --create the user and the password are the broker's.
bool TableSource::open(const Arguments& arguments)
{
    Secret logon;
    if (!arguments.logon.user.empty() && !arguments.usesBroker()) {
        Secret password;
        readPassword(arguments.logon, password.text);
        logon.text = logonText(arguments.logon.user, password.text);
    }
    if (database.Open(arguments.sources.front(), CDatabase::readOnly, logon.text))
        return true;
    theApp.Error(IDS_SELECT_DATASOURCE, IDS_ERROR_TITLE);
    return false;
}

// A table that is asked for by its name is not to be missed in silence. One that has fields is there.
void TableSource::requireTables(MsgBase& message, const std::vector<CString>& names)
{
    std::set<CString> withFields;
    message.beginEnum();
    while (const Element* table = message.enumNext())
        if (table->queryChildren().size() != 0)
            withFields.insert(table->queryName());
    for (const CString& name : names)
        if (const CString table(trimmed(name)); !withFields.contains(table))
            requireTable(table);
}

// Views and their like count too.
void TableSource::requireTable(const CString& name)
{
    CTables tables(&database);
    if (tables.Open(nullptr, nullptr, name.c_str(), nullptr) && tables.IsEOF())
        throw NoTable{name};
}

// All that are of the type TABLE, each name ended by a line feed.
bool TableSource::listTables(CString& names)
{
    CTables tables(&database);
    if (!tables.Open(nullptr, nullptr, nullptr, "'TABLE'")) {
        theApp.Error(IDS_NO_DATABASE, IDS_ERROR_TITLE);
        return false;
    }
    for (tables.MoveFirst(); !tables.IsEOF(); tables.MoveNext())
        names += tables.tableName + '\n';
    return true;
}
