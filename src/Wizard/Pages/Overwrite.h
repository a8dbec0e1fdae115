#pragma once

#include "Broker/CreationRun.h"
#include "Ui/WizardSheet.h"

#include <QDialog>

/// Asks whether a type that exists is to be replaced.
class OverWriteDlg : public QDialog
{
public:
    explicit OverWriteDlg(CWnd* owner);

    /// Shows `text` and returns when the dialog has closed, with the OK result when it was by a button.
    int DoModal();

    void OnYes() { answer(OverwriteChoice::yes); }
    void OnYestoall() { answer(OverwriteChoice::yesToAll); }
    void OnNo() { answer(OverwriteChoice::no); }
    void OnNotoall() { answer(OverwriteChoice::noToAll); }
    void OnStop() { answer(OverwriteChoice::stop); }

    OverwriteChoice choice = OverwriteChoice::no;
    CString text;    ///< the question
    CString details; ///< shown below it; "": there are none

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addButton(int id, const char* label, void (OverWriteDlg::*handler)());
    void answer(OverwriteChoice newChoice);
};
