#include "Wizard/Pages/DataSourcePage.h"

#include "Resources/StringTable.h"
#include "Ui/Announce.h"
#include "Ui/ListView.h"
#include "Ui/PlainText.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

DataSourcePage::DataSourcePage() :
    QELPage(IDD_DATA_SOURCE, "Typeforge - Select data source", IDS_DATASOURCE_TITLE, IDS_DATASOURCE_SUBTITLE)
{}

void DataSourcePage::OnInitDialog()
{
    QELPage::OnInitDialog();
    dataSourceList =
        withId(IDC_DATA_SOURCES, new ListView({{loadText(IDS_COLUMN_NAME), 35}, {loadText(IDS_COLUMN_DESCRIPTION), 60}},
                                              "Available data sources"));
    connect(dataSourceList, &ListView::doubleClicked, sheet(), &WizardSheet::goNext);
    auto* group = new QGroupBox("Available &datasources");
    group->setFocusProxy(dataSourceList); // the group's letter leads there
    hint = withId(IDC_HINT, plainLabel());
    hint->setWordWrap(true);
    connect(dataSourceList, &ListView::selectedRowsChanged, hint, &QLabel::hide);
    auto* rows = new QVBoxLayout(group);
    rows->addWidget(dataSourceList);
    rows->addWidget(hint);
    (new QVBoxLayout(this))->addWidget(group);
}

// A row that was selected before is selected again, by its index.
void DataSourcePage::OnSetActive()
{
    sources.clear();
    if (!listDataSources(sources))
        stay(IDS_NO_SQL_ENVIRONMENT);
    dataSourceList->setRows(static_cast<int>(sources.size()), [this](std::size_t row, int column) {
        return column == 0 ? sources[row].name : sources[row].description;
    });
    if (selectedSource != -1)
        dataSourceList->selectRow(selectedSource);
    if (sources.empty())
        announceMissing();
}

void DataSourcePage::announceMissing()
{
    announce(*hint, sources.empty() ? tr("There are no data sources on this computer. Help explains how to set one up.")
                                    : tr("Select a data source to continue."));
}

// Passes the name on as it is listed. Starts the script anew, with the data source as the source.
LRESULT DataSourcePage::OnWizardNext()
{
    const int row = dataSourceList->selectedRow();
    if (row < 0) {
        announceMissing();
        return -1;
    }
    selectedSource = row;
    wizard->script = {dataSourceList->cell(row, 0)};
    return wizard->openDatabase() ? IDD_DATABASE_TABLE : -1;
}
