#include "Wizard/Windows/HelpWindow.h"

#include <QTextBrowser>

#include <iterator>

namespace {
// By topic number; other numbers get the first page. They are the names of the files in the resources, /help/NAME.html.
constexpr const char* kPages[] = {"index",  "welcome", "results", "datasource", "tables",    "types",
                                  "finish", "login",   "output",  "outputfile", "inputfile", "importer"};

QUrl pageOf(int topic)
{
    const bool known = topic > 0 && topic < static_cast<int>(std::size(kPages));
    return QUrl(QString("qrc:/help/%1.html").arg(kPages[known ? topic : 0]));
}
} // namespace

// Back and Forward are those of the browser, which keeps the pages visited.
HelpWindow::HelpWindow() : SideWindow(nullptr, "helpWindow"), browser(new QTextBrowser)
{
    browser->setObjectName("topic");
    browser->setAccessibleName(tr("Help text"));
    auto* buttons = new QHBoxLayout;
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(browser);

    addButton(*buttons, "contents", tr("&Contents"), Qt::ALT | Qt::Key_Home, browser,
              [this] { browser->setSource(pageOf(0)); });
    QPushButton* back =
        addButton(*buttons, "back", tr("&Back"), Qt::ALT | Qt::Key_Left, browser, &QTextBrowser::backward);
    QPushButton* forward =
        addButton(*buttons, "forward", tr("&Forward"), Qt::ALT | Qt::Key_Right, browser, &QTextBrowser::forward);
    buttons->addStretch();
    addCloseButton(*buttons);

    connect(browser, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    connect(browser, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
    connect(browser, &QTextBrowser::sourceChanged, this,
            [this] { setWindowTitle(plainTitle(browser->documentTitle())); });
    resizeToText(100, 38);
}

// The focus goes to the text, so that the cursor keys scroll it.
void HelpWindow::showTopic(int topic)
{
    browser->setSource(pageOf(topic));
    show();
    raise();
    activateWindow();
    browser->setFocus();
}
