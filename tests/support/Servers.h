#pragma once

#include "Database/ConnectString.h"
#include "Database/Odbc.h"
#include "support/TempDir.h"

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <csignal>
#include <netinet/tcp.h>
#include <poll.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Real database servers for tests. Each has a temporary folder and its own loopback port, and ends with the object or
// the test's process, whichever ends first.

/// A port of 127.0.0.1 that the system assigns to no other socket. A server can still listen on it (SO_REUSEADDR).
class ReservedPort
{
    const int holder = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);

public:
    ~ReservedPort() { close(holder); }

    const int number = bindAny();

private:
    int bindAny() const
    {
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t length = sizeof address;
        constexpr int on = 1;
        bind(holder, reinterpret_cast<sockaddr*>(&address), length);
        setsockopt(holder, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on); // lets the server bind, which sets it too
        getsockname(holder, reinterpret_cast<sockaddr*>(&address), &length);
        return ntohs(address.sin_port);
    }
};

/// A proxy for one connection to a local server. After `left` bytes from the server it falls silent, with both ends
/// connected, or breaks the connection. So a test can cut the answer of a real server at any byte.
class Line
{
    const int door = socket(AF_INET, SOCK_STREAM, 0);

public:
    explicit Line(int target) : port(openDoor())
    {
        forwarder = std::thread([=, this] { forward(target); });
        while (!started) // a fork while a thread starts can leave AddressSanitizer's allocator locked in the child
            std::this_thread::yield();
    }
    ~Line()
    {
        ended = true;
        shutdown(door, SHUT_RDWR); // there may be no connection
        forwarder.join();
        close(door);
    }

    const int port;
    std::atomic<long> left = kEndless;
    std::atomic<bool> breaks = false;

    /// Returns the number of bytes received from the server.
    long queryReceived() const { return received; }

private:
    static constexpr long kEndless = 1'000'000'000;

    static sockaddr_in at(int port)
    {
        return {AF_INET, htons(static_cast<std::uint16_t>(port)), {htonl(INADDR_LOOPBACK)}, {}};
    }
    // Returns a port chosen by the system, so that it is free.
    int openDoor() const
    {
        sockaddr_in near = at(0);
        socklen_t length = sizeof near;
        bind(door, reinterpret_cast<const sockaddr*>(&near), length);
        listen(door, 1);
        getsockname(door, reinterpret_cast<sockaddr*>(&near), &length);
        return ntohs(near.sin_port);
    }
    void forward(int target)
    {
        started = true;
        const sockaddr_in far = at(target);
        const int server = socket(AF_INET, SOCK_STREAM, 0);
        connect(server, reinterpret_cast<const sockaddr*>(&far), sizeof far);
        pollfd ends[] = {{accept(door, nullptr, nullptr), POLLIN, 0}, {server, POLLIN, 0}};
        for (const pollfd& end : ends) { // or each small piece would wait for a delayed acknowledgement
            constexpr int on = 1;
            setsockopt(end.fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        }
        char bytes[64];
        while (!ended && !(breaks && left <= 0)) {
            poll(ends, left > 0 ? 2 : 0, 20);
            for (int i = 0; i < 2; ++i)
                if (left > 0 && (ends[i].revents & POLLIN)) {
                    const std::size_t most = i == 1 ? std::min<std::size_t>(sizeof bytes, left) : sizeof bytes;
                    const ssize_t count = read(ends[i].fd, bytes, most);
                    left -= i == 1 ? count : 0;
                    received += i == 1 ? count : 0;
                    [[maybe_unused]] const ssize_t written = write(ends[1 - i].fd, bytes, std::max<ssize_t>(count, 0));
                }
        }
        shutdown(door, SHUT_RDWR); // refuses a second connection
        for (const int end : {ends[0].fd, server})
            close(end);
    }

    std::atomic<bool> started = false;
    std::atomic<bool> ended = false;
    std::atomic<long> received = 0;
    std::thread forwarder;
};

/// The parts common to both servers: a folder, a user of its own if the test runs as root, because both refuse to run
/// as root, and waiting until the server is ready. Failures throw std::runtime_error with the server's log.
class DatabaseServer
{
public:
    ~DatabaseServer() { stop(); }

    /// Stops the server immediately; connections to it break.
    void stop()
    {
        if (process > 0 && kill(process, SIGQUIT) == 0) // SIGKILL would make PostgreSQL leave shared memory behind
            waitpid(process, nullptr, 0);
        process = -1;
    }

    /// Kills the server with all its processes. Only data passed to the system is kept.
    void crash()
    {
        kill(process, SIGSTOP); // or it would restart its killed children
        const std::string id = std::to_string(process);
        std::istringstream children(TempDir::read("/proc/" + id + "/task/" + id + "/children"));
        for (pid_t child; children >> child;)
            kill(child, SIGKILL);
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
        process = -1;
    }

private:
    const ReservedPort reserved;

public:
    const int port = reserved.number;
    const std::string user = "typeforge", password = "pass;word}=1";

    /// Returns a connection string for the database `name` without user and password; through a Line's port, if given.
    std::string connection(const std::string& name, int line = 0) const
    {
        return "Driver={" + driver + "};Server=127.0.0.1;Port=" + std::to_string(line ? line : port) +
               ";Database=" + name + ";";
    }
    /// Returns the end of a connection string with user and password.
    std::string logon() const { return logonText(user, password); }
    /// Returns the path of the server's certificate, for servers with TLS.
    std::string certificate() const { return folder.path("cert.pem"); }

protected:
    DatabaseServer(std::string driverName, const std::string& account) : driver(std::move(driverName))
    {
        if (geteuid() != 0)
            return;
        prefix += " --init-groups --reuid=" + account + " --regid=" + account;
        if (std::system(("chown " + account + " " + folder.path()).c_str()) != 0)
            throw std::runtime_error("no user " + account);
    }

    // Creates a self-signed certificate for 127.0.0.1 and its key: the files cert.pem and key.pem. A client verifies it
    // by naming it as an authority.
    void makeCertificate()
    {
        prepare("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1 -addext "
                "subjectAltName=IP:127.0.0.1 -keyout " +
                folder.path("key.pem") + " -out " + certificate());
    }
    // Runs a command to its end, as the server's user.
    void prepare(const std::string& command)
    {
        if (std::system((prefix + " " + command + output).c_str()) != 0)
            throw std::runtime_error(command + ": " + TempDir::read(folder.path("log")));
    }
    // Starts the server and waits up to 30 seconds until it accepts a connection. `exec` makes the server this
    // process's child itself, so that signals reach it.
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
    // The server gets SIGQUIT when the test's process ends, even by a crash, so none stays behind.
    std::string driver, prefix = "setpriv --pdeathsig=QUIT", output = " >>" + folder.path("log") + " 2>&1";
    pid_t process = -1;
};

/// Whether a server offers or requires TLS.
enum class Tls
{
    none,
    offered,
    required
};

/// PostgreSQL with the superuser `user`.
class PostgresServer : public DatabaseServer
{
public:
    explicit PostgresServer(Tls tls = Tls::none) : DatabaseServer("PostgreSQL Unicode", "postgres")
    {
        for (const auto& version : std::filesystem::directory_iterator("/usr/lib/postgresql"))
            programs = version.path().string() + "/bin/";
        prepare(programs + "initdb" + data + " -U " + user + " -E UTF8 --locale=C --auth=scram-sha-256 --no-sync" +
                " --pwfile=" + folder.write("password", password));
        if (tls != Tls::none) {
            makeCertificate();
            settings += " -c ssl=on -c ssl_cert_file=" + certificate() + " -c ssl_key_file=" + folder.path("key.pem");
        }
        if (tls == Tls::required)
            settings += " -c hba_file=" + folder.write("hba", "hostssl all all 127.0.0.1/32 scram-sha-256\n");
        startAgain();
    }

    /// Starts the server again after its end, with command-line options.
    void startAgain(const std::string& options = "")
    {
        start(programs + "postgres" + data + settings + " -h 127.0.0.1 -p " + std::to_string(port) + " " + options,
              "postgres");
    }

private:
    const std::string data = " -D " + folder.path("data");
    std::string programs;
    std::string settings = " -c fsync=off -c unix_socket_directories=";
};

/// MariaDB with an account `user` that has all rights.
class MariaDbServer : public DatabaseServer
{
public:
    explicit MariaDbServer(Tls tls = Tls::none) : DatabaseServer("MariaDB Unicode", "mysql")
    {
        std::string options;
        if (tls != Tls::none) {
            makeCertificate();
            options = " --ssl-cert=" + certificate() + " --ssl-key=" + folder.path("key.pem");
        } else {
            options = " --skip-ssl"; // MariaDB 11.4 and later make a certificate of their own
        }
        if (tls == Tls::required)
            options += " --require-secure-transport=ON";
        const std::string data = " --no-defaults --datadir=" + folder.path("data");
        prepare("mariadb-install-db" + data + " --skip-test-db --auth-root-authentication-method=normal");
        const std::string account = user + " IDENTIFIED BY '" + password + "'";
        start("/usr/sbin/mariadbd" + data + options + " --bind-address=127.0.0.1 --port=" + std::to_string(port) +
                  " --socket=" + folder.path("socket") + " --character-set-server=utf8mb4 --sql-mode=ANSI_QUOTES" +
                  " --innodb-flush-log-at-trx-commit=0 --init-file=" +
                  folder.write("init.sql", "GRANT ALL ON *.* TO " + account + " WITH GRANT OPTION;\n"),
              "");
    }
};
