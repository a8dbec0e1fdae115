#pragma once

#include <sys/types.h>

/// Removes the log that PostgreSQL's driver has kept of a process of this program in the folder for temporary files.
/// Debian's packages turn it on for every program (CommLog=1 in odbcinst.ini) and a connection's own settings don't
/// turn it off. Nothing happens if there is none.
void removeDriverLog(pid_t process) noexcept;
