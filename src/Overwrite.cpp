#include "Overwrite.h"

#include "Platform/Ui/UiText.h"
#include "Resources/DialogIds.h"
#include "Utils/QELApp.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

OverWriteDlg::OverWriteDlg(CWnd* owner) : QDialog(owner), question(new QLabel)
{
    setObjectName(QString::number(IDD_OVERWRITE));
    setWindowTitle("Overwrite confirmation");
    setMinimumWidth(fontMetrics().averageCharWidth() * 213 / 4); // 213 dialog units
    question->setObjectName(QString::number(IDC_OVERWRITE_TEXT));
    question->setTextFormat(Qt::PlainText);
    question->setWordWrap(true);
    auto* grid = new QGridLayout(this);
    grid->addWidget(question, 0, 0, 1, 4);
    grid->setRowStretch(0, 1);
    addButton(IDC_YES, "&Yes", &OverWriteDlg::OnYes);
    addButton(IDC_YES_TO_ALL, "Yes to &all", &OverWriteDlg::OnYestoall);
    addButton(IDC_NO, "&No", &OverWriteDlg::OnNo);
    addButton(IDC_NO_TO_ALL, "No &to all", &OverWriteDlg::OnNotoall);
}

void OverWriteDlg::addButton(int id, const char* label, void (OverWriteDlg::*handler)())
{
    auto* button = new QPushButton(label);
    button->setObjectName(QString::number(id));
    button->setAutoDefault(false);
    button->setDefault(id == IDC_NO);
    connect(button, &QPushButton::clicked, this, handler);
    static_cast<QGridLayout*>(layout())->addWidget(button, 1, id - IDC_YES);
    if (id == IDC_NO)
        button->setFocus();
}

int OverWriteDlg::DoModal()
{
    question->setText(toUi(text));
    return exec();
}

void OverWriteDlg::answer(OverwriteChoice newChoice)
{
    choice = newChoice;
    accept();
}

void OverWriteDlg::keyPressEvent(QKeyEvent* event)
{
    constexpr UINT contextHelp = 1;
    if (event->key() == Qt::Key_F1)
        theApp.WinHelp(IDD_OVERWRITE, contextHelp);
    else
        QDialog::keyPressEvent(event);
}
