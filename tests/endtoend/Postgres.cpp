// A PostgreSQL server for a script: executes each argument as a statement, prints port, user and password on a line
// each, and stops at the end of standard input.

#include "support/Servers.h"

#include <cstdio>
#include <iostream>

int main(int argc, char** argv)
{
    setenv("ODBCINI", "/dev/null", 1);
    const PostgresServer server;
    CDatabase database;
    database.Open(server.connection("postgres"), CDatabase::readWrite, server.logon());
    for (int i = 1; i < argc; ++i)
        database.ExecuteSQL(argv[i]);
    std::cout << server.port << '\n' << server.user << '\n' << server.password << std::endl;
    while (std::getchar() != EOF) {
    }
}
