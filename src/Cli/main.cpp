#include "Base/LargePages.h"
#include "Base/QELApp.h"
#include "Cli/Diagnostics.h"
#include "Cli/Import.h"
#include "Files/Descriptor.h"
#include "Files/TemporaryFile.h"

#include <cstdlib>
#include <unistd.h>

// Reports errors that main() can't catch: before and after it, and in noexcept functions.
namespace {

const Arguments* running = nullptr; // those of main(), for the terminate handler, which has no parameters

// Ends the program with an error that was not caught. Uses _exit(), because the program's objects may be in any state.
// It deletes the temporary files, as exit() would.
[[noreturn]] void reportAndExit()
{
    try {
        if (const std::exception_ptr error = std::current_exception())
            std::rethrow_exception(error);
    } catch (const std::exception& error) {
        report(messageOf(error));
        TemporaryFile::deleteAll();
        _exit(running ? running->failedStatus() : kFailed);
    }
    std::abort();
}

// Sets the terminate handler before all else. Memory can run out before main(), when CLI11 constructs its static
// objects, and in noexcept functions. 101 is the first priority that programs may use.
[[gnu::constructor(101)]] void installTerminateHandler()
{
    std::set_terminate(reportAndExit);
}

} // namespace

int main(int argc, char** argv)
{
    useLargePagesInHeap();
    turnFileFaultsIntoErrors();
    static Arguments arguments; // static, because the terminate handler may run after main()
    running = &arguments;
    try {
        int exitStatus = kDone;
        return parseArguments(argc, argv, arguments, exitStatus) ? runImport(arguments) : exitStatus;
    } catch (const std::exception& error) {
        report(messageOf(error));
        return arguments.failedStatus();
    }
}
