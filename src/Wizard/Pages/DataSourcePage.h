#pragma once

#include "Database/DataSources.h"
#include "Wizard/Pages/QELPage.h"

class ListView;
class QLabel;

/// Chooses a data source and opens it as the wizard's database. Sets WizardRun::database and the script's source. The
/// list is read each time the page is shown, so a data source that was set up meanwhile appears.
class DataSourcePage : public QELPage
{
public:
    DataSourcePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    /// Opens the selected data source, and asks for a logon if it needs one. Stays if it can't be opened.
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override { return IDD_SOURCE_TYPE; }

private:
    // Says what is missing to continue: a source to select, or any at all.
    void announceMissing();

    ListView* dataSourceList = nullptr;
    QLabel* hint = nullptr;          // below the list; hidden once a row is selected
    std::vector<DataSource> sources; // the rows of the list
    int selectedSource = -1;         // the row at the last click on Next, -1 before
};
