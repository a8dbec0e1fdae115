#pragma once

#include "Platform/Database/Odbc.h"
#include "support/TempDir.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Real database servers for a test: each in a temporary folder, on a loopback port of its own, gone with the object or
// with the test's process, whichever ends first.

/// A port of 127.0.0.1 that nobody listens on.
inline int freePort()
{
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t length = sizeof address;
    const int probe = socket(AF_INET, SOCK_STREAM, 0);
    bind(probe, reinterpret_cast<sockaddr*>(&address), length);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    close(probe);
    return ntohs(address.sin_port);
}

/// What both servers do: own a folder, run as a user of their own where the test is root, be ready when the object is.
class DatabaseServer
{
public:
    ~DatabaseServer() { stop(); }

    /// Ends the server at once; connections to it break.
    void stop()
    {
        if (process > 0 && kill(process, SIGQUIT) == 0) // killed outright, PostgreSQL would leave shared memory behind
            waitpid(process, nullptr, 0);
        process = -1;
    }

    const int port = freePort();
    const std::string user = "typeforge", password = "pass;word}=1";

    /// A whole connection string for the database `name`, without user and password.
    std::string connection(const std::string& name) const
    {
        return "Driver={" + driver + "};Server=127.0.0.1;Port=" + std::to_string(port) + ";Database=" + name + ";";
    }
    std::string logon() const { return logonText(user, password); }

protected:
    DatabaseServer(std::string driverName, const std::string& account) : driver(std::move(driverName))
    {
        if (geteuid() != 0)
            return;
        prefix += " --init-groups --reuid=" + account + " --regid=" + account;
        if (std::system(("chown " + account + " " + folder.path()).c_str()) != 0)
            throw std::runtime_error("no user " + account);
    }

    void prepare(const std::string& command)
    {
        if (std::system((prefix + " " + command + output).c_str()) != 0)
            throw std::runtime_error(command + ": " + TempDir::read(folder.path("log")));
    }
    void start(const std::string& command, const std::string& database)
    {
        process = fork();
        if (process == 0) {
            execl("/bin/sh", "sh", "-c", ("exec " + prefix + " " + command + output).c_str(), nullptr);
            _exit(127);
        }
        for (int attempt = 0; attempt < 300; ++attempt) {
            try {
                CDatabase().Open(connection(database), CDatabase::readOnly, logon());
                return;
            } catch (const CDBException&) {
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
        }
        throw std::runtime_error(command + ": " + TempDir::read(folder.path("log")));
    }

    TempDir folder;

private:
    std::string driver, prefix = "setpriv --pdeathsig=QUIT", output = " >>" + folder.path("log") + " 2>&1";
    pid_t process = -1;
};

/// PostgreSQL with its superuser `user`.
class PostgresServer : public DatabaseServer
{
public:
    PostgresServer() : DatabaseServer("PostgreSQL Unicode", "postgres")
    {
        std::string programs;
        for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql"))
            programs = version.path().string() + "/bin/";
        const std::string data = " -D " + folder.path("data");
        prepare(programs + "initdb" + data + " -U " + user + " -E UTF8 --locale=C --auth=scram-sha-256 --no-sync" +
                " --pwfile=" + folder.write("password", password));
        start(programs + "postgres" + data + " -h 127.0.0.1 -p " + std::to_string(port) +
                  " -c fsync=off -c unix_socket_directories=",
              "postgres");
    }
};

/// MariaDB with an account `user` that may do everything.
class MariaDbServer : public DatabaseServer
{
public:
    MariaDbServer() : DatabaseServer("MariaDB Unicode", "mysql")
    {
        const std::string data = " --no-defaults --datadir=" + folder.path("data");
        prepare("mariadb-install-db" + data + " --skip-test-db --auth-root-authentication-method=normal");
        const std::string account = user + " IDENTIFIED BY '" + password + "'";
        start("/usr/sbin/mariadbd" + data + " --bind-address=127.0.0.1 --port=" + std::to_string(port) +
                  " --socket=" + folder.path("socket") + " --character-set-server=utf8mb4 --sql-mode=ANSI_QUOTES" +
                  " --innodb-flush-log-at-trx-commit=0 --init-file=" +
                  folder.write("init.sql", "GRANT ALL ON *.* TO " + account + " WITH GRANT OPTION;\n"),
              "");
    }
};
