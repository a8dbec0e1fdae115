#include "Platform/Files/TemporaryFiles.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

// A signal can come at any moment, so what its handler reads is a chain that only ever changes by one store. A file is
// in the chain before it exists, under a name that is still a pattern: there is no moment at which it would be missed.
struct TemporaryFiles::File
{
    CString name;
    File* next;
};

namespace {

constexpr int kEndingSignals[] = {SIGTERM, SIGINT, SIGHUP};

std::atomic<void*> chain = nullptr; // of TemporaryFiles::File, newest first

// The disposition is the default one again by now, so the process ends as it would have done.
void endBySignal(int signal)
{
    TemporaryFiles::deleteAll();
    std::raise(signal);
}

// A signal that is ignored (as under nohup) stays so.
void watchForTheEnd()
{
    struct sigaction action = {};
    action.sa_handler = endBySignal;
    action.sa_flags = SA_RESETHAND;
    for (const int signal : kEndingSignals)
        if (struct sigaction present = {}; ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_DFL)
            ::sigaction(signal, &action, nullptr);
    std::atexit(TemporaryFiles::deleteAll);
}

} // namespace

void TemporaryFiles::deleteAll() noexcept
{
    for (const auto* file = static_cast<const File*>(chain.load()); file != nullptr; file = file->next)
        ::unlink(file->name.c_str());
}

FileCause TemporaryFiles::add(const CString& folder, std::string_view bytes, CString& name, std::string_view suffix)
{
    [[maybe_unused]] static const bool watching = (watchForTheEnd(), true);
    files.push_back(
        std::make_unique<File>(File{folder + "/QEL_XXXXXX" + CString(suffix), static_cast<File*>(chain.load())}));
    File& file = *files.back();
    chain = &file;
    const int descriptor =
        ::mkostemps(file.name.data(), static_cast<int>(suffix.size()), O_CLOEXEC); // exclusively, for the user alone
    name = file.name;
    if (descriptor < 0)
        return fileCauseOf(errno);
    std::FILE* stream = ::fdopen(descriptor, "wb");
    if (stream == nullptr)
        return fileCauseOf(errno);
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    const bool whole = std::ferror(stream) == 0;
    return std::fclose(stream) == 0 && whole ? FileCause::none : fileCauseOf(errno);
}

TemporaryFiles::TemporaryFiles() = default;

TemporaryFiles::~TemporaryFiles()
{
    for (auto file = files.rbegin(); file != files.rend(); ++file) {
        ::unlink((*file)->name.c_str());
        forget(file->get());
    }
}

// Takes a file out of the chain.
void TemporaryFiles::forget(const File* file)
{
    if (chain == file) {
        chain = file->next;
        return;
    }
    for (auto* before = static_cast<File*>(chain.load()); before != nullptr; before = before->next)
        if (before->next == file)
            before->next = file->next;
}
