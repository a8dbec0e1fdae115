#pragma once

class CDatabase;

/// What the engine may ask of the program's main window. The wizard's sheet is one; the command line has none.
class MainWindow
{
public:
    virtual ~MainWindow() = default;

    /// The open ODBC connection of the run, or null when no data source has been opened.
    virtual CDatabase* queryDatabase() = 0;
};

/// The main window in force, or null.
MainWindow* mainWindow();

/// Sets the main window; null when it goes. It must outlive its being set.
void setMainWindow(MainWindow* window);
