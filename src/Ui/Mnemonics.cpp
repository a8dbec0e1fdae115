#include "Ui/Mnemonics.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QRadioButton>

namespace {

// Returns the letter of a mnemonic in lower case, a null character if there is none.
QChar mnemonicOf(const QString& text)
{
    const QKeySequence keys = QKeySequence::mnemonic(text);
    return keys.isEmpty() ? QChar() : QChar(static_cast<char16_t>(keys[0].key())).toLower();
}

// Returns the text of a control that can have a mnemonic, else an empty one. A label has one only for its buddy.
QString labelOf(const QWidget* control)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(control))
        return button->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(control))
        return group->title();
    if (const auto* label = qobject_cast<const QLabel*>(control); label != nullptr && label->buddy() != nullptr)
        return label->text();
    return {};
}

} // namespace

QString mnemonicsOf(const QWidget* page)
{
    QString letters;
    for (const QWidget* control : page->findChildren<QWidget*>())
        if (const QChar letter = mnemonicOf(labelOf(control)); !letter.isNull())
            letters += letter;
    return letters;
}

// Goes through the letters of the text in order, the marked one first.
void setTextWithMnemonic(QAbstractButton& button, const QString& text, QString& taken)
{
    QString plain = text;
    plain.remove('&');
    for (const QChar& letter : mnemonicOf(text) + plain) {
        if (!letter.isLetter() || taken.contains(letter, Qt::CaseInsensitive))
            continue;
        taken += letter;
        button.setText(plain.insert(plain.indexOf(letter, 0, Qt::CaseInsensitive), '&'));
        return;
    }
    button.setText(plain);
}

void setRadioTabStops(const QWidget* page)
{
    for (const auto* chosen : page->findChildren<QRadioButton*>())
        if (chosen->isChecked())
            for (auto* button : chosen->parent()->findChildren<QRadioButton*>(Qt::FindDirectChildrenOnly))
                button->setFocusPolicy(button == chosen ? Qt::StrongFocus : Qt::ClickFocus);
}

// The focus chain is a circle through the whole window. It passes the page itself, so the loop ends.
QWidget* firstTabStop(const QWidget* page)
{
    for (QWidget* control = page->nextInFocusChain(); control != page; control = control->nextInFocusChain())
        if (page->isAncestorOf(control) && (control->focusPolicy() & Qt::TabFocus) && control->isEnabled() &&
            control->isVisibleTo(page))
            return control;
    return nullptr;
}
