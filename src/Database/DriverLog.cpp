#include "Database/DriverLog.h"

#include <array>
#include <cstdio>
#include <pwd.h>
#include <string_view>
#include <unistd.h>

void removeDriverLog(pid_t process) noexcept
{
    std::array<char, 4096> program;
    const ssize_t length = ::readlink("/proc/self/exe", program.data(), program.size());
    const passwd* const user = ::getpwuid(::geteuid());
    if (length <= 0 || !user)
        return;
    std::string_view name(program.data(), static_cast<std::size_t>(length));
    name.remove_prefix(name.rfind('/') + 1);
    std::array<char, 512> log; // named as the driver names it (mylog.c in psqlodbc)
    const int size = std::snprintf(log.data(), log.size(), "/tmp/psqlodbc_%.*s_%s%u.log", static_cast<int>(name.size()),
                                   name.data(), user->pw_name, static_cast<unsigned>(process));
    if (size > 0 && static_cast<std::size_t>(size) < log.size())
        ::unlink(log.data());
}
