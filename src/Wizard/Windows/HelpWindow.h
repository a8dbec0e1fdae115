#pragma once

#include <QWidget>

class QTextBrowser;

/// The help, page by page, in a window of its own that stays open beside the wizard.
class HelpWindow : public QWidget
{
public:
    /// A window that belongs to the owner: it goes when the owner goes, and a modal owner doesn't lock it.
    explicit HelpWindow(QWidget* owner);

    /// Shows the page of a topic, 1 to 11; any other number shows the contents.
    void showTopic(int topic);

private:
    QTextBrowser* browser;
};

/// Opens the topic in the owner's help window, which is made when first asked for.
void showHelp(QWidget* owner, int topic);
