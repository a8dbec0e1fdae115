#include "Wizard/Pages/Overwrite.h"

#include "Base/QELApp.h"
#include "Resources/DialogIds.h"
#include "Ui/MessageTexts.h"
#include "Ui/PlainText.h"
#include "Ui/UiText.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>

#include <algorithm>

OverWriteDlg::OverWriteDlg(CWnd* owner) : QDialog(owner)
{
    setObjectName(QString::number(IDD_OVERWRITE));
    setWindowTitle(plainTitle("Overwrite confirmation"));
    setWindowModality(Qt::WindowModal); // exec() would block the help, too
    auto* grid = new QGridLayout(this);
    grid->setRowStretch(0, 1);
    addButton(IDC_YES, "&Yes", &OverWriteDlg::OnYes);
    addButton(IDC_YES_TO_ALL, "Yes to &all", &OverWriteDlg::OnYestoall);
    addButton(IDC_NO, "&No", &OverWriteDlg::OnNo);
    addButton(IDC_NO_TO_ALL, "No &to all", &OverWriteDlg::OnNotoall);
    addButton(IDC_STOP, "&Stop", &OverWriteDlg::OnStop);
}

// Buttons stand in one row, in the order of the calls. No stays the default; otherwise a button would become the
// default when it gets the focus.
void OverWriteDlg::addButton(int id, const char* label, void (OverWriteDlg::*handler)())
{
    auto* button = new QPushButton(label);
    button->setObjectName(QString::number(id));
    button->setAutoDefault(false);
    button->setDefault(id == IDC_NO);
    connect(button, &QPushButton::clicked, this, handler);
    auto* grid = static_cast<QGridLayout*>(layout());
    grid->addWidget(button, 1, grid->count());
    if (id == IDC_NO)
        button->setFocus();
}

// The text is at least as wide as the dialog's 213 dialog units, and at most 80 letters or 80 % of the screen.
int OverWriteDlg::DoModal()
{
    auto* question =
        new MessageTexts(toUi(text), toUi(details)); // breaks a long name, and scrolls a text that is still too long
    question->setObjectName(QString::number(IDC_OVERWRITE_TEXT));
    question->setProperty("text", toUi(text)); // as that of a label, for scripts that read it
    static_cast<QGridLayout*>(layout())->addWidget(question, 0, 0, 1, -1);
    setAccessibleDescription(question->wholeText());
    const QSize room = screen()->availableSize();
    const int letter = fontMetrics().averageCharWidth(); // 4 dialog units
    question->fitInto(letter * 213 / 4, std::min(letter * 80, room.width() * 8 / 10), room.height() / 2);
    return exec();
}

void OverWriteDlg::answer(OverwriteChoice newChoice)
{
    choice = newChoice;
    accept();
}

// A button's letter presses it without Alt, too, as in message boxes. The dialog has no topic of its own, so F1 shows
// the contents of the help.
void OverWriteDlg::keyPressEvent(QKeyEvent* event)
{
    for (auto* button : findChildren<QPushButton*>())
        if (event->modifiers() == Qt::NoModifier && button->shortcut() == QKeySequence(Qt::ALT | Qt::Key(event->key())))
            return button->click();
    if (event->key() == Qt::Key_F1)
        theApp.WinHelp(IDD_OVERWRITE);
    else
        QDialog::keyPressEvent(event);
}
