#include "Platform/Columns.h"
#include "Platform/Tables.h"
#include "odbc/Import.h"
#include "support/Boxes.h"
#include "support/TempDir.h"

#include <gmock/gmock.h>

#include <map>

// Catalogues written by hand, which a driver of the tests' own hands out.
class Recordset : public testing::Test
{
protected:
    CString catalogue(const CString& rows, const CString& more = {}) const
    {
        return "Driver=" TEST_BUILD_DIR "/libtest_driver.so;Rows=" + dir.write("rows", rows) + ";" + more;
    }
    static CString column(const CString& name, int type)
    {
        return "\t\t\t" + name + "\t" + std::to_string(type) + "\n";
    }

    Boxes boxes;
    TempDir dir;
};

TEST_F(Recordset, BindsEachColumnOfTheResultToItsMember)
{
    CDatabase database;
    ASSERT_TRUE(database.Open(catalogue("q\to\tt\tc\t-9\tvarchar\t1\t2\t3\t10\t5\tr\n\t\tu\n")));
    CColumns columns(&database);
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

    CTables tables(&database);
    ASSERT_EQ(tables.Open(nullptr, nullptr, nullptr, "'TABLE'"), 1);
    EXPECT_EQ(std::tuple(tables.tableQualifier, tables.tableOwner, tables.tableName, tables.tableType, tables.remarks),
              std::tuple("q", "o", "t", "c", "-9"));
}

TEST_F(Recordset, IsAtBothEndsWhenEmptyOrNotOpen)
{
    const Connected window(catalogue(""));
    CTables tables(const_cast<CDatabase*>(&window.database));
    EXPECT_TRUE(tables.IsBOF() && tables.IsEOF() && !tables.IsOpen());
    EXPECT_EQ(tables.Open(nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_TRUE(tables.IsBOF() && tables.IsEOF() && tables.IsOpen());
    tables.MoveFirst();
    tables.MoveNext();
    EXPECT_EQ(tables.tableName, "");
}

TEST_F(Recordset, CutsLongTextsBetweenCharacters)
{
    const CString a(253, 'a');
    const struct
    {
        CString given, kept;
    } cases[] = {{a + "xy", a + "xy"},
                 {a + "xyz", a + "xy"},
                 {a + "ü", a + "ü"},
                 {a + "xü", a + "x"},
                 {a + "€", a},
                 {a + "x\U0001F600", a + "x"},
                 {"\xE9t\xE9", "\xE9t\xE9"},
                 {CString(9999, 'z'), CString(255, 'z')}};
    CString rows;
    for (const auto& text : cases)
        rows += "\t\t" + text.given + "\n";
    const Connected window(catalogue(rows));
    CTables tables(const_cast<CDatabase*>(&window.database));
    tables.Open(nullptr, nullptr, nullptr, nullptr);
    for (const auto& text : cases) {
        EXPECT_EQ(tables.tableName, text.kept);
        tables.MoveNext();
    }
}

TEST_F(Recordset, EverySqlTypeBecomesItsFieldOrNone)
{
    std::map<int, char> letters;
    for (const int code : {-10, -9, -8, -1, 1, 12})
        letters[code] = 'S';
    for (const int code :
         {-6, -5, 2, 3, 4, 5, 6, 7, 8, 101, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113})
        letters[code] = 'N';
    for (const int code : {9, 10, 11, 91, 92, 93})
        letters[code] = 'T';
    CString rows, fields;
    for (int code = -160; code <= 160; ++code)
        rows += column("c" + std::to_string(code), code);
    for (const auto& [code, letter] : letters)
        fields += (fields.empty() ? "c" : " c") + std::to_string(code) + ":" + letter;
    const Connected window(catalogue(rows));
    EXPECT_EQ(importTables("t\n"), "t(" + fields + ")");
}

TEST_F(Recordset, NamesEndAtTheFirstEmptyOneAndLoseTheSpacesAroundThem)
{
    const Connected window(catalogue(column("a", 1)));
    EXPECT_EQ(importTables(" x \ny"), "y(a:S)x(a:S)");
    EXPECT_EQ(importTables("x\n\ny\n"), "x(a:S)");
    EXPECT_EQ(importTables(""), "");
}

TEST_F(Recordset, WithoutTheCatalogueATableIsARecordWithoutFields)
{
    for (const char* lack : {"Without=40;", "Statements=0;"}) {
        const Connected window(catalogue(column("a", 1), lack));
        EXPECT_EQ(importTables("x\ny\n"), "y()x()") << lack;
    }
    const Connected window(catalogue("", "Without=54;"));
    EXPECT_EQ(CTables(const_cast<CDatabase*>(&window.database)).Open(nullptr, nullptr, nullptr, nullptr), 0);
    setMainWindow(nullptr);
    EXPECT_EQ(importTables("x\n"), "x()");
}

TEST_F(Recordset, AFailedFetchIsRaisedWithTheDriversWords)
{
    for (const CString& before : {CString(), column("a", 1)}) {
        const Connected window(catalogue(before + "!the disk is gone\n"));
        try {
            importTables("x\n");
            ADD_FAILURE() << "nothing was raised";
        } catch (const CDBException& error) {
            EXPECT_STREQ(error.what(), "the disk is gone (SQLSTATE S1000)");
            EXPECT_EQ(error.queryState(), "S1000");
            EXPECT_EQ(error.queryNativeError(), 7);
            EXPECT_FALSE(error.isLogonRefused());
        }
    }
}
