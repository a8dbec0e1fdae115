#pragma once

#include "Base/Text.h"
#include "Ui/RemainingTime.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QImage>

#include <cstddef>
#include <functional>
#include <vector>

class HeaderBand;
class LongWork;
class ProgressRow;
class QProgressBar;
class QPushButton;
class QShortcut;
class QStackedWidget;
class WizardPage;

// The platform's window types that signatures use.
using CWnd = QWidget;
using HBITMAP = int;             ///< the resource number of a picture
using HPALETTE = std::nullptr_t; ///< unused: a picture brings its own colours

/// A dialog of pages with the buttons Back, Next, Finish, Cancel and Help ("back", "next", "finish", "cancel", "help").
/// Each page returns the page that follows on Next and on Back, in any order; QWizard's Back only leads to the page
/// visited before, and its Next refuses visited pages. Does not own the pages.
class WizardSheet : public QDialog
{
    Q_OBJECT

public:
    /// The buttons that a page can enable; Cancel and Help always are. Finish replaces Next.
    enum Buttons
    {
        buttonBack = 1,
        buttonNext = 2,
        buttonFinish = 4
    };

    /// Results of DoModal().
    enum Results
    {
        resultOk = 1,
        resultCancel = 2
    };

    /// `watermark` and `header` are numbers of picture() for cover and interior pages. `startPage` is a sheet index.
    WizardSheet(const CString& caption, CWnd* parent, UINT startPage, HBITMAP watermark, HBITMAP header);

    /// Appends a page; its position is its sheet index. Call it before the sheet is shown. The page becomes a child
    /// widget of the sheet, so it must be destroyed before the sheet, for example as a member of a derived class.
    void AddPage(WizardPage& page);

    /// Sets the sheet index of the first page.
    void setStartPage(UINT index) { startPage = index; }

    /// Runs the sheet until it closes and returns one of Results. It has an event loop of its own, so that other
    /// windows stay usable: exec() would make the sheet modal.
    int DoModal();

    /// Enables exactly these buttons (of Buttons) and makes Next or Finish the default. Both Back and Next are enabled
    /// before a page's OnSetActive() is called.
    void SetWizardButtons(int buttons);

    /// Returns the current page; null before the sheet is first shown.
    WizardPage* activePage() const;

    /// The actions of the buttons. A page may call goNext() for a double click. They need a page that is shown.
    void goBack();
    void goNext();
    void finish();

    /// Returns the result of `handler`, or -1 if it throws. Shows the exception, unless it is Cancelled. Exceptions
    /// can't pass through Qt's event loop, so handlers that may throw are called in this way.
    LRESULT ask(const std::function<LRESULT()>& handler);

    /// Runs work that may take long in a thread of its own, and returns when it is done. Rethrows its exceptions. After
    /// a while, a row in place of the buttons shows the progress; Cancel then ends the work, and Cancelled is thrown.
    /// `pageBar` is a bar of the page that also shows the creation of types. `server` is the name shown while waiting
    /// for a server; "" for none. Call it in the window's thread. See LongWork for what the work may do.
    void runLong(const std::function<void()>& work, QProgressBar* pageBar = nullptr, const QString& server = {});

    /// Shows the first page when the sheet becomes visible.
    void setVisible(bool visible) override;

    /// Returns the size for a page of 340 x 190 dialog units and the frame around it. The height of the frame depends
    /// on the subtitles, so it is known after the last AddPage().
    QSize sizeHint() const override;

    /// Returns the picture behind cover pages, in the tones of the palette. Valid until the palette changes.
    const QImage& queryWatermark() const { return watermark; }

protected:
    void changeEvent(QEvent* event) override;

    /// Called when a page's controls were created, before it is first shown. Called once for each page.
    virtual void OnPageMade(WizardPage& page) = 0;

    /// Shows the page with a dialog id, whatever page is current, without asking that page.
    void showPage(int dialogId) { go(dialogId, 0); }

private:
    QPushButton* addButton(const char* name, const QString& text, void (WizardSheet::*action)());
    QShortcut* addKey(Qt::Key letter, QPushButton* button);
    void help();
    void cancel();
    void reject() override;
    void showProgress(const LongWork& work, QProgressBar* pageBar, const QString& server);
    void setNavigation(bool visible);
    // Puts the parts of the sheet in place; called once.
    void layOut();
    // `answer` is that of a page's handler; `step` leads to the neighbour for the answer 0.
    void go(LRESULT answer, int step);
    void activate(int index);
    void updateMnemonics();

    HBITMAP watermarkId; // of `watermark`, which is loaded again if the palette changes
    QImage watermark;
    HeaderBand* band;
    QStackedWidget* stack;
    QPushButton* backButton;
    QPushButton* nextButton;
    QPushButton* finishButton;
    QPushButton* cancelButton;
    QPushButton* helpButton;
    QShortcut *backKey, *nextKey;
    QWidget* navigation; // the buttons that change the page
    ProgressRow* progressRow;
    LongWork* work = nullptr;       // the current one; null if none
    RemainingTime remainingTime;    // of `work`
    QElapsedTimer sinceWork;        // time since the last work that took long
    std::vector<WizardPage*> pages; // by sheet index, as the widgets of `stack`
    UINT startPage;
    bool started = false; // the first page is or was shown
};
