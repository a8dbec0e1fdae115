#include "Ui/CopyRow.h"

#include "Ui/PlainText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

CopyRow::CopyRow(const QString& caption, const QString& button) : field(new QLineEdit)
{
    field->setObjectName("command");
    field->setReadOnly(true);
    field->setAccessibleName(caption);
    QLabel* label = plainLabel(caption);
    auto* copyButton = new QPushButton(button);
    copyButton->setObjectName("copyCommand");
    connect(copyButton, &QPushButton::clicked, this, &CopyRow::copy);
    field->installEventFilter(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label);
    row->addWidget(field, 1);
    row->addWidget(copyButton);
}

// The whole text is kept beside the field, which takes no more than 32,767 characters.
void CopyRow::setText(const QString& text)
{
    constexpr qsizetype most = 2'000; // characters shown in the field
    whole = text;
    field->setText(text.size() <= most ? text : text.left(most / 2) + " ... " + text.right(most / 2));
    field->setCursorPosition(0);
}

void CopyRow::copy() const
{
    QGuiApplication::clipboard()->setText(whole);
}

// Copying everything that the field shows copies the whole text.
bool CopyRow::eventFilter(QObject* target, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy) ||
        field->selectedText() != field->text())
        return QWidget::eventFilter(target, event);
    copy();
    return true;
}
