#include "Database/Odbc.h"
#include "TestFolders.h"
#include "wizard/Desk.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <tuple>
#include <unistd.h>

namespace {

constexpr long kPoolFiles = 4; // each thread of the toolkit's pool has a file while it lives

// Returns the resident memory of this process in kB.
long memoryInUse()
{
    long total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

long openFiles()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

void walkThroughDataSource(Desk& desk)
{
    desk.walkTo(IDD_DATA_SOURCE);
    desk.control<ListView>(IDC_DATA_SOURCES).selectRow(0);
    desk.click("next");
    desk.control<ListView>(IDC_TABLES).selectAll();
    desk.click("next");
}

// scripts/soak runs this for longer.
TEST(Soak, KeepsMemoryAndOpenFilesFlat)
{
    const int imports = qEnvironmentVariable("SOAK_IMPORTS", "40").toInt();
    const int warmUp = std::max(20, imports / 10); // the toolkit's caches are filled
    Desk desk;
    CDatabase database;
    database.Open("Driver=SQLite3;Database=" + desk.dir.path("shop.db") + ";", CDatabase::readWrite);
    database.ExecuteSQL("CREATE TABLE orders (id INTEGER, buyer VARCHAR(80))");
    database.Close();
    const CString ini = "[Shop]\nDriver=SQLite3\nDatabase=" + desk.dir.path("shop.db") + "\n";
    setenv("ODBCINI", desk.dir.write("odbc.ini", ini).c_str(), 1);
    desk.walkTo(IDD_FINISH);
    desk.click("back");
    const std::string types = desk.dir.path("types.xml");
    std::filesystem::copy_file(desk.output, types);
    const std::string examples = TEST_SOURCE_DIR "/examples/";
    const std::pair<const char*, std::string> kinds[] = {
        {"DTD importer", examples + "order.dtd"},
        {"XML data importer", examples + "order.xml"},
        {"XML Schema importer", examples + "order.xsd"},
        {"BTD importer", types},
        {"ODBC importer", ""},
        {"WSDL importer", examples + "quotes.wsdl"},
        {"JSON Schema importer", examples + "invoice.schema.json"},
        {"OpenAPI importer", examples + "orders.openapi.yaml"},
        {"Avro importer", examples + "reading.avsc"},
        {"JSON data importer", examples + "events.jsonl"},
    };
    long memory = 0, files = 0;
    for (int i = 1; i <= imports; ++i) {
        std::tie(desk.importer, desk.source) = kinds[static_cast<std::size_t>(i) % std::size(kinds)];
        SCOPED_TRACE(desk.importer + ", import " + std::to_string(i));
        if (desk.source.empty())
            walkThroughDataSource(desk);
        desk.walkTo(IDD_FINISH);
        ASSERT_THAT(desk.boxes.take(), testing::IsEmpty());
        if (i % warmUp == 0) { // ends the wizard, which the next import starts again
            std::cout << i << " imports: " << memoryInUse() << " kB, " << openFiles() << " open files" << std::endl;
            desk.click("finish");
            desk.end();
        } else {
            desk.click("back");
        }
        if (i == warmUp) {
            memory = memoryInUse();
            files = openFiles();
        }
    }
    EXPECT_LE(memoryInUse(), memory + memory / 10);
    EXPECT_LE(openFiles(), files + kPoolFiles);
}

} // namespace
