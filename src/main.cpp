#include "Platform/Ui/ProgramStyle.h"
#include "Utils/QELApp.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName("Typeforge");
    QApplication::setApplicationVersion(TYPEFORGE_VERSION);
    QApplication::setDesktopFileName("org.typeforge.typeforge");
    QApplication::setStyle(new ProgramStyle);
    QApplication::setQuitOnLastWindowClosed(false);
    return theApp.InitInstance();
}
