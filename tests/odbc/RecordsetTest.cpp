#include "Database/Columns.h"
#include "Database/Tables.h"
#include "TestFolders.h"
#include "odbc/Import.h"
#include "support/Boxes.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <tuple>

// Handwritten catalogues, returned by a test driver.
class Recordset : public testing::Test
{
protected:
    CString catalogue(const CString& rows, const CString& more = {}) const
    {
        return "Driver=" TEST_BUILD_DIR "/libtest_driver.so;Rows=" + dir.write("rows", rows) + ";" + more;
    }

    const CString kColumn = "\t\t\ta\t1\n";
    Boxes boxes;
    TempDir dir;
};

TEST_F(Recordset, BindsEachColumnOfTheResultToItsMember)
{
    Connected window(catalogue("q\to\tt\tc\t-9\tvarchar\t1\t2\t3\t10\t5\tr\n\t\tu\n"));
    CColumns columns(&window.database);
    ASSERT_EQ(columns.Open(nullptr, nullptr, "t", nullptr), 1);
    const auto row = [&columns] {
        return std::tuple(columns.tableQualifier, columns.tableOwner, columns.tableName, columns.columnName,
                          columns.dataType, columns.typeName, columns.precision, columns.length, columns.scale,
                          columns.radix, columns.nullable, columns.remarks);
    };
    const std::tuple first("q", "o", "t", "c", -9, "varchar", 1, 2, 3, 10, 5, "r");
    EXPECT_EQ(row(), first);
    columns.MoveNext();
    EXPECT_EQ(row(), std::tuple("", "", "u", "", 0, "", 0, 0, 0, 0, 0, "")) << "what is null";
    columns.MoveNext();
    EXPECT_TRUE(columns.IsEOF());
    columns.MoveFirst();
    EXPECT_EQ(row(), first) << "the snapshot is kept";
    EXPECT_FALSE(columns.IsBOF() || columns.IsEOF());

    CTables tables(&window.database);
    EXPECT_TRUE(tables.IsBOF() && tables.IsEOF() && !tables.IsOpen());
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, "'TABLE'"), 1);
    EXPECT_EQ(std::tuple(tables.tableQualifier, tables.tableOwner, tables.tableName, tables.tableType, tables.remarks),
              std::tuple("q", "o", "t", "c", "-9"));
    catalogue("");
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, nullptr), 1);
    tables.MoveFirst();
    tables.MoveNext();
    EXPECT_TRUE(tables.IsBOF() && tables.IsEOF() && tables.IsOpen()) << "without a row";
}

TEST_F(Recordset, CutsLongTextsBetweenCharacters)
{
    const CString a(253, 'a');
    const std::pair<CString, CString> cases[] = {{a + "xy", a + "xy"},
                                                 {a + "xyz", a + "xy"},
                                                 {a + "ü", a + "ü"},
                                                 {a + "xü", a + "x"},
                                                 {a + "€", a},
                                                 {a + "x\U0001F600", a + "x"},
                                                 {"\xE9t\xE9", "\xE9t\xE9"},
                                                 {CString(9999, 'z'), CString(255, 'z')}};
    CString rows;
    for (const auto& [given, kept] : cases)
        rows += "\t\t" + given + "\n";
    Connected window(catalogue(rows));
    CTables tables(&window.database);
    tables.Open(nullptr, nullptr, nullptr, nullptr);
    for (const auto& [given, kept] : cases) {
        EXPECT_EQ(tables.tableName, kept) << given;
        tables.MoveNext();
    }
}

TEST_F(Recordset, EverySqlTypeBecomesItsFieldOrNone)
{
    CString rows;
    for (int code = -160; code <= 160; ++code)
        rows += "\t\t\tc" + std::to_string(code) + "\t" + std::to_string(code) + "\n";
    const Connected window(catalogue(rows));
    EXPECT_EQ(importTables("t\n"),
              "t(c-10:S c-9:S c-8:S c-6:N c-5:N c-1:S c1:S c2:N c3:N c4:N c5:N c6:N c7:N c8:N c9:T c10:T c11:T c12:S "
              "c91:T c92:T c93:T c101:N c102:N c103:N c104:N c105:N c106:N c107:N c108:N c109:N c110:N c111:N c112:N "
              "c113:N)");
}

TEST_F(Recordset, NamesEndAtTheFirstEmptyOneAndLoseTheSpacesAroundThem)
{
    const Connected window(catalogue(kColumn));
    for (const auto& [names, records] : {std::pair(" x \ny", "y(a:S)x(a:S)"), {"x\n\ny\n", "x(a:S)"}, {"", ""}})
        EXPECT_EQ(importTables(names), records) << names;
}

TEST_F(Recordset, WithoutTheCatalogueATableIsARecordWithoutFields)
{
    for (const char* lack : {"Without=40;", "Statements=0;"}) {
        const Connected window(catalogue(kColumn, lack));
        EXPECT_EQ(importTables("x\ny\n"), "y()x()") << lack;
    }
    Connected window(catalogue("", "Without=54;"));
    EXPECT_EQ(CTables(&window.database).Open(nullptr, nullptr, nullptr, nullptr), 0);
    setMainWindow(nullptr);
    EXPECT_EQ(importTables("x\n"), "x()");
}

TEST_F(Recordset, AFailedFetchIsRaisedWithTheDriversWords)
{
    for (const CString& before : {CString(), kColumn}) {
        const Connected window(catalogue(before + "!the disk is gone\n"));
        EXPECT_THAT([] { importTables("x\n"); },
                    testing::Throws<CDBException>(testing::AllOf(
                        testing::Property(&CDBException::what, testing::StrEq("the disk is gone (SQLSTATE S1000)")),
                        testing::Property(&CDBException::queryNativeError, 7),
                        testing::Property(&CDBException::isLogonRefused, false))));
    }
}
