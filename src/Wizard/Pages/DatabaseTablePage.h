#pragma once

#include "Database/Tables.h"
#include "Wizard/Pages/QELPage.h"

#include <vector>

class ListView;
class QCheckBox;
class QHBoxLayout;
class QLabel;

/// Chooses tables of the wizard's database and imports them into WizardRun::message. Tables of several owners can have
/// one name.
class DatabaseTablePage : public QELPage
{
public:
    DatabaseTablePage();

    void OnInitDialog() override;
    void OnSetActive() override;
    /// Imports the selected tables; stays if none is selected.
    LRESULT OnWizardNext() override;
    LRESULT OnWizardBack() override { return IDD_DATA_SOURCE; }

private:
    // A table of the data source, as the catalogue lists it.
    struct Row
    {
        TableName name;
        CString type;
        CString remarks;
    };

    QHBoxLayout* makeSelectionRow();
    // Shows how many tables are selected.
    void showSelection();
    // Reads the tables of the data source. Throws CDBException and Cancelled.
    void listTables();

    ListView* tableList = nullptr;
    QLabel* selectedCount = nullptr;   // also says that a selection is missing
    QCheckBox* selectedOnly = nullptr; // hides the tables that aren't selected
    std::vector<Row> tables;           // the rows of the list
};
