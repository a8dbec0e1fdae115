#pragma once

#include "Database/DataSources.h"
#include "Database/Odbc.h"
#include "Wizard/Pages/QELPage.h"

class ListView;

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
    std::vector<DataSource> sources; // the rows of the list
    int selectedSource = -1;         // the row when Next was last pressed
};
