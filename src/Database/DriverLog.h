#pragma once

/// Removes the log that PostgreSQL's driver keeps of this process in the folder for temporary files. Debian's packages
/// turn it on for every program (CommLog=1 in odbcinst.ini) and a connection's own settings don't turn it off. Nothing
/// happens where there is none.
void removeDriverLog() noexcept;
