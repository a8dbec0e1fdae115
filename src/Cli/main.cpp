#include "Cli/Import.h"
#include "Cli/Report.h"
#include "Utils/QELApp.h"

int main(int argc, char** argv)
{
    try {
        Arguments arguments;
        int exitStatus = 0;
        return parseArguments(argc, argv, arguments, exitStatus) ? runImport(arguments) : exitStatus;
    } catch (const std::exception& error) {
        report(wordsOf(error));
        return 1;
    }
}
