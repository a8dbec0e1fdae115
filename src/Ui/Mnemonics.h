#pragma once

#include <QString>

class QAbstractButton;
class QWidget;

/// The letters (lower case) that controls inside `page` answer to with Alt.
QString mnemonicsOf(const QWidget* page);

/// Sets the button's text with the first letter marked that is not in `taken`, the one that `text` marks before all
/// others, and adds it there. Without a free letter none is marked.
void setTextWithMnemonic(QAbstractButton& button, const QString& text, QString& taken);

/// Has Tab stop at the radio button that is chosen, of all that stand together inside `page`. From there on the toolkit
/// keeps to the one that the user moves to.
void leadTabToChosenButtons(const QWidget* page);

/// The control inside `page` that Tab reaches first; null when there is none.
QWidget* firstTabStop(const QWidget* page);
