#pragma once

#include "TestFolders.h"
#include "support/TempDir.h"

#include <ostream>
#include <sys/wait.h>

/// The outcome of a command: its exit status and output.
struct Answer
{
    int status = 0;
    std::string out, err;

    bool operator==(const Answer&) const = default;
    friend std::ostream& operator<<(std::ostream& stream, const Answer& answer)
    {
        return stream << "status " << answer.status << "\nout: " << answer.out << "\nerr: " << answer.err;
    }
};

/// Runs a shell command in a folder. In it, $import is the built typeforge-import. The output goes to a folder of its
/// own, so that a test can compare what is in the first one. The status is -1 if a signal ends the shell.
inline Answer runShell(const TempDir& folder, const std::string& line)
{
    const TempDir output;
    const std::string out = output.path("out"), err = output.path("err");
    const int status = std::system(("cd '" + folder.path() + "' && import='" TEST_BUILD_DIR "/typeforge-import' && { " +
                                    line + "\n} >'" + out + "' 2>'" + err + "' </dev/null")
                                       .c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, TempDir::read(out), TempDir::read(err)};
}
