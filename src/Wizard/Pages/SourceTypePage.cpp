#include "Wizard/Pages/SourceTypePage.h"

#include "Resources/StringTable.h"
#include "Ui/ListView.h"
#include "Ui/UiText.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

#include <QApplication>
#include <QGroupBox>
#include <QLineEdit>
#include <QVBoxLayout>

SourceTypePage::SourceTypePage() :
    QELPage(IDD_SOURCE_TYPE, "Typeforge - Select source type", IDS_SOURCE_TYPE_TITLE, IDS_SOURCE_TYPE_SUBTITLE)
{}

void SourceTypePage::OnInitDialog()
{
    QELPage::OnInitDialog();
    importerList =
        withId(IDC_IMPORTERS,
               new ListView({{loadText(IDS_COLUMN_NAME), 30}, {loadText(IDS_COLUMN_DESCRIPTION), 65}}, "Importers"));
    int importers = 0;
    while (g_amud[importers] != nullptr)
        ++importers;
    importerList->setRows(importers, [](int row, int column) {
        return column == 0 ? g_amud[row]->getName() : g_amud[row]->getDescription();
    });
    connect(importerList, &ListView::chosen, this, &SourceTypePage::OnClickSource);
    connect(importerList, &ListView::doubleClicked, this, &SourceTypePage::OnDblclkSource);
    auto* column = new QVBoxLayout(this);
    column->addWidget(importerList, 1);
    column->addWidget(makePathGroup());
}

QWidget* SourceTypePage::makePathGroup()
{
    auto* group = new QGroupBox("&Path for objects");
    pathEdit = withId(IDC_OBJECT_PATH, new QLineEdit);
    pathEdit->setAcceptDrops(false); // dropped files are for the page
    pathEdit->setAccessibleName("Path for objects");
    (new QVBoxLayout(group))->addWidget(pathEdit);
    return group;
}

// The previous importer is freed with its types, because the page begins another import.
void SourceTypePage::OnSetActive()
{
    wizard->message.reset();
    importerList->selectRow(wizard->options.queryLastImporterSel());
    OnClickSource();
}

// Called for each change of the selection, and for a click on the selected row. A path that differs from the one shown
// was typed; it is kept for a moment, in case this is the first click of a double click.
void SourceTypePage::OnClickSource()
{
    wizard->message.reset();
    const int row = importerList->selectedRow();
    if (fromUi(pathEdit->text()) != objectPath) {
        typedPath = pathEdit->text();
        sinceTyped.start();
    }
    if (row < 0)
        return;
    wizard->options.setLastImporterSel(row);
    wizard->message.reset(g_amud[row]->create());
    objectPath = wizard->message->getBasePath();
    pathEdit->setText(toUi(objectPath));
}

// Restores a typed path, because the first of the two clicks has replaced it by the importer's.
void SourceTypePage::OnDblclkSource()
{
    const bool isReplaced = fromUi(pathEdit->text()) == objectPath;
    if (isReplaced && sinceTyped.isValid() && !sinceTyped.hasExpired(QApplication::doubleClickInterval()))
        pathEdit->setText(typedPath);
    sheet()->goNext();
}

// The confirmed path always ends with a backslash, as importers expect.
LRESULT SourceTypePage::OnWizardNext()
{
    objectPath = fromUi(pathEdit->text());
    if (wizard->message == nullptr)
        return stay(IDS_SELECT_IMPORTER);
    if (objectPath.empty() || objectPath.back() != '\\')
        objectPath += '\\';
    wizard->options.setPath(objectPath);
    return wizard->message->queryNextPage();
}
