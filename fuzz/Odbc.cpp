// A data source whose driver takes its results from the input: tables, columns, rows of a statement, failures.
#include "Database/MainWindow.h"
#include "Database/Statement.h"
#include "Database/Tables.h"
#include "Import.h"
#include "Import/Tables/ODBCMsg.h"

#include <dlfcn.h>

namespace {

// The connection. The driver runs in a thread instead of a process, where the fuzzer sees its coverage.
struct Source : MainWindow
{
    Source()
    {
        ::setenv("ODBCINI", "/dev/null", 1);
        DriverProcess::useThreads();
        open();
        void* const driver = ::dlopen(FUZZ_DRIVER, RTLD_NOW); // already loaded, so this only gets its handle
        answer = reinterpret_cast<void (*)(const char*, std::size_t)>(::dlsym(driver, "setAnswers"));
        setMainWindow(this);
    }
    CDatabase* queryDatabase() override { return &database; }
    void open()
    {
        if (!database.Open("Driver=" FUZZ_DRIVER ";"))
            std::abort();
    }

    CDatabase database;
    void (*answer)(const char*, std::size_t) = nullptr;
};

// Returns the names of the tables of type TABLE, each ended by a line feed; stops after 100 bytes.
CString tableNames(CDatabase& database)
{
    CString names;
    CTables tables(&database);
    tables.Open(nullptr, nullptr, nullptr, "'TABLE'");
    for (tables.MoveFirst(); !tables.IsEOF() && names.size() < 100; tables.MoveNext())
        names += tables.tableName + "\n";
    return names;
}

} // namespace

// LeakSanitizer takes the state of dlerror() in a thread that is about to end for a leak.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
{
    return "leak:_dlerror_run\nleak:__vasprintf_internal\n";
}

void fuzz(std::string_view input)
{
    static Source source;
    if (!source.database.IsOpen()) { // lost by the previous input
        source.answer("", 0);
        source.open();
    }
    source.answer(input.data(), input.size());
    try {
        ODBCMessage importer;
        importer.parseData(tableNames(source.database), "\\");
        checkDocument(importer);
        runSql(source.database, "SELECT 1", {"a", ""});
    } catch (const CDBException& error) {
        static_cast<void>(error.isLogonRefused());
    }
}
