#pragma once

#include "Ui/SideWindow.h"

class QTextBrowser;

/// A window with the help pages that stays open beside the wizard.
class HelpWindow : public SideWindow
{
public:
    explicit HelpWindow(QWidget* owner);

    /// Shows the page of a topic, 1 to 11; any other number shows the contents. Brings the window to the front.
    void showTopic(int topic);

private:
    QTextBrowser* browser;
};

/// Shows a topic in the owner's help window, which is created on first use. `owner` must not be null.
void showHelp(QWidget* owner, int topic);
