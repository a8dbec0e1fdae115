#pragma once

#include "Base/Text.h"

#include <QWidget>

class WizardSheet;

/// One page of a WizardSheet. Its object name is its dialog id.
class WizardPage : public QWidget
{
    Q_OBJECT

public:
    enum class Look
    {
        interior, ///< below the header band, which shows the page's title and subtitle
        cover     ///< without a band, on the watermark
    };

    WizardPage(int dialogId, Look look, const CString& caption, const CString& title, const CString& subtitle);

    int queryDialogId() const { return dialogId; }
    Look queryLook() const { return look; }
    const QString& queryCaption() const { return caption; }
    const QString& queryTitle() const { return title; }
    const QString& querySubtitle() const { return subtitle; }

    /// Called once, before the page is shown for the first time: makes the controls.
    virtual void OnInitDialog() {}

    /// Called each time the page is shown: fills the controls, sets the buttons.
    virtual void OnSetActive() {}

    /// The dialog id of the page to show next, 0 for the neighbouring page, -1 to stay.
    virtual LRESULT OnWizardNext() { return 0; }

    /// The same for the way back.
    virtual LRESULT OnWizardBack() { return 0; }

    /// Nonzero closes the sheet with the OK result.
    virtual BOOL OnWizardFinish() { return 1; }

    /// The sheet that the page has been added to.
    WizardSheet* sheet() const { return owner; }

protected:
    void paintEvent(QPaintEvent* event) override;

    /// Gives a control its numeric id.
    template <class Control>
    static Control* withId(int id, Control* control)
    {
        control->setObjectName(QString::number(id));
        return control;
    }

private:
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
