#include "Base/Terminal.h"

#include "Base/Secret.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t caughtSignal = 0;

void noteSignal(int number)
{
    caughtSignal = number;
}

// Holds off what would end the process while the terminal is silent, so that it can be given its echo back first. The
// signals get through only while waitFor() waits, so none can slip in before the waiting and be waited for.
class HeldSignals
{
public:
    HeldSignals()
    {
        caughtSignal = 0;
        sigset_t held;
        sigemptyset(&held);
        struct sigaction note = {};
        note.sa_handler = noteSignal;
        for (std::size_t i = 0; i < kHeld.size(); ++i) {
            sigaddset(&held, kHeld[i]);
            sigaction(kHeld[i], &note, &actions[i]);
        }
        sigprocmask(SIG_BLOCK, &held, &before);
    }

    ~HeldSignals()
    {
        for (std::size_t i = 0; i < kHeld.size(); ++i)
            sigaction(kHeld[i], &actions[i], nullptr);
        sigprocmask(SIG_SETMASK, &before, nullptr);
        if (caughtSignal)
            raise(caughtSignal);
    }

    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    // True when there is something to read, false when a signal came first.
    bool waitFor(int descriptor) const
    {
        pollfd readable = {descriptor, POLLIN, 0};
        return ppoll(&readable, 1, nullptr, &before) == 1;
    }

private:
    static constexpr std::array kHeld = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    std::array<struct sigaction, kHeld.size()> actions;
    sigset_t before;
};

// A terminal that doesn't show what is typed.
class SilentTerminal
{
public:
    SilentTerminal() : descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY))
    {
        if (descriptor < 0 || tcgetattr(descriptor, &before) != 0)
            return;
        termios silent = before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        usable = tcsetattr(descriptor, TCSAFLUSH, &silent) == 0;
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

    // One character at a time, so that no buffer keeps what was typed.
    bool readLine(const HeldSignals& signals, CString& line) const
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

Asked askOnce(const CString& prompt, CString& secret, bool& wasStopped)
{
    const HeldSignals signals; // above the terminal, which has to be itself again when the signal goes on
    const SilentTerminal terminal;
    wipe(secret);
    if (!terminal.isUsable())
        return Asked::noTerminal;
    secret.reserve(1024); // no growth, it would leave copies behind
    const bool isAnswered = terminal.write(prompt) && terminal.readLine(signals, secret);
    wasStopped = caughtSignal == SIGTSTP;
    terminal.write("\n");
    if (!isAnswered)
        wipe(secret);
    return isAnswered ? Asked::answered : Asked::givenUp;
}

} // namespace

Asked askTerminal(const CString& prompt, CString& secret)
{
    for (;;) {
        bool wasStopped = false;
        const Asked asked = askOnce(prompt, secret, wasStopped);
        if (!wasStopped)
            return asked;
    }
}

// With the wrong mode, so that who reads or writes there is told (EBADF) as without a stream.
void takeClosedStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY); // the lowest that is free: this one
}
