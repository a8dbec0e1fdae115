#pragma once

#include "Platform/Odbc.h"
#include "support/TempDir.h"

#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// Real database servers for a test: each in a temporary folder, on a loopback port of its own, gone with the object or
// with the test's process, whichever ends first.

/// A port of 127.0.0.1 that nobody listens on.
inline int freePort()
{
    const int probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(probe, reinterpret_cast<sockaddr*>(&address), length) != 0)
        throw std::runtime_error("no free port");
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    close(probe);
    return ntohs(address.sin_port);
}

/// A program of a server, as the server's own user where the test is root, with its output in a file.
class ServerProcess
{
public:
    ServerProcess(const char* user, std::vector<std::string> command, const std::string& log)
    {
        const passwd* account = geteuid() == 0 ? getpwnam(user) : nullptr;
        std::vector<char*> arguments;
        for (std::string& argument : command)
            arguments.push_back(argument.data());
        arguments.push_back(nullptr);
        process = fork();
        if (process != 0)
            return;
        const int out = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
        dup2(out, 1);
        dup2(out, 2);
        const bool changed = !account || (initgroups(user, account->pw_gid) == 0 && setgid(account->pw_gid) == 0 &&
                                          setuid(account->pw_uid) == 0);
        prctl(PR_SET_PDEATHSIG, SIGQUIT); // after the change of user, which would undo it
        if (changed)
            execv(arguments[0], arguments.data());
        _exit(127);
    }
    ~ServerProcess() { kill(SIGQUIT); } // killed outright, PostgreSQL would leave shared memory behind
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;

    int wait()
    {
        int status = -1;
        if (process > 0)
            waitpid(process, &status, 0);
        process = -1;
        return status;
    }
    void kill(int signal)
    {
        if (process > 0)
            ::kill(process, signal);
        wait();
    }

private:
    pid_t process;
};

/// What both servers do: own a folder, be ready when the object is, and stop.
class DatabaseServer
{
public:
    /// Ends the server at once; connections to it break.
    void stop() { server->kill(stopSignal); }

    const int port = freePort();
    const std::string user = "typeforge", password = "pass;word}=1";

    /// A whole connection string for the database `name`, without user and password.
    std::string connection(const std::string& name) const
    {
        return "Driver={" + driver + "};Server=127.0.0.1;Port=" + std::to_string(port) + ";Database=" + name + ";";
    }
    std::string logon() const { return logonText(user, password); }

protected:
    DatabaseServer(std::string driverName, int signal) : driver(std::move(driverName)), stopSignal(signal) {}

    void prepare(const char* account, const std::vector<std::string>& command)
    {
        if (geteuid() == 0) {
            const passwd* owner = getpwnam(account);
            if (!owner || chown(folder.path().c_str(), owner->pw_uid, owner->pw_gid) != 0)
                throw std::runtime_error(std::string("no user ") + account);
        }
        if (ServerProcess(account, command, folder.path("log")).wait() != 0)
            throw std::runtime_error(command[0] + ": " + TempDir::read(folder.path("log")));
    }
    void start(const char* account, const std::vector<std::string>& command, const std::string& database,
               const std::string& logonOfOwner)
    {
        server = std::make_unique<ServerProcess>(account, command, folder.path("log"));
        for (int attempt = 0;; ++attempt) {
            try {
                CDatabase().Open(connection(database), CDatabase::readOnly, logonOfOwner);
                return;
            } catch (const CDBException& error) {
                if (attempt == 300)
                    throw std::runtime_error(error.what());
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    }

    TempDir folder;

private:
    std::string driver;
    int stopSignal;
    std::unique_ptr<ServerProcess> server;
};

/// PostgreSQL with its superuser `user`.
class PostgresServer : public DatabaseServer
{
public:
    PostgresServer() : DatabaseServer("PostgreSQL Unicode", SIGQUIT)
    {
        std::string programs;
        for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql"))
            programs = version.path().string() + "/bin/";
        folder.write("password", password);
        prepare("postgres", {programs + "initdb", "-D", folder.path("data"), "-U", user, "-E", "UTF8", "--locale=C",
                             "--auth=scram-sha-256", "--pwfile=" + folder.path("password"), "--no-sync"});
        start("postgres",
              {programs + "postgres", "-D", folder.path("data"), "-h", "127.0.0.1", "-p", std::to_string(port), "-c",
               "fsync=off", "-c", "unix_socket_directories="},
              "postgres", logon());
    }
};

/// MariaDB with an account `user` that may do everything.
class MariaDbServer : public DatabaseServer
{
public:
    MariaDbServer() : DatabaseServer("MariaDB Unicode", SIGKILL)
    {
        const std::string data = "--datadir=" + folder.path("data");
        prepare("mysql", {"/usr/bin/mariadb-install-db", "--no-defaults", data, "--skip-test-db",
                          "--auth-root-authentication-method=normal"});
        const std::string setup =
            folder.write("init.sql", "CREATE USER " + user + " IDENTIFIED BY '" + password +
                                         "';\nGRANT ALL ON *.* TO " + user + " WITH GRANT OPTION;\n");
        start("mysql",
              {"/usr/sbin/mariadbd", "--no-defaults", data, "--bind-address=127.0.0.1",
               "--port=" + std::to_string(port), "--socket=" + folder.path("socket"), "--init-file=" + setup,
               "--character-set-server=utf8mb4", "--innodb-flush-log-at-trx-commit=0"},
              "", logon());
    }
};
