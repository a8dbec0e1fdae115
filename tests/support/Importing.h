#pragma once

#include "support/Boxes.h"
#include "support/TempDir.h"
#include "support/Types.h"

#include <gmock/gmock.h>

#include <ostream>

/// A row of a table of cases: the fault it catches, the input and the expected output.
struct Case
{
    const char* name;
    CString in, out;

    friend std::ostream& operator<<(std::ostream& stream, const Case& row)
    {
        return stream << row.name << ": " << row.in.substr(0, 1000);
    }
};

/// A fixture with an importer and a folder for its files. A box that the test doesn't take fails it. Several imports of
/// one test share the importer, which also tests that an import leaves no state to the next one.
template <class Message>
class Importing : public testing::Test
{
protected:
    /// Imports a file with these bytes. Returns what parseFile() does: 0 on failure.
    int import(const CString& bytes, const CString& basePath = "\\b\\")
    {
        return message.parseFile(folder.write("x", bytes), basePath);
    }
    /// Returns the types of a file with these bytes; see typesOf().
    CString typesOfFile(const CString& bytes)
    {
        EXPECT_EQ(import(bytes), 1);
        return typesOf(message);
    }

    Boxes boxes;
    TempDir folder;
    Message message;
};

/// Returns a text repeated `count` times.
inline CString times(std::size_t count, const CString& text)
{
    CString all;
    while (count-- > 0)
        all += text;
    return all;
}
