#pragma once

#include "Database/DataSources.h"
#include "Database/Odbc.h"
#include "Wizard/Pages/QELPage.h"

class ListView;
class QLabel;

/// Chooses a data source and opens it as the wizard's database.
class DataSourcePage : public QELPage
{
public:
    DataSourcePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

private:
    ListView* dataSourceList = nullptr;
    QLabel* hint = nullptr;
    std::vector<DataSource> sources; // the rows of the list
    int selectedSource = -1;         // the row at the last click on Next, -1 before
};
