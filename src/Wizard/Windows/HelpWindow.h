#pragma once

#include "Ui/SideWindow.h"

class QTextBrowser;

/// A window with the help pages that stays open beside the wizard. It has no owner, so that no box blocks it: it
/// explains the boxes.
class HelpWindow : public SideWindow
{
public:
    HelpWindow();

    /// Shows the page of a topic, 1 to 11; any other number shows the contents. Brings the window to the front.
    void showTopic(int topic);

private:
    QTextBrowser* browser;
};
