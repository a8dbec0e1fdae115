#include "Cli/Import.h"

#include <exception>

int main(int argc, char** argv)
{
    Arguments arguments;
    int exitStatus = 0;
    if (!parseArguments(argc, argv, arguments, exitStatus))
        return exitStatus;
    try {
        return runImport(arguments);
    } catch (const std::exception& error) {
        report(error.what());
        return 1;
    }
}
