#pragma once

class CDatabase;

/// The interface of the program's main window to the engine. The wizard's sheet implements it; the command line has
/// none.
class MainWindow
{
public:
    virtual ~MainWindow() = default;

    /// Returns the run's open ODBC connection, or null if no data source is open. The window owns it.
    virtual CDatabase* queryDatabase() = 0;
};

/// Returns the current main window, or null. Call it in the window's thread only.
MainWindow* mainWindow();

/// Sets the main window, which must stay valid until another one or null is set.
void setMainWindow(MainWindow* window);
