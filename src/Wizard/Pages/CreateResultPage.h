#pragma once

#include "Wizard/Pages/QELPage.h"

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QListWidget;

/// Shows the result lines of the last creation run, or only the failures, with totals. The shown lines can be copied
/// and saved. Lines and their kinds are in the options; a row of the box is the line of the same index unless only
/// failures are shown.
class CreateResultPage : public QELPage
{
public:
    CreateResultPage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardBack() override { return IDD_LOGIN; }
    LRESULT OnWizardNext() override { return IDD_FINISH; }

private:
    QHBoxLayout* makeButtons();
    // Fills the box with all lines, or only with those of failures and their reasons.
    void showFailuresOnly(bool only);
    // Returns the shown lines, each with a line feed at its end.
    CString shownLines() const;
    // Copy or save the shown lines, not the hidden ones.
    void copy();
    void save();

    QListWidget* resultBox = nullptr;
    QLabel* totals = nullptr;
    QCheckBox* failuresOnly = nullptr; // enabled if there are failures
};
