#include "Wizard/Pages/CreateResultPage.h"

#include "Resources/StringTable.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Wizard/Run/WizardRun.h"
#include "Wizard/Windows/SaveFile.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// Returns whether a line is about a type that was not created, or gives the reason. A skipped type is the user's own
// choice.
bool isFailure(ResultKind kind)
{
    return kind == ResultKind::failed || kind == ResultKind::reason || kind == ResultKind::cancelled;
}

} // namespace

CreateResultPage::CreateResultPage() : QELPage(IDD_CREATE_RESULT, "Typeforge - Creation result", 0, 0) {}

void CreateResultPage::OnInitDialog()
{
    QELPage::OnInitDialog();
    resultBox = withId(IDC_RESULTS, new QListWidget);
    // Copy takes all shown lines, so none need be selected.
    resultBox->setSelectionMode(QAbstractItemView::NoSelection);
    resultBox->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    resultBox->setUniformItemSizes(true); // measures only visible lines of many thousand
    resultBox->setAccessibleName("Result of type creation");
    resultBox->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored); // in a small window it shrinks
    resultBox->setMinimumHeight(resultBox->minimumSizeHint().height());
    auto* group = new QGroupBox("Result of type creation");
    (new QVBoxLayout(group))->addWidget(resultBox);
    auto* column = new QVBoxLayout(this);
    column->addWidget(group, 1);
    column->addLayout(makeButtons());
}

QHBoxLayout* CreateResultPage::makeButtons()
{
    totals = withId(IDC_TOTALS, plainLabel());
    totals->setWordWrap(true); // a wide text would push the buttons out of view
    failuresOnly = withId(IDC_FAILURES_ONLY, new QCheckBox("Failures &only"));
    auto* copyButton = withId(IDC_COPY, new QPushButton("Co&py"));
    auto* saveButton = withId(IDC_SAVE, new QPushButton("&Save ..."));
    connect(failuresOnly, &QCheckBox::toggled, this, &CreateResultPage::showFailuresOnly);
    connect(copyButton, &QPushButton::clicked, this, &CreateResultPage::copy);
    connect(saveButton, &QPushButton::clicked, this, &CreateResultPage::save);
    auto* row = new QHBoxLayout;
    row->addWidget(totals, 1);
    for (QWidget* control : std::initializer_list<QWidget*>{failuresOnly, copyButton, saveButton})
        row->addWidget(control);
    return row;
}

// A new run shows all of its lines.
void CreateResultPage::OnSetActive()
{
    {
        const QSignalBlocker quiet(failuresOnly); // the list is filled below
        failuresOnly->setChecked(false);
    }
    wizard->options.fillResultList(*resultBox);
    const std::vector<ResultKind>& kinds = wizard->options.queryResultKinds();
    totals->setText(wizard->options.resultTotals());
    failuresOnly->setEnabled(std::any_of(kinds.begin(), kinds.end(), isFailure));
}

// Fills the list again, because hiding each of many thousand rows takes longer. The box shows all lines before, so a
// line's index is its row.
void CreateResultPage::showFailuresOnly(bool only)
{
    if (!only)
        return wizard->options.fillResultList(*resultBox);
    const std::vector<ResultKind>& kinds = wizard->options.queryResultKinds();
    QStringList failures;
    for (std::size_t i = 0; i < kinds.size(); ++i)
        if (isFailure(kinds[i]))
            failures.append(resultBox->item(static_cast<int>(i))->text());
    resultBox->clear();
    resultBox->addItems(failures);
}

CString CreateResultPage::shownLines() const
{
    CString lines;
    for (int row = 0; row < resultBox->count(); ++row)
        lines += fromUi(resultBox->item(row)->text()) + '\n';
    return lines;
}

void CreateResultPage::copy()
{
    QGuiApplication::clipboard()->setText(toUi(shownLines()));
}

void CreateResultPage::save()
{
    saveUnderChosenName(*this, "Save the results", {{loadText(IDS_FILTER_ALL_FILES), loadText(IDS_PATTERN_ALL_FILES)}},
                        "results.txt", [this](const CString&) { return shownLines(); });
}
