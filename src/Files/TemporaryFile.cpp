#include "Files/TemporaryFile.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace {

constexpr int kEndingSignals[] = {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU};

// The list of all temporary files, newest first. A signal can come at any moment, so the list only ever changes by one
// store. A file joins the list before it exists, while its name is still a pattern, so that a signal between its
// creation and its entry can't miss it.
std::atomic<TemporaryFile*> chain = nullptr;

// SA_RESETHAND has restored the default action, so raising the signal again ends the process with the right status.
void deleteAndRaise(int signal)
{
    TemporaryFile::deleteAll();
    std::raise(signal);
}

// Installs the handler for signals with the default action. An ignored signal (as under nohup) stays ignored. SIGXFSZ
// is ignored (turnFileFaultsIntoErrors), so that a write fails instead.
void deleteAtEnd()
{
    struct sigaction action = {};
    action.sa_handler = deleteAndRaise;
    action.sa_flags = SA_RESETHAND;
    for (const int signal : kEndingSignals)
        if (struct sigaction present = {}; ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_DFL)
            ::sigaction(signal, &action, nullptr);
    std::atexit(TemporaryFile::deleteAll);
}

// Returns the folder's absolute name with a final slash, so that it stays valid if the current folder changes.
CString absoluteFolder(const CString& folder)
{
    const std::filesystem::path given = folder.empty() ? "." : folder;
    std::error_code failure;
    std::filesystem::path full = std::filesystem::canonical(given, failure);
    if (failure)
        full = std::filesystem::absolute(given, failure);
    return (failure ? given : full) / "";
}

} // namespace

void TemporaryFile::deleteAll() noexcept
{
    for (const auto* file = chain.load(); file != nullptr; file = file->next)
        ::unlink(file->name.c_str());
}

void TemporaryFile::remove()
{
    if (isCreated)
        ::unlink(name.c_str());
    isCreated = false;
    forget();
}

int TemporaryFile::create(const CString& folder, const char* prefix, const char* suffix)
{
    // Once for the process, and only if there is a file to delete: programs without one keep their signals.
    [[maybe_unused]] static const bool watching = (deleteAtEnd(), true);
    name = absoluteFolder(folder) + prefix + "XXXXXX" + suffix;
    // In this order: a signal between the two stores must find a complete list.
    next = chain;
    chain = this;
    // Replaces the six X in the name itself, which the list already leads to.
    const int descriptor = ::mkostemps(name.data(), static_cast<int>(std::strlen(suffix)), O_CLOEXEC);
    isCreated = descriptor >= 0;
    if (!isCreated)
        forget();
    return descriptor;
}

bool TemporaryFile::renameTo(const CString& target)
{
    if (::rename(name.c_str(), target.c_str()) != 0)
        return false;
    // A signal that comes before this deletes nothing, because the old name is gone.
    isCreated = false;
    forget();
    return true;
}

// Removes the file from the list. Linear in the files, of which there are a few at a time.
void TemporaryFile::forget()
{
    if (chain == this) {
        chain = next;
        return;
    }
    for (TemporaryFile* before = chain; before != nullptr; before = before->next)
        if (before->next == this)
            before->next = next;
}
