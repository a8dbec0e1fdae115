#include "Base/Terminal.h"

#include "Base/Secret.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

// The last blocked signal that came during the prompt, 0 if none. Of a type that a handler can write safely.
volatile std::sig_atomic_t caughtSignal = 0;

void noteSignal(int number)
{
    caughtSignal = number;
}

// Blocks the signals that would end or stop the process while the echo is off, so that the echo is restored first. They
// are delivered only inside ppoll(), so none can arrive just before the wait and be missed.
class BlockedSignals
{
public:
    BlockedSignals()
    {
        caughtSignal = 0;
        sigset_t blocked;
        sigemptyset(&blocked);
        struct sigaction note = {};
        note.sa_handler = noteSignal;
        for (std::size_t i = 0; i < kBlocked.size(); ++i) {
            sigaddset(&blocked, kBlocked[i]);
            sigaction(kBlocked[i], &note, &actions[i]);
        }
        sigprocmask(SIG_BLOCK, &blocked, &before);
    }

    ~BlockedSignals()
    {
        for (std::size_t i = 0; i < kBlocked.size(); ++i)
            sigaction(kBlocked[i], &actions[i], nullptr);
        sigprocmask(SIG_SETMASK, &before, nullptr);
        if (caughtSignal)
            raise(caughtSignal); // only recorded until now
    }

    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

    // Returns true if there is something to read, false if a signal came first.
    bool waitFor(int descriptor) const
    {
        pollfd readable = {descriptor, POLLIN, 0};
        return ppoll(&readable, 1, nullptr, &before) == 1;
    }

private:
    static constexpr std::array kBlocked = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    std::array<struct sigaction, kBlocked.size()> actions;
    sigset_t before;
};

// The terminal of the process with its echo turned off.
class SilentTerminal
{
public:
    SilentTerminal() : descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY))
    {
        if (descriptor < 0 || tcgetattr(descriptor, &before) != 0)
            return;
        termios silent = before;
        // Only the echo: in canonical mode the terminal still edits the line, and read() returns once the line is
        // complete.
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        usable = tcsetattr(descriptor, TCSAFLUSH, &silent) == 0; // drops input typed before the prompt
    }

    ~SilentTerminal()
    {
        if (usable)
            tcsetattr(descriptor, TCSAFLUSH, &before);
        if (descriptor >= 0)
            close(descriptor);
    }

    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    bool isUsable() const { return usable; }
    bool write(std::string_view text) const { return ::write(descriptor, text.data(), text.size()) >= 0; }

    // Reads one character at a time, so that no buffer keeps the typed text. Returns false at the end of the input,
    // which is Ctrl+D on an empty line, and after a signal.
    bool readLine(const BlockedSignals& signals, CString& line) const
    {
        char c = 0;
        while (signals.waitFor(descriptor) && read(descriptor, &c, 1) == 1) {
            if (c == '\n')
                return true;
            line += c;
        }
        return false;
    }

private:
    int descriptor;
    termios before = {};
    bool usable = false;
};

PromptResult promptOnce(const CString& prompt, CString& secret, bool& wasStopped)
{
    const BlockedSignals signals; // first, so that the echo is restored before the signal is raised again
    const SilentTerminal terminal;
    wipe(secret);
    if (!terminal.isUsable())
        return PromptResult::noTerminal;
    secret.reserve(1024); // growing would leave copies behind
    const bool isAnswered = terminal.write(prompt) && terminal.readLine(signals, secret);
    wasStopped = caughtSignal == SIGTSTP;
    // The user's own line end was not echoed.
    terminal.write("\n");
    if (!isAnswered)
        wipe(secret);
    return isAnswered ? PromptResult::answered : PromptResult::interrupted;
}

} // namespace

PromptResult promptTerminal(const CString& prompt, CString& secret)
{
    // Asks again after a stop, because the shell may have used the terminal meanwhile.
    for (;;) {
        bool wasStopped = false;
        const PromptResult result = promptOnce(prompt, secret, wasStopped);
        if (!wasStopped)
            return result;
    }
}
