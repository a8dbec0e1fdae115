#include "Wizard/Pages/DatabaseTablePage.h"

#include "Import/Tables/ODBCMsg.h"
#include "Resources/StringTable.h"
#include "Ui/Announce.h"
#include "Ui/ListFilter.h"
#include "Ui/ListView.h"
#include "Ui/PlainText.h"
#include "Ui/WaitCursor.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

DatabaseTablePage::DatabaseTablePage() :
    QELPage(IDD_DATABASE_TABLE, "Typeforge - Select table(s)", IDS_TABLE_TITLE, IDS_TABLE_SUBTITLE)
{}

void DatabaseTablePage::OnInitDialog()
{
    QELPage::OnInitDialog();
    tableList = withId(IDC_TABLES, new ListView({{loadText(IDS_COLUMN_NAME), 35},
                                                 {loadText(IDS_COLUMN_TYPE), 10},
                                                 {loadText(IDS_COLUMN_QUALIFIER), 20},
                                                 {loadText(IDS_COLUMN_OWNER), 15},
                                                 {loadText(IDS_COLUMN_REMARKS), 20}},
                                                "Available tables"));
    tableList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    connect(tableList, &ListView::doubleClicked, sheet(), &WizardSheet::goNext);
    auto* group = new QGroupBox("Available &tables");
    group->setFocusProxy(tableList); // target of the group's mnemonic
    auto* rows = new QVBoxLayout(group);
    rows->addWidget(tableList);
    rows->insertWidget(0, new ListFilter(*tableList, "table")); // above the list, but after it in Tab order
    rows->addLayout(makeSelectionRow());
    (new QVBoxLayout(this))->addWidget(group);
}

QHBoxLayout* DatabaseTablePage::makeSelectionRow()
{
    selectedCount = withId(IDC_SELECTED_COUNT, plainLabel());
    selectedCount->setWordWrap(true); // a long text would widen the window
    selectedOnly = withId(IDC_SELECTED_ONLY, new QCheckBox("Show &only these"));
    connect(tableList, &ListView::selectedRowsChanged, this, &DatabaseTablePage::showSelection);
    connect(selectedOnly, &QCheckBox::toggled, tableList, &ListView::setSelectedOnly);
    auto* row = new QHBoxLayout;
    row->addWidget(selectedCount, 1);
    row->addWidget(selectedOnly);
    return row;
}

// The check box stays enabled while it is checked, so that a selection that became empty can be left.
void DatabaseTablePage::showSelection()
{
    const QLocale locale;
    const std::size_t count = tableList->selectedRows().size();
    selectedCount->setText(
        tr("%1 of %2 selected").arg(locale.toString(qulonglong(count)), locale.toString(tableList->queryCount())));
    selectedOnly->setEnabled(count != 0 || selectedOnly->isChecked());
}

// The tables are read each time, because another data source may have been opened. Both lists are emptied first,
// because reading them can fail.
void DatabaseTablePage::OnSetActive()
{
    selectedOnly->setChecked(false);
    tableList->setRows(0, {});
    tables.clear();
    listTables(); // may throw, and then leaves the list empty
    tableList->setRows(static_cast<int>(tables.size()), [this](std::size_t row, int column) {
        const auto& [name, type, remarks] = tables[row];
        const CString* const texts[] = {&name.name, &type, &name.qualifier, &name.owner, &remarks};
        return *texts[column];
    });
}

// Fills `tables` in the work's thread. The list on the page is empty meanwhile, so it doesn't read them.
void DatabaseTablePage::listTables()
{
    const WaitCursor wait;
    bool isOpen = false;
    wizard->readDatabase([&] {
        CTables found(wizard->database.get());
        isOpen = found.Open(nullptr, nullptr, nullptr, "'TABLE'", CRecordset::snapshot) != 0;
        for (found.MoveFirst(); !found.IsEOF(); found.MoveNext())
            tables.push_back({found.queryName(), found.tableType, found.remarks});
    });
    if (isOpen)
        return;
    const PlainCursor plain;
    stay(IDS_NO_DATABASE);
}

// An earlier failure may have closed the connection, which is then opened again. The importer gets the names as lines,
// and the tables that they stand for, because several tables can have one name.
LRESULT DatabaseTablePage::OnWizardNext()
{
    const std::vector<int> selected = tableList->selectedRows();
    if (selected.empty()) {
        announce(*selectedCount, tr("None selected. Select at least one table to continue."));
        return stay(IDS_SELECT_TABLE);
    }
    if (!wizard->database->IsOpen() && !wizard->openDatabase()) // the user has given up
        return -1;
    const WaitCursor wait;
    CString names;
    std::vector<ChosenTable> chosen;
    wizard->script = {wizard->script.source, wizard->options.queryPath(), wizard->script.sourceUser};
    for (const int row : selected) {
        chosen.push_back({tables[static_cast<std::size_t>(row)].name, ChosenTable::listed});
        const ChosenTable& table = chosen.back();
        if (!trimmed(table.table.name).empty()) // or the command would import all tables if no name can be looked up
            wizard->script.tables.push_back(table.table.name);
        if (table.isNamable())
            names += table.table.name + '\n';
    }
    if (auto* importer = dynamic_cast<ODBCMessage*>(wizard->message.get()))
        importer->setChosen(std::move(chosen));
    wizard->readDatabase([&] { wizard->message->parseData(names, wizard->options.queryPath()); });
    wizard->options.setEditBack(IDD_DATABASE_TABLE);
    return IDD_EDIT;
}
