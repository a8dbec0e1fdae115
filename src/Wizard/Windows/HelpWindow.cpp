#include "Wizard/Windows/HelpWindow.h"

#include "Ui/PlainText.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <algorithm>
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
HelpWindow::HelpWindow(QWidget* owner) : QWidget(owner, Qt::Window), browser(new QTextBrowser)
{
    setObjectName("helpWindow");
    browser->setObjectName("topic");
    browser->setAccessibleName(tr("Help text"));
    auto* buttons = new QHBoxLayout;
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addWidget(browser);

    const auto addButton = [&](const char* name, const QString& text, const QKeySequence& keys, auto action) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        button->setToolTip(plainToolTip(keys.toString(QKeySequence::NativeText)));
        connect(button, &QPushButton::clicked, browser, action);
        connect(new QShortcut(keys, this), &QShortcut::activated, button, &QPushButton::click);
        buttons->addWidget(button);
        return button;
    };
    addButton("contents", tr("&Contents"), Qt::ALT | Qt::Key_Home, [this] { browser->setSource(pageOf(0)); });
    QPushButton* back = addButton("back", tr("&Back"), Qt::ALT | Qt::Key_Left, &QTextBrowser::backward);
    QPushButton* forward = addButton("forward", tr("&Forward"), Qt::ALT | Qt::Key_Right, &QTextBrowser::forward);
    buttons->addStretch();
    addButton("close", tr("C&lose"), Qt::Key_Escape, [this] { close(); });

    connect(browser, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
    connect(browser, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
    connect(browser, &QTextBrowser::sourceChanged, this,
            [this] { setWindowTitle(plainTitle(browser->documentTitle())); });
    const QSize wanted(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 38);
    resize(wanted.boundedTo(screen()->availableSize() * 0.9)); // leaves room for the frame
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

// A closed window is only hidden, so it is found again with its size and the pages visited.
void showHelp(QWidget* owner, int topic)
{
    auto* window = dynamic_cast<HelpWindow*>(owner->findChild<QWidget*>("helpWindow", Qt::FindDirectChildrenOnly));
    if (!window)
        window = new HelpWindow(owner);
    window->showTopic(topic);
}
