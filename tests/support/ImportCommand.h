#pragma once

#include "support/TempDir.h"

#include <ostream>
#include <sys/wait.h>

/// What a command answered: its exit status and all that it wrote.
struct Answer
{
    int status = 0;
    std::string out;
    std::string err;

    bool operator==(const Answer&) const = default;
    friend std::ostream& operator<<(std::ostream& stream, const Answer& answer)
    {
        return stream << "status " << answer.status << "\nout: " << answer.out << "\nerr: " << answer.err;
    }
};

/// Runs a line of shell in a folder. In it $import is the typeforge-import that was built.
inline Answer runShell(const TempDir& folder, const std::string& line)
{
    const TempDir output;
    const std::string script = "cd '" + folder.path() + "' && import='" TEST_BUILD_DIR "/typeforge-import' && { " +
                               line + "\n} >'" + output.path("out") + "' 2>'" + output.path("err") + "' </dev/null";
    const int status = std::system(script.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, TempDir::read(output.path("out")),
            TempDir::read(output.path("err"))};
}
