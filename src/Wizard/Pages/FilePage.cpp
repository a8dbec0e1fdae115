#include "Wizard/Pages/FilePage.h"

#include "Ui/ComboBox.h"
#include "Ui/DraggedFiles.h"
#include "Ui/PathCompleter.h"
#include "Ui/PathLabel.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"
#include "Ui/WizardSheet.h"

#include <QDropEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>

#include <algorithm>

namespace {

// Returns a hidden frame, to be put over a field. It lets clicks through. A style sheet can't draw it on an editable
// combo box.
QFrame* newRedFrame()
{
    auto* frame = new QFrame;
    frame->setObjectName("redFrame");
    frame->setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
    frame->setLineWidth(2);
    frame->setAttribute(Qt::WA_TransparentForMouseEvents);
    frame->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    QPalette red = frame->palette();
    red.setColor(QPalette::WindowText, QColor(211, 47, 47));
    frame->setPalette(red);
    frame->hide();
    return frame;
}

} // namespace

// Frame and field share a cell of the grid. Dropped files are for the page, not for the field.
void FilePage::OnInitDialog()
{
    QELPage::OnInitDialog();
    fileCombo = withId(comboId(), newRecentCombo("File:"));
    fileCombo->lineEdit()->setCompleter(new PathCompleter(*fileCombo->lineEdit()));
    fileCombo->lineEdit()->setAcceptDrops(false);
    redFrame = newRedFrame();
    connect(fileCombo, &QComboBox::editTextChanged, this, &FilePage::removeFrame);
    fileCombo->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    QLabel* label = plainLabel("File:");
    label->setBuddy(fileCombo);
    auto* browse = withId(IDC_BROWSE, new QPushButton("B&rowse"));
    connect(browse, &QPushButton::clicked, this, &FilePage::OnPickfile);
    folderLabel = withId(IDC_FOLDER, new PathLabel);

    auto* grid = new QGridLayout(this);
    grid->addWidget(label, 0, 0);
    grid->addWidget(fileCombo, 0, 1);
    grid->addWidget(redFrame, 0, 1);
    grid->addWidget(browse, 0, 2);
    grid->addWidget(folderLabel, 1, 1, 1, 2);
    grid->setColumnStretch(1, 1);
    setAcceptDrops(true);
}

// The grid has three columns: label, field and button.
void FilePage::addRow(QWidget* row, bool isTall, int column)
{
    auto* grid = static_cast<QGridLayout*>(layout());
    grid->addWidget(row, rows, column, 1, 3 - column);
    grid->setRowStretch(rows, isTall ? 1 : 0);
    ++rows;
}

// The box names the error; the frame shows the field after the box is closed.
LRESULT FilePage::stayAtFile(const CString& text, const CString& details)
{
    redFrame->show();
    fileCombo->setFocus();
    return stay(text, details);
}

void FilePage::OnSetActive()
{
    removeFrame();
    folderText = wizard->setCurrentFolder(whichFolder());
    folderLabel->setText(toUi(folderText));
}

// Another text in the field hides the red frame, as typing does.
void FilePage::UpdateData(bool save)
{
    if (save) {
        fileName = fromUi(fileCombo->currentText());
        return;
    }
    fileCombo->setEditText(toUi(fileName));
    folderLabel->setText(toUi(folderText));
}

// After a cancelled dialog the typed name is taken, because its folder may be new.
void FilePage::OnPickfile()
{
    UpdateData(true);
    const CString chosen = chooseFile();
    takeFile(chosen.empty() ? fileName : chosen);
    fileCombo->setFocus(); // Return then continues instead of browsing again
}

// Sets the folder from the file name, if that has a path. The field keeps the path. A file in the root has the folder
// "/".
void FilePage::takeFile(const CString& chosen)
{
    fileName = chosen;
    const CString named = namedFile();
    if (const std::size_t slash = named.rfind('/'); slash != CString::npos) {
        const CString folder = named.substr(0, std::max<std::size_t>(slash, 1));
        if (whichFolder() == WizardRun::folderInput)
            wizard->options.setInputFolder(folder);
        else
            wizard->options.setOutputFolder(folder);
        folderText = wizard->setCurrentFolder(whichFolder());
    }
    UpdateData(false);
}

void FilePage::dragEnterEvent(QDragEnterEvent* event)
{
    if (!draggedFiles(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void FilePage::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    OnDrop(draggedFiles(*event->mimeData()));
}
