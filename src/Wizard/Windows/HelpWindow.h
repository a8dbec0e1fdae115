#pragma once

#include <QWidget>

class QTextBrowser;

/// A window with the help pages that stays open beside the wizard.
class HelpWindow : public QWidget
{
public:
    /// The window is destroyed with its owner. A modal owner doesn't block it.
    explicit HelpWindow(QWidget* owner);

    /// Shows the page of a topic, 1 to 11; any other number shows the contents. Brings the window to the front.
    void showTopic(int topic);

private:
    QTextBrowser* browser;
};

/// Shows a topic in the owner's help window, which is created on first use. `owner` must not be null.
void showHelp(QWidget* owner, int topic);
