#include "Wizard/Pages/FinishPage.h"

#include "Resources/StringTable.h"
#include "Ui/CopyRow.h"
#include "Ui/CoverText.h"
#include "Ui/PathLabel.h"
#include "Ui/UiText.h"
#include "Ui/Viewer.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Run/WizardRun.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include <filesystem>

FinishPage::FinishPage() : QELPage(IDD_FINISH, "Typeforge - Finish") {}

// Texts take the height that they need; the free room is below them.
void FinishPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    QLabel* text = withId(IDC_FINISHED, coverText(loadText(IDS_FINISHED), wizard->titleFont));
    QSizePolicy fitsContent(QSizePolicy::Ignored, QSizePolicy::Fixed);
    fitsContent.setHeightForWidth(true);
    text->setSizePolicy(fitsContent);
    done = withId(IDC_DONE, new PathLabel);
    done->setSizePolicy(fitsContent);
    done->setForegroundRole(QPalette::Text); // the page's background is Base, not Window
    openFolder = withId(IDC_OPEN_FOLDER, new QPushButton("&Open folder"));
    viewFile = withId(IDC_VIEW_FILE, new QPushButton("&View file"));
    connect(openFolder, &QPushButton::clicked, this,
            [this] { view(std::filesystem::path(wizard->script.output).parent_path().string()); });
    connect(viewFile, &QPushButton::clicked, this, [this] { view(wizard->script.output); });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(openFolder);
    buttons->addWidget(viewFile);
    buttons->addStretch();
    auto* column = new QVBoxLayout(this);
    column->addWidget(text);
    column->addSpacing(fontMetrics().height() / 2);
    column->addWidget(done);
    column->addLayout(buttons);
    column->addStretch();
    command = new CopyRow("In a script:", "Co&py");
    column->addWidget(command);
}

void FinishPage::OnSetActive()
{
    done->setText(summary());
    for (QPushButton* button : {openFolder, viewFile})
        button->setVisible(!wizard->script.output.empty());
    command->setText(toUi(wizard->script.text(*wizard->message)));
    sheet()->SetWizardButtons(WizardSheet::buttonBack | WizardSheet::buttonNext | WizardSheet::buttonFinish);
}

// Returns the result in words: the totals of the creation, or the file with its size.
QString FinishPage::summary() const
{
    const ScriptCommand& script = wizard->script;
    if (script.output.empty())
        return tr("On the broker %1: %2.").arg(toUi(script.address), wizard->options.resultTotals());
    const qint64 size = QFileInfo(toUi(script.output)).size();
    return tr("%1 written to %2 (%3).")
        .arg(shownCount(wizard->message->beginEnum(), tr("type was"), tr("types were")), toUi(script.output),
             QLocale().formattedDataSize(size, 1, QLocale::DataSizeSIFormat));
}

// Shows a file or folder in the user's program. It may not exist any more, because the page can stay open for long.
void FinishPage::view(const CString& name)
{
    if (!QFileInfo::exists(toUi(name))) {
        stay(name + " no longer exists.");
        return;
    }
    showInViewer(name, this, [name] { stay("No program could be started to show " + name); });
}

BOOL FinishPage::OnWizardFinish()
{
    wizard->options.flushValues();
    return 1;
}
