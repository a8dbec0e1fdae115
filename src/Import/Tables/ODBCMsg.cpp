#include "Import/Tables/ODBCMsg.h"

#include "Base/Progress.h"
#include "Base/QELStr.h"
#include "Database/Columns.h"
#include "Database/MainWindow.h"
#include "Database/Statement.h"
#include "Database/Tables.h"

#include <algorithm>
#include <span>

namespace {

// SQL data types by their ODBC codes, of ODBC 2 and 3. Bits, binaries and GUIDs are missing, so their columns are left
// out. Dates come with the codes of ODBC 2, because the environment is one of ODBC 2 (SQLAllocEnv).
constexpr struct
{
    LONG first, last;
    Element::ElementTypes type;
} kSqlTypes[] = {
    {-10, -8, Element::typeString},  // WLONGVARCHAR, WVARCHAR, WCHAR
    {-6, -5, Element::typeNumber},   // TINYINT, BIGINT
    {-1, -1, Element::typeString},   // LONGVARCHAR
    {1, 1, Element::typeString},     // CHAR
    {2, 8, Element::typeNumber},     // NUMERIC, DECIMAL, INTEGER, SMALLINT, FLOAT, REAL, DOUBLE
    {9, 11, Element::typeDate},      // DATE, TIME, TIMESTAMP of ODBC 2
    {12, 12, Element::typeString},   // VARCHAR
    {91, 93, Element::typeDate},     // DATE, TIME, TIMESTAMP of ODBC 3
    {101, 113, Element::typeNumber}, // the intervals
};

const CString& nameOf(const ChosenTable& chosen)
{
    return chosen.table.name;
}

// Returns the tables of a name. `chosen` is sorted by name.
std::span<const ChosenTable> allCalled(const std::vector<ChosenTable>& chosen, const CString& name)
{
    return {std::ranges::lower_bound(chosen, name, {}, nameOf), std::ranges::upper_bound(chosen, name, {}, nameOf)};
}

// Returns whether the recordset may have cut a text.
bool mayBeCut(const CString& text)
{
    constexpr std::size_t longest = 255, characterPart = 3; // bytes; the last character may be dropped in part
    return text.size() >= longest - characterPart && text.size() <= longest;
}

const char* textOrNull(const CString& text)
{
    return text.empty() ? nullptr : text.c_str();
}

CDatabase* databaseOf(MainWindow* window)
{
    return window ? window->queryDatabase() : nullptr;
}

} // namespace

bool ChosenTable::isNamable() const
{
    return !trimmed(table.name).empty() && trimmed(table.name, " ") == table.name &&
           table.name.find('\n') == CString::npos;
}

std::optional<Element::ElementTypes> elementTypeOf(LONG dataType)
{
    for (const auto& row : kSqlTypes)
        if (dataType >= row.first && dataType <= row.last)
            return row.type;
    return std::nullopt;
}

ODBCMessage::ODBCMessage() : MsgBase(0), mainWindow(::mainWindow()) {}

void ODBCMessage::setChosen(std::vector<ChosenTable> tables)
{
    chosen = std::move(tables);
    std::ranges::sort(chosen, {}, nameOf);
}

// If the columns of a table can't be listed, its record has no fields and the import continues. A database error ends
// the import.
int ODBCMessage::parse(const CString& source, const CString& basePath, const CString&)
{
    ProgressMeter progress(Work::tables, static_cast<std::uint64_t>(std::ranges::count(source, '\n')), 1);
    std::uint64_t done = 0;
    reportUnnamed();
    // One object for all tables, because it caches which databases have which tables.
    CColumns columns(databaseOf(mainWindow));
    QELStringIterator names(source.c_str());
    names.beginEnum('\n');
    QELString name;
    for (int more = 1; more;) {
        more = names.enumNext(name);
        if (name.isNull())
            break;
        name.trim();
        createFromTable(columns, CString(name), basePath);
        progress.step(++done);
    }
    return 1;
}

// Adds the record of a table. It is added even if no column can be read, so that each chosen table has a type.
void ODBCMessage::createFromTable(CColumns& columns, const CString& tableName, const CString& basePath)
{
    const TableName* const exact = exactTable(tableName);
    if (exact)
        columns.Open(textOrNull(exact->qualifier), textOrNull(exact->owner), tableName.c_str(), nullptr);
    else
        // Among tables of this name, the driver chooses by its search path or current database.
        columns.Open(nullptr, nullptr, tableName.c_str(), nullptr, CRecordset::snapshot);
    const SourcePlace place{report.addFile(tableName)};
    const TypeModel::Declared table = model.addElement(tableName, basePath, tableName, "", Element::typeRow, nullptr);
    reportName(tableName, place);
    reportSameKey(table, tableName, place);
    std::set<TableName> read;
    for (columns.MoveFirst(); !columns.IsEOF(); columns.MoveNext()) {
        // The driver takes the name as a pattern, so it may list columns of other tables.
        if (exact && columns.queryTable() != *exact)
            continue;
        read.insert(columns.queryTable());
        reportName(columns.columnName, place);
        reportCuts(columns, place);
        if (const auto type = elementTypeOf(columns.dataType)) {
            // The key has no separator, because existing documents depend on that.
            const CString key = tableName + columns.columnName;
            reportSameKey(model.addElement(key, basePath, columns.columnName, columns.remarks, *type, table.element),
                          tableName + "." + columns.columnName, place);
        } else {
            report.add(SourceReport::columnSkipped, place, columns.columnName + " (" + columns.typeName + ")");
        }
    }
    columns.Close();
    if (read.empty())
        reportEmpty(tableName, place);
    else
        reportTables(tableName, place, read);
    reportGenerated(*table.element, read, place);
}

// Reports why a table has no columns. Only the catalogue distinguishes an empty table from one that was dropped since
// it was listed.
void ODBCMessage::reportEmpty(const CString& tableName, SourcePlace place)
{
    if (CTables(databaseOf(mainWindow)).mayContain(tableName))
        report.add(SourceReport::emptyTable, place, tableName);
    else if (mayBeCut(tableName))
        report.add(SourceReport::cutShort, place, "a table's name, to 255 bytes: " + tableName);
    else
        report.add(SourceReport::tableGone, place, tableName);
}

// Reports a name in which a document can't hold each character or byte.
void ODBCMessage::reportName(const CString& name, SourcePlace place)
{
    if (!isXmlText(name))
        report.add(SourceReport::nameAdjusted, place, name + " is " + toXmlText(name));
}

// Reports texts that the recordset has cut.
void ODBCMessage::reportCuts(const CColumns& columns, SourcePlace place)
{
    if (mayBeCut(columns.columnName))
        report.add(SourceReport::cutShort, place, "a column's name, to 255 bytes: " + columns.columnName);
    if (mayBeCut(columns.remarks))
        report.count(SourceReport::documentationCut);
}

// Reports generated columns, which SQLite's driver doesn't list.
void ODBCMessage::reportGenerated(const Element& record, const std::set<TableName>& read, SourcePlace place)
{
    CDatabase* const database = databaseOf(mainWindow);
    if (!database || !database->isSqlite())
        return;
    for (const TableName& table : read)
        for (const auto& row :
             runSql(*database, "SELECT name FROM pragma_table_xinfo(?) WHERE hidden IN (2, 3)", {table.name}))
            if (std::ranges::find(record.queryChildren(), row[0], &Element::queryName) == record.queryChildren().end())
                report.add(SourceReport::columnSkipped, place, row[0] + " (generated)");
}

// Reports a column or a record, called `name`, whose usage key a field of another record or a record has: AB.C, A.BC
// and the table ABC have the same key, and so do the columns of a table that is chosen twice. The first owner of the
// key then becomes a table.
void ODBCMessage::reportSameKey(const TypeModel::Declared& made, const CString& name, SourcePlace place)
{
    if (!made.sharedWith)
        return;
    const Element* const record = made.sharedWith->queryParent(); // null for a record
    report.add(SourceReport::inventedRepetition, place,
               (record ? record->queryName() + "." : CString()) + made.sharedWith->queryElement()->queryName() +
                   ", because of " + name);
}

// Returns the only table whose columns are to be read; null if all tables that match the name are.
const TableName* ODBCMessage::exactTable(const CString& tableName) const
{
    for (const ChosenTable& each : allCalled(chosen, tableName))
        if (each.how == ChosenTable::exact)
            return &each.table;
    return nullptr;
}

// Reports the tables whose columns came into one record, and those of its name whose columns didn't.
void ODBCMessage::reportTables(const CString& tableName, SourcePlace place, const std::set<TableName>& read)
{
    if (read.size() > 1) {
        CString all;
        for (const TableName& table : read)
            all += (all.empty() ? "" : ", ") + table.text();
        report.add(SourceReport::severalTables, place, all);
    }
    std::set<TableName> hidden;
    for (const ChosenTable& each : allCalled(chosen, tableName))
        if (each.how == ChosenTable::listed && !read.contains(each.table))
            hidden.insert(each.table);
    // If only other tables match the name, the table itself has no columns, or is where the driver doesn't look.
    CTables tables(databaseOf(mainWindow));
    if (std::ranges::find(read, tableName, &TableName::name) == read.end())
        tables.Open(nullptr, nullptr, tableName.c_str(), nullptr);
    for (tables.MoveFirst(); !tables.IsEOF(); tables.MoveNext())
        if (tables.tableName == tableName)
            hidden.insert(tables.queryName());
    for (const TableName& table : hidden)
        report.add(SourceReport::tableHidden, place, table.text());
}

void ODBCMessage::reportUnnamed()
{
    for (const ChosenTable& each : chosen)
        if (!each.isNamable())
            report.add(SourceReport::tableUnnamed, {report.addFile("")}, "\"" + each.table.text() + "\"");
}
