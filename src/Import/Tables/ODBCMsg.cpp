#include "Import/Tables/ODBCMsg.h"

#include "Base/Progress.h"
#include "Base/QELStr.h"
#include "Database/Columns.h"
#include "Database/MainWindow.h"
#include "Database/Tables.h"

#include <algorithm>

namespace {

// SQL types by ODBC's codes, those of ODBC 2 and 3 side by side. Bits, binaries and GUIDs have no row.
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

} // namespace

std::optional<Element::ElementTypes> elementTypeOf(LONG dataType)
{
    for (const auto& row : kSqlTypes)
        if (dataType >= row.first && dataType <= row.last)
            return row.type;
    return std::nullopt;
}

ODBCMessage::ODBCMessage() : MsgBase(0), mainWindow(::mainWindow()) {}

int ODBCMessage::parse(const CString& source, const CString& basePath, const CString&)
{
    ProgressMeter progress(Work::tables, static_cast<std::uint64_t>(std::ranges::count(source, '\n')), 1);
    std::uint64_t done = 0;
    CColumns columns(mainWindow ? mainWindow->queryDatabase() : nullptr);
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

// Whether the data source says that there is no such table, or view.
bool ODBCMessage::isGone(const CString& tableName) const
{
    CTables tables(mainWindow ? mainWindow->queryDatabase() : nullptr);
    return tables.Open(nullptr, nullptr, tableName.c_str(), nullptr) && tables.IsEOF();
}

void ODBCMessage::createFromTable(CColumns& columns, const CString& tableName, const CString& basePath)
{
    columns.Open(nullptr, nullptr, tableName.c_str(), nullptr, CRecordset::snapshot);
    Element* table = addElement(tableName, basePath, tableName, "", Element::typeRow, nullptr);
    const SourcePlace place{report.addFile(tableName)};
    bool isEmpty = true;
    for (columns.MoveFirst(); !columns.IsEOF(); columns.MoveNext()) {
        isEmpty = false;
        if (const auto type = elementTypeOf(columns.dataType))
            addElement(tableName + columns.columnName, basePath, columns.columnName, columns.remarks, *type, table);
        else
            report.add(SourceReport::columnPassedOver, place, columns.columnName + " (" + columns.typeName + ")");
    }
    columns.Close();
    if (isEmpty)
        report.add(isGone(tableName) ? SourceReport::tableGone : SourceReport::emptyTable, place, tableName);
}
