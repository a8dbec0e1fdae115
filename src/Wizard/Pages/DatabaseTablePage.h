#pragma once

#include "Wizard/Pages/QELPage.h"

#include <array>
#include <vector>

class ListView;

/// Chooses tables of the wizard's database and imports them.
class DatabaseTablePage : public QELPage
{
public:
    DatabaseTablePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override { return IDD_DATA_SOURCE; }

private:
    void listTables();

    ListView* tableList = nullptr;
    std::vector<std::array<CString, 5>> tables; // the rows of the list
};
