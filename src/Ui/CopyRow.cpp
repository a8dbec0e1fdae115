#include "Ui/CopyRow.h"

#include "Ui/PlainText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

CopyRow::CopyRow(const QString& caption, const QString& button) : field(new QLineEdit)
{
    field->setObjectName("command");
    field->setReadOnly(true);
    field->setAccessibleName(caption);
    QLabel* label = plainLabel(caption);
    auto* copy = new QPushButton(button);
    copy->setObjectName("copyCommand");
    connect(copy, &QPushButton::clicked, field, [this] { QGuiApplication::clipboard()->setText(field->text()); });
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label);
    row->addWidget(field, 1);
    row->addWidget(copy);
}

void CopyRow::setText(const QString& text)
{
    field->setText(text);
    field->setCursorPosition(0);
}
