#pragma once

#include "Base/Progress.h"
#include "Broker/BrokerSession.h"
#include "Broker/CreationRun.h"
#include "Database/Statement.h"
#include "Files/SettingsStore.h"
#include "Import/Dtd/DTDMsg.h"
#include "support/Servers.h"

#include <gtest/gtest.h>

using Lines = std::vector<CString>;

/// A fixture with empty folders for settings and data.
class Home : public testing::Test
{
protected:
    Home()
    {
        setenv("XDG_CONFIG_HOME", home.path("config").c_str(), 1);
        setenv("XDG_DATA_HOME", home.path("data").c_str(), 1);
    }

    /// Makes `library` the broker's client, by the setting that names it.
    void useClient(const CString& library) const
    {
        SettingsStore settings;
        settings.setText(CString("SOFTWARE\\Classes\\CLSID\\") + kVornServerClass + "\\InprocServer32", "", library);
        ASSERT_TRUE(settings.save());
    }

    /// Writes a DTD with `count` records e0, e1, ... in this order, and a document root over them.
    CString dtdOf(int count, const CString& name = "types.dtd") const
    {
        CString records, fields;
        for (int i = 0; i < count; ++i) {
            const CString record = "e" + std::to_string(i);
            records += "<!ELEMENT " + record + " (größe, b)>\n";
            fields = record + (i ? ", " : "") + fields; // the last field is ordered first
        }
        return home.write(name, "<!ELEMENT root (" + fields + ")>\n" + records +
                                    "<!ELEMENT größe EMPTY><!ELEMENT b EMPTY><!ELEMENT c EMPTY>");
    }

    TempDir home;
};

/// The imported types of a DTD file.
class Types
{
public:
    explicit Types(const CString& dtdFile) { EXPECT_TRUE(message.parseFile(dtdFile, "\\sys\\")); }

    /// Returns the full name and the document of each type, in the order of creation.
    std::vector<std::pair<CString, CString>> all()
    {
        std::vector<std::pair<CString, CString>> types;
        message.beginEnum();
        while (Element* type = message.enumNext()) {
            CString document;
            type->asXML(document);
            types.emplace_back(type->queryPath() + type->queryName(), document);
        }
        return types;
    }

    DTDMessage message;
};

/// A creation run that keeps existing types, with its lines. `onDone` is called once for each number of types done, and
/// cancels the run by returning false.
struct Creation
{
    Creation(
        BrokerSession& session, MsgBase& message, const std::function<bool(int)>& onDone = [](int) { return true; })
    {
        const ProgressHandler before = setProgressHandler([&](const Progress& progress) {
            EXPECT_EQ(progress.work, Work::creating);
            const int done = static_cast<int>(progress.done);
            return std::exchange(steps, done) == done || onDone(done); // polled again while a driver is waited for
        });
        CreationRun run(session, {[](const CString&, const CString&) { return OverwriteChoice::noToAll; },
                                  [this](const CString& line, ResultKind) { lines.push_back(line); }});
        errors = run.run(message);
        setProgressHandler(before);
    }

    Lines lines;
    int steps = -1;
    int errors = 0;
};

/// Returns the rows of a repository in the order of insertion.
inline std::vector<std::pair<CString, CString>> rowsOf(const CString& source, const CString& logon = {})
{
    CDatabase database;
    EXPECT_TRUE(database.Open(source, CDatabase::readOnly, logon));
    const bool local = source.find("SQLite") != CString::npos;
    const CString select =
        CString("SELECT name, document FROM typeforge_types ORDER BY ") + (local ? "rowid" : "xmin::text::bigint");
    std::vector<std::pair<CString, CString>> rows;
    for (auto& row : runSql(database, select))
        rows.emplace_back(std::move(row[0]), std::move(row[1]));
    return rows;
}
