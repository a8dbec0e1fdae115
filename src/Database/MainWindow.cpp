#include "Database/MainWindow.h"

namespace {

MainWindow* current = nullptr;

}

MainWindow* mainWindow()
{
    return current;
}

void setMainWindow(MainWindow* window)
{
    current = window;
}
