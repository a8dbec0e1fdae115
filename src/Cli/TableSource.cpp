#include "Cli/TableSource.h"

#include "Formats/MsgBase.h"
#include "Platform/Database/Tables.h"
#include "Resources/StringIds.h"
#include "Utils/QELApp.h"

bool TableSource::import(MsgBase& message, const Arguments& arguments, const CString& basePath)
{
    if (!database.Open(arguments.source)) {
        theApp.Error(IDS_SELECT_DATASOURCE, IDS_ERROR_TITLE);
        return false;
    }
    CString names;
    for (const CString& table : arguments.tables)
        names += table + '\n';
    if (arguments.tables.empty() && !listTables(names))
        return false;
    return !names.empty() && message.parseData(names, basePath) != 0;
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
