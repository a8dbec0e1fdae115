#include "Database/DriverLog.h"

#include <glob.h>
#include <pwd.h>
#include <string>
#include <unistd.h>

void removeDriverLog(pid_t process) noexcept
{
    const passwd* const user = ::getpwuid(::geteuid());
    if (!user)
        return;
    // The driver (mylog.c in psqlodbc) puts the program's name and "_" at the *. It may read past the end of that name,
    // so the file may have another name, or none.
    const std::string log = std::string("/tmp/psqlodbc_*") + user->pw_name + std::to_string(process) + ".log";
    glob_t found = {};
    if (::glob(log.c_str(), GLOB_NOSORT | GLOB_NOESCAPE, nullptr, &found) == 0)
        for (std::size_t i = 0; i < found.gl_pathc; ++i)
            ::unlink(found.gl_pathv[i]);
    ::globfree(&found);
}
