#pragma once

#include "Platform/Ui/WizardSheet.h"

#include <QDialog>

class QLabel;

/// Asks whether a type that exists is to be replaced.
class OverWriteDlg : public QDialog
{
public:
    explicit OverWriteDlg(CWnd* owner);

    /// Shows `text` and returns when the dialog has closed, with the OK result when it was by a button.
    int DoModal();

    void OnYes() { answer(0); }
    void OnYestoall() { answer(1); }
    void OnNo() { answer(2); }
    void OnNotoall() { answer(3); }

    int choice = 2; ///< 0 yes, 1 yes to all, 2 no, 3 no to all
    CString text;   ///< the question

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void addButton(int id, const char* label, void (OverWriteDlg::*handler)());
    void answer(int newChoice);

    QLabel* question;
};
