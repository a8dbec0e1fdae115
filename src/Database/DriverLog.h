#pragma once

#include <sys/types.h>

/// Removes the log that PostgreSQL's driver writes to /tmp for a process of this program. Debian's packages turn it on
/// for every program (CommLog=1 in odbcinst.ini), and a connection's settings can't turn it off. Does nothing if there
/// is none.
void removeDriverLog(pid_t process) noexcept;
