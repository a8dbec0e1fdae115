#include "Files/UserFolders.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace {

// Returns the program's folder in the one that `variable` names, or in `inHome` below the home folder.
CString programFolder(const char* variable, const char* inHome)
{
    // A relative path counts as unset, as the XDG base directories demand.
    if (const char* configured = std::getenv(variable); configured != nullptr && configured[0] == '/')
        return configured + CString("/typeforge");
    const CString home = homeFolder();
    return home.empty() ? home : home + inHome + "/typeforge";
}

} // namespace

CString homeFolder()
{
    if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/')
        return home;
    // The account whose rights the process has. The entry is static storage of the library, so the name is copied at
    // once.
    const passwd* const user = ::getpwuid(::geteuid());
    return user != nullptr ? user->pw_dir : "";
}

CString settingsFolder()
{
    return programFolder("XDG_CONFIG_HOME", "/.config");
}

CString dataFolder()
{
    return programFolder("XDG_DATA_HOME", "/.local/share");
}

CString loginName()
{
    const passwd* const user = ::getpwuid(::geteuid());
    return user != nullptr ? user->pw_name : "";
}
