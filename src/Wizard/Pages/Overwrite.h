#pragma once

#include "Broker/CreationRun.h"
#include "Ui/WizardSheet.h"

#include <QDialog>

/// Asks whether to replace an existing type. Closing the dialog leaves `choice` at no, the answer that loses nothing.
class OverWriteDlg : public QDialog
{
public:
    explicit OverWriteDlg(CWnd* owner);

    /// Shows the dialog. Returns the OK result if a button closed it, with the answer in `choice`. Call it once, after
    /// setting the texts.
    int DoModal();

    /// Close the dialog with the answer of a button.
    void OnYes() { answer(OverwriteChoice::yes); }
    void OnYestoall() { answer(OverwriteChoice::yesToAll); }
    void OnNo() { answer(OverwriteChoice::no); }
    void OnNotoall() { answer(OverwriteChoice::noToAll); }
    void OnStop() { answer(OverwriteChoice::stop); }

    OverwriteChoice choice = OverwriteChoice::no;
    CString text;    ///< the question
    CString details; ///< shown below it; empty for none

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    // Adds a button to the right of the others.
    void addButton(int id, const char* label, void (OverWriteDlg::*handler)());
    void answer(OverwriteChoice newChoice);
};
