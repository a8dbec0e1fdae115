#pragma once

#include "Base/Text.h"

#include <QWidget>

class WizardSheet;

/// One page of a WizardSheet. Its object name is its dialog id. OnSetActive(), OnWizardNext() and OnWizardBack() may
/// throw std::exception, which the sheet shows, and Cancelled.
class WizardPage : public QWidget
{
    Q_OBJECT

public:
    enum class Look
    {
        interior, ///< below the header band, which shows the page's title and subtitle
        cover     ///< without a band, on the watermark
    };

    /// `caption` is the window's title while the page is shown. A cover page shows neither title nor subtitle.
    WizardPage(int dialogId, Look look, const CString& caption, const CString& title, const CString& subtitle);

    /// Returns the number that handlers return for this page, and by which its help topic is found.
    int queryDialogId() const { return dialogId; }

    /// Called once, before the page is first shown. Creates the controls. The sheet is known by then, but not in the
    /// constructor.
    virtual void OnInitDialog() {}

    /// Called each time the page is shown: fills the controls. Sets the buttons if they aren't Back and Next. The page
    /// is visible by then. If it throws Cancelled, the page before is shown again.
    virtual void OnSetActive() {}

    /// Returns the dialog id of the next page, 0 for the neighbouring page, -1 to stay. Before returning -1, the page
    /// tells the user the reason.
    virtual LRESULT OnWizardNext() { return 0; }

    /// Returns the same for the previous page.
    virtual LRESULT OnWizardBack() { return 0; }

    /// Returns nonzero to close the sheet with the OK result.
    virtual BOOL OnWizardFinish() { return 1; }

    /// Returns the sheet of the page, null before AddPage().
    WizardSheet* sheet() const { return owner; }

protected:
    void paintEvent(QPaintEvent* event) override;

    /// Gives a control its numeric id and returns it. Tests find controls by it, and the widths of lists are stored
    /// under it.
    template <class Control>
    static Control* withId(int id, Control* control)
    {
        control->setObjectName(QString::number(id));
        return control;
    }

private:
    // Reads the texts and the look, and sets `owner` and `initialised`.
    friend class WizardSheet;

    bool hasRoomForPicture() const;

    int dialogId;
    Look look;
    QString caption;
    QString title;
    QString subtitle;
    WizardSheet* owner = nullptr;
    bool initialised = false;
};
