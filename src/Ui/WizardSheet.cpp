#include "Ui/WizardSheet.h"

#include "Base/Progress.h"
#include "Base/QELApp.h"
#include "Resources/StringIds.h"
#include "Ui/HeaderBand.h"
#include "Ui/LongWork.h"
#include "Ui/Mnemonics.h"
#include "Ui/Pictures.h"
#include "Ui/PlainText.h"
#include "Ui/ProgressRow.h"
#include "Ui/UiText.h"
#include "Ui/WizardPage.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QFrame>
#include <QHBoxLayout>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>

#include <algorithm>
#include <utility>

// A sheet asks the current page for the next one and shows that. The steps of a change of page are in activate(). Long
// work replaces the row of buttons by a row with its progress; only Cancel stays.
namespace {

constexpr qint64 kReaction = 500; // milliseconds that a user takes to notice the end of long work

// These letters are the same on every page, so no page has a control with one of them. Users can go through all pages
// with the same keys.
constexpr const char* kBack = "< Bac&k";
constexpr const char* kNext = "Ne&xt >";
constexpr const char* kCancel = "&Cancel";

constexpr const char* kFinish = "&Finish";
constexpr const char* kHelp = "&Help";

// Converts dialog units: a quarter of the average letter width and an eighth of the font's height. The average width
// that a font reports includes other characters and is too narrow.
QSize dialogUnits(const QFontMetrics& metrics, int width, int height)
{
    const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    return {width * metrics.horizontalAdvance(letters) / (4 * int(letters.size())), height * metrics.height() / 8};
}

} // namespace

WizardSheet::WizardSheet(const CString& caption, CWnd* parent, UINT start, HBITMAP watermarkPicture,
                         HBITMAP headerPicture) :
    QDialog(parent),
    watermarkId(watermarkPicture), watermark(picture(watermarkPicture, palette())),
    band(new HeaderBand(headerPicture, this)), stack(new QStackedWidget(this)), startPage(start)
{
    setWindowTitle(plainTitle(toUi(caption)));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    // Dialogs have no such buttons by default, but the lists of types can use a large window.
    setWindowFlag(Qt::WindowMinMaxButtonsHint, true);
    backButton = addButton("back", kBack, &WizardSheet::goBack);
    nextButton = addButton("next", kNext, &WizardSheet::goNext);
    backKey = addKey(Qt::Key_B, backButton);
    nextKey = addKey(Qt::Key_N, nextButton);
    finishButton = addButton("finish", kFinish, &WizardSheet::finish);
    cancelButton = addButton("cancel", kCancel, &WizardSheet::cancel);
    helpButton = addButton("help", kHelp, &WizardSheet::help);
    new QShortcut(QKeySequence(Qt::Key_F1), this, this, &WizardSheet::help);
    layOut();
}

// The object names are those by which tests and scripts find the buttons.
QPushButton* WizardSheet::addButton(const char* name, const QString& text, void (WizardSheet::*action)())
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

void WizardSheet::layOut()
{
    navigation = new QWidget(this);
    auto* buttons = new QHBoxLayout(navigation);
    buttons->setContentsMargins({});
    buttons->setSpacing(0);
    buttons->addStretch();
    buttons->addWidget(backButton);
    buttons->addWidget(nextButton);
    buttons->addWidget(finishButton);
    progressRow = new ProgressRow;
    progressRow->hide();

    auto* row = new QHBoxLayout;
    row->setContentsMargins(11, 9, 11, 11);
    row->addWidget(navigation, 1);
    row->addWidget(progressRow, 1);
    row->addSpacing(10);
    row->addWidget(cancelButton);
    row->addWidget(helpButton);

    auto* line = new QFrame(this);
    line->setFrameStyle(static_cast<int>(QFrame::HLine) | static_cast<int>(QFrame::Sunken));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(band);
    column->addWidget(stack, 1);
    column->addWidget(line);
    column->addLayout(row);
}

// The area takes the page as its child, and Qt deletes children with their parent. A page that is a member of a derived
// class is destroyed earlier, and leaves its area then.
void WizardSheet::AddPage(WizardPage& page)
{
    page.owner = this;
    pages.push_back(&page);
    auto* area = new QScrollArea; // a page may need more room than a small screen has
    area->setFrameStyle(QFrame::NoFrame);
    area->setWidgetResizable(true);
    // Tab goes to the controls only, and the area scrolls to the one that gets the focus.
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(&page);
    // A scroll area only follows Tab by itself, not a letter of a label or the program's setFocus().
    connect(qApp, &QApplication::focusChanged, area, [area](QWidget*, QWidget* now) {
        if (area->isAncestorOf(now))
            area->ensureWidgetVisible(now);
    });
    stack->addWidget(area);
    band->addSubtitle(page.subtitle);
}

int WizardSheet::DoModal()
{
    QEventLoop loop;
    connect(this, &QDialog::finished, &loop, &QEventLoop::exit);
    show();
    return loop.exec() == Accepted ? resultOk : resultCancel;
}

// Next and Finish stand at the same place, and one of them is the default, which Return presses in most fields.
void WizardSheet::SetWizardButtons(int buttons)
{
    const bool last = (buttons & buttonFinish) != 0;
    backButton->setEnabled((buttons & buttonBack) != 0);
    nextButton->setEnabled((buttons & buttonNext) != 0);
    nextButton->setVisible(!last);
    finishButton->setVisible(last);
    (last ? finishButton : nextButton)->setDefault(true);
}

WizardPage* WizardSheet::activePage() const
{
    return started ? pages[static_cast<std::size_t>(stack->currentIndex())] : nullptr;
}

// A page can name any page, so the step of -1 only matters for the answer 0.
void WizardSheet::goBack()
{
    go(ask([this] { return activePage()->OnWizardBack(); }), -1);
}

void WizardSheet::goNext()
{
    go(ask([this] { return activePage()->OnWizardNext(); }), 1);
}

// The page stores its data, and may refuse.
void WizardSheet::finish()
{
    if (activePage()->OnWizardFinish() != 0)
        accept();
}

// While work runs, Cancel ends the work, and the sheet stays.
void WizardSheet::cancel()
{
    if (work)
        work->cancel();
    else
        reject();
}

// Ignores a cancellation right after long work has ended, because it was meant for the work. Escape and the window's
// close button come here, too. The work may end just before the key is pressed, and closing the wizard then would lose
// all entries.
void WizardSheet::reject()
{
    if (work || (sinceWork.isValid() && !sinceWork.hasExpired(kReaction)))
        return;
    QDialog::reject();
}

// Work that ends before its progress is shown changes nothing: neither the buttons nor the focus. The scope guard also
// runs if the work throws. The focus is kept by a QPointer, because the work's calls may delete its widget.
void WizardSheet::runLong(const std::function<void()>& call, QProgressBar* pageBar, const QString& server)
{
    remainingTime = {};
    LongWork longWork(*cancelButton);
    connect(&longWork, &LongWork::becameVisible, this, [&] { setNavigation(false); });
    for (const auto signal : {&LongWork::becameVisible, &LongWork::progressed})
        connect(&longWork, signal, this, [&] { showProgress(longWork, pageBar, server); });
    const QPointer<QWidget> focus = focusWidget(); // while the work runs, only Cancel can have it
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    const auto end = qScopeGuard([&] {
        // A box at the begin of the work stays for long without a progress row.
        if (sinceBegin.hasExpired(kReaction))
            sinceWork.start();
        if (progressRow->isHidden())
            return;
        showProgress(longWork, pageBar, server);
        setNavigation(true);
        if (focus)
            focus->setFocus();
    });
    // Cancel ends the work from here on.
    const QScopedValueRollback running(work, &longWork);
    longWork.run(call);
}

// The time that is left can't be estimated while waiting for a server, so its name is shown instead. Cancel is disabled
// once pressed: the work ends at its next report.
void WizardSheet::showProgress(const LongWork& longWork, QProgressBar* pageBar, const QString& server)
{
    const Progress progress = longWork.query();
    const bool isWaiting = progress.work == Work::waiting && !server.isEmpty();
    const QString words =
        toUi(progressText(progress)) + (isWaiting ? tr(" from %1").arg(server) : remainingTime.textFor(progress));
    progressRow->setBarVisible(!pageBar || progress.work != Work::creating);
    progressRow->show(longWork.isCancelled() ? "Cancelling ..." : words, progress);
    cancelButton->setEnabled(!longWork.isCancelled());
    if (pageBar && progress.total != 0 && progress.work == Work::creating)
        pageBar->setValue(static_cast<int>(progress.done));
}

// Hides the buttons before the progress appears. If both were visible for a moment, the window would grow for good.
// Calls alternate, because each sets or restores one cursor of a stack.
void WizardSheet::setNavigation(bool visible)
{
    if (visible)
        progressRow->hide();
    navigation->setVisible(visible);
    helpButton->setEnabled(visible);
    if (visible) {
        cancelButton->setEnabled(true);
        QGuiApplication::restoreOverrideCursor();
    } else {
        cancelButton->setFocus();
        QGuiApplication::setOverrideCursor(Qt::BusyCursor); // not the wait cursor: Cancel can be clicked
    }
}

void WizardSheet::help()
{
    theApp.WinHelp(static_cast<DWORD>(activePage()->queryDialogId()));
}

// Cancelled is not a std::exception, and the user needs no message about it.
LRESULT WizardSheet::ask(const std::function<LRESULT()>& handler)
{
    try {
        return handler();
    } catch (const std::exception& error) {
        theApp.Error(messageOf(error), IDS_ERROR_TITLE);
    } catch (const Cancelled&) {
        // the page stays as it was
    }
    return -1;
}

// An id without a page is ignored. The neighbour of the first page on Back, and of the last on Next, is itself.
void WizardSheet::go(LRESULT answer, int step)
{
    if (answer == -1)
        return;
    auto target = pages.begin();
    if (answer == 0)
        target += std::clamp<std::ptrdiff_t>(stack->currentIndex() + step, 0, std::ssize(pages) - 1);
    else
        target = std::find_if(pages.begin(), pages.end(),
                              [answer](const WizardPage* page) { return page->queryDialogId() == answer; });
    if (target != pages.end())
        activate(static_cast<int>(target - pages.begin()));
}

// Shows a page; its controls are made on the first visit. The page is shown before it is filled, because filling can
// take long and then shows its progress in the sheet. Keys and tab stops come last, because they depend on what the
// page has shown or hidden.
void WizardSheet::activate(int index)
{
    WizardPage* page = pages[static_cast<std::size_t>(index)];
    const int before = stack->currentIndex();
    if (!page->initialised) {
        page->OnInitDialog();
        page->initialised = true;
        OnPageMade(*page);
    }
    if (QWidget* const leaving = focusWidget())
        leaving->clearFocus(); // else the focus moves on through the page, and a screen reader reads each control
    stack->setCurrentIndex(index);
    band->setTexts(page->title, page->subtitle);
    band->setVisible(page->look == WizardPage::Look::interior);
    setWindowTitle(plainTitle(page->caption));
    SetWizardButtons(buttonBack | buttonNext);
    try {
        page->OnSetActive();
    } catch (const std::exception& error) {
        theApp.Error(messageOf(error), IDS_ERROR_TITLE);
    } catch (const Cancelled&) { // cancelled while filling the page: back to the page before
        return activate(before);
    }
    updateMnemonics();
    setRadioTabStops(page);
    // Finish gets the focus itself, because nothing is left to enter.
    QWidget* first = firstTabStop(page);
    QWidget* const defaultButton = finishButton->isHidden() ? nextButton : finishButton;
    (first != nullptr && defaultButton == nextButton ? first : defaultButton)->setFocus();
}

// Makes Alt and the first letter of a button's text press the button as well, as in other wizards, unless a control of
// the page has that letter.
QShortcut* WizardSheet::addKey(Qt::Key letter, QPushButton* button)
{
    auto* key = new QShortcut(Qt::ALT | letter, this);
    connect(key, &QShortcut::activated, button, [button] {
        if (button->isVisible())
            button->animateClick();
    });
    return key;
}

// Gives Finish and Help mnemonics that no control of the page has, and disables the keys that a control has.
void WizardSheet::updateMnemonics()
{
    QString taken = mnemonicsOf(activePage());
    backKey->setEnabled(!taken.contains('b'));
    nextKey->setEnabled(!taken.contains('n') && !nextButton->isHidden());
    for (const char* text : {kBack, kNext, kCancel})
        taken += QString(text)[QString(text).indexOf('&') + 1];
    for (const auto& [button, text] : {std::pair(finishButton, kFinish), {helpButton, kHelp}})
        if (!button->isHidden())
            setTextWithMnemonic(*button, text, taken);
}

// The first page is shown here, not in the constructor, because it calls virtual functions, and because pages are added
// later.
void WizardSheet::setVisible(bool visible)
{
    if (visible && !started) {
        started = true;
        activate(static_cast<int>(startPage));
        const QSize frame(0, style()->pixelMetric(QStyle::PM_TitleBarHeight));
        if (!testAttribute(Qt::WA_Resized)) // keeps a size set by the caller
            resize(sizeHint().boundedTo(screen()->availableSize() - frame));
    }
    QDialog::setVisible(visible);
}

// 22 pixels are the margins around the buttons and the line above them.
QSize WizardSheet::sizeHint() const
{
    const QSize page = dialogUnits(fontMetrics(), 340, 190);
    const int buttons = backButton->sizeHint().height() + 22;
    return {page.width(), page.height() + band->heightAt(page.width()) + buttons};
}

// The desktop's colours can change while the wizard runs.
void WizardSheet::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        watermark = picture(watermarkId, palette());
    QDialog::changeEvent(event);
}
