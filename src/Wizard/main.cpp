#include "Base/QELApp.h"
#include "Files/Descriptor.h"
#include "Ui/PlainText.h"
#include "Ui/ProgramStyle.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

// Printed without a display, like the version.
constexpr char kHelp[] = "Usage: typeforge [FILE]\n"
                         "Turns descriptions of messages into types for a message broker, step by step in a window.\n"
                         "With FILE, it starts at that file: a DTD, a schema, an API description, a message, or types\n"
                         "written earlier.\n"
                         "\n"
                         "  --help     print this help and exit\n"
                         "  --version  print the version and exit\n"
                         "\n"
                         "In scripts, use typeforge-import.\n";

// Prints the text for the first --help or --version before "--". Returns whether there was one, so that no window
// opens.
bool printedHelp(int argc, char* argv[])
{
    for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i) {
        const bool help = std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0;
        if (!help && std::strcmp(argv[i], "--version") != 0)
            continue;
        std::fputs(help ? kHelp : "typeforge " TYPEFORGE_VERSION "\n", stdout);
        return true;
    }
    return false;
}

QStringList startMessages; // messages of Qt before the display is open

// Keeps Qt's messages. Qt aborts if it finds no display, after several lines of its own; one line of ours replaces
// them.
void takeStartMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type != QtFatalMsg)
        return startMessages.append(text);
    std::fputs("typeforge: there is no display; use typeforge-import instead\n", stderr);
    std::_Exit(1);
}

// Returns when the display is open; ends the program if there is none.
void openDisplay(int& argc, char* argv[], std::optional<QApplication>& application)
{
    const QtMessageHandler before = qInstallMessageHandler(takeStartMessage);
    application.emplace(argc, argv);
    qInstallMessageHandler(before);
    for (const QString& text : startMessages)
        std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

} // namespace

// Help and version come first, because they need no display. Qt removes its own options from the arguments, so unknown
// ones can only be detected afterwards. The program ends when the wizard does, not with the last window: help and
// pictures are windows, too.
int main(int argc, char* argv[])
{
    turnFileFaultsIntoErrors();
    if (printedHelp(argc, argv))
        return std::fflush(stdout) == 0 ? 0 : 1;
    std::optional<QApplication> application;
    openDisplay(argc, argv, application);
    for (const QString& argument : QApplication::arguments().mid(1)) // Qt has removed its own options
        if (argument.startsWith('-')) {
            std::fprintf(stderr, "typeforge: unknown option %s; try typeforge --help\n", qUtf8Printable(argument));
            return 2;
        }
    QApplication::setApplicationName("Typeforge");
    QApplication::setApplicationVersion(TYPEFORGE_VERSION);
    QApplication::setDesktopFileName("org.typeforge.typeforge");
    QApplication::setStyle(new ProgramStyle);
    closeRichText();
    QApplication::setQuitOnLastWindowClosed(false);
    return theApp.InitInstance();
}
