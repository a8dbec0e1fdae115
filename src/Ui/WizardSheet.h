#pragma once

#include "Base/Text.h"
#include "Ui/WorkPace.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QImage>

#include <cstddef>
#include <exception>
#include <functional>
#include <vector>

class HeaderBand;
class LongWork;
class ProgressRow;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class WizardPage;

// The platform's window types, as far as signatures name them.
using CWnd = QWidget;
using HBITMAP = int;             ///< the resource number of a picture
using HPALETTE = std::nullptr_t; ///< there are none: a picture brings its own colours

/// A dialog of pages with the buttons Back, Next, Finish, Cancel and Help ("back", "next", "finish", "cancel", "help").
/// Each page says which page follows on Next and on Back. Pages are made by their owner and only shown here.
class WizardSheet : public QDialog
{
    Q_OBJECT

public:
    /// The buttons that a page may enable; Cancel and Help always are. Finish takes the place of Next.
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

    WizardSheet(const CString& caption, CWnd* parent, UINT startPage, HBITMAP watermark, HBITMAP header);

    /// Appends a page; its place is its sheet index. The page must live as long as the sheet is shown.
    void AddPage(WizardPage& page);

    /// The sheet index of the page that is shown first.
    void setStartPage(UINT index) { startPage = index; }

    /// Runs the sheet until it closes, on an event loop of its own, so that other windows stay usable.
    int DoModal();

    /// Enables exactly these buttons (of Buttons) and makes Next or Finish the default.
    void SetWizardButtons(int buttons);

    /// The page that is shown; null before the sheet is shown for the first time.
    WizardPage* activePage() const;

    /// What the buttons do. A page may call next() for a double click.
    void back();
    void next();
    void finish();

    /// Answers what `handler` does, and -1 where that raises something: Cancelled, or what is shown then.
    LRESULT ask(const std::function<LRESULT()>& handler);

    /// Does something that may take long in a thread of its own, and returns when it is done; what it raises is raised
    /// here. After a while a row in place of the buttons tells how far it has come, and Cancel ends it: Cancelled is
    /// raised then. `ownBar` is a bar of the page's that shows the same while types are created; `server` is what is
    /// waited for where an answer is, "" if nothing is.
    void runLong(const std::function<void()>& work, QProgressBar* ownBar = nullptr, const QString& server = {});

    /// Shows the first page when the sheet becomes visible.
    void setVisible(bool visible) override;

    /// 340 x 190 dialog units for the page, and what stands around it.
    QSize sizeHint() const override;

    /// The picture behind a page without a header, in the tones of the palette.
    const QImage& queryWatermark() const { return watermark; }

protected:
    void changeEvent(QEvent* event) override;

    /// A page has been shown for the first time; its controls have just been made.
    virtual void OnPageMade(WizardPage& page) = 0;

    /// Shows the page of that dialog id, whatever page is shown.
    void showPage(int dialogId) { go(dialogId, 0); }

    /// The Help button or F1 on the page `dialogId`.
    virtual void OnHelp(int dialogId) = 0;

    /// A page's handler has thrown; the sheet stays where it is.
    virtual void OnPageError(const std::exception& error) = 0;

private:
    QPushButton* addButton(const char* name, const QString& text, void (WizardSheet::*action)());
    void help();
    void cancel();
    void reject() override;
    void showProgress(const LongWork& work, QProgressBar* ownBar, const QString& server);
    void setNavigation(bool visible);
    void layOut();
    void go(LRESULT answer, int step);
    void activate(int index);
    void settleMnemonics();

    HBITMAP watermarkId;
    QImage watermark;
    HeaderBand* band;
    QStackedWidget* stack;
    QPushButton* backButton;
    QPushButton* nextButton;
    QPushButton* finishButton;
    QPushButton* cancelButton;
    QPushButton* helpButton;
    QWidget* navigation; // the buttons that lead to other pages
    ProgressRow* progressRow;
    LongWork* work = nullptr; // in hand
    WorkPace pace;            // of it
    QElapsedTimer sinceWork;  // that could be cancelled
    std::vector<WizardPage*> pages;
    UINT startPage;
    bool started = false;
};
