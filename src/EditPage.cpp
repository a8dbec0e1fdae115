#include "EditPage.h"

#include "KindMark.h"
#include "Platform/Ui/ListFilter.h"
#include "Platform/Ui/ListView.h"
#include "Platform/Ui/Viewer.h"
#include "QELWizard.h"
#include "Resources/StringTable.h"
#include "Utils/QELApp.h"

#include <QHideEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include <cstdlib>

namespace {

CString temporaryFolder()
{
    for (const char* variable : {"TMP", "TEMP"})
        if (const char* folder = std::getenv(variable); folder != nullptr && *folder != '\0')
            return folder;
    return ".";
}

} // namespace

EditPage::EditPage() : QELPage(IDD_EDIT, "Typeforge - Generated types", IDS_EDIT_TITLE, IDS_EDIT_SUBTITLE) {}

void EditPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    typeList = withId(IDC_TYPES, new ListView({{loadText(IDS_COLUMN_NAME), 30}, {loadText(IDS_COLUMN_DESCRIPTION), 65}},
                                              "Generated types"));
    connect(typeList, &ListView::doubleClicked, this, &EditPage::OnDblclkEdit);
    auto* view = withId(IDC_VIEW, new QPushButton("&View ..."));
    connect(view, &QPushButton::clicked, this, &EditPage::OnEdit);
    auto* column = new QVBoxLayout(this);
    column->addWidget(typeList, 1);
    column->insertWidget(0, new ListFilter(*typeList, "types")); // above, but behind the list for Tab
    column->addWidget(view, 0, Qt::AlignRight);
}

void EditPage::OnSetActive()
{
    types.clear();
    types.reserve(static_cast<std::size_t>(wizard->message->beginEnum()));
    while (Element* element = wizard->message->enumNext())
        types.push_back(element);
    typeList->setRows(
        static_cast<int>(types.size()),
        [this](int row, int column) {
            const Element* element = types[static_cast<std::size_t>(row)];
            return column == 0 ? element->queryName() : element->queryDescription();
        },
        [this](int row) -> const ListRows::Mark& {
            return kindMark(types[static_cast<std::size_t>(row)]->queryType());
        });
}

LRESULT EditPage::OnWizardBack()
{
    return wizard->options.queryEditBack();
}

// The next import frees the elements while the page is out of sight.
void EditPage::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous())
        typeList->setRows(0, {});
}

void EditPage::OnEdit()
{
    const int row = typeList->selectedRow();
    if (row < 0) {
        stay(IDS_SELECT_TYPE);
        return;
    }
    CString document;
    types[static_cast<std::size_t>(row)]->asXML(document);
    CString fileName;
    const FileCause cause = tempFiles.add(temporaryFolder(), document, fileName);
    if (cause == FileCause::none)
        showInViewer(fileName);
    else
        stay(formatText(loadText(IDS_CANT_OPEN), fileName.c_str(), static_cast<unsigned>(cause)));
}

void EditPage::OnDblclkEdit()
{
    OnEdit();
}
