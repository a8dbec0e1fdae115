#pragma once

#include "support/ImportCommand.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

/// A fixture whose folder holds r.dtd, a record r with a field a and a table b, and old, a file with the text "old".
class ImportCommand : public testing::Test
{
protected:
    ImportCommand()
    {
        folder.write("r.dtd", "<!ELEMENT r (a, b+)><!ELEMENT a EMPTY><!ELEMENT b EMPTY>");
        folder.write("old", "old");
        for (int i = 0; i < 2000; ++i)
            wide += ",a" + std::to_string(i);
        wide += ")>";
    }

    Answer run(const std::string& line) const { return runShell(folder, line); }

    // Returns the names in the folder, so that a left-over file is noticed.
    std::string names() const
    {
        std::set<std::string> sorted;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            sorted.insert(entry.path().filename());
        std::string all;
        for (const std::string& name : sorted)
            all += name + " ";
        return all;
    }

    TempDir folder;
    std::string wide = "<!ELEMENT r (a"; // a type of 150 kB
};

/// The list of the types of r.dtd.
inline const std::string kList = "\\sys\\rosettanet\\r\\t_b\tt_b (Automatically created)\n"
                                 "\\sys\\rosettanet\\r\\r\tr (Automatically created)\n";

/// A shell command, and its expected outcome.
struct Case
{
    const char* line;
    Answer answer;
};

/// Returns a message of the command, as standard error shows it.
inline std::string says(const std::string& text)
{
    return "typeforge-import: " + text + "\n";
}

/// Returns the output for an invalid command line.
inline std::string mistake(const std::string& text)
{
    return says(text) + "Try typeforge-import --help\n";
}
