#pragma once

#include <QString>

class QAbstractButton;
class QWidget;

/// Returns the letters, in lower case, that activate controls inside `page` with Alt. Includes those of hidden
/// controls, which may be shown later.
QString mnemonicsOf(const QWidget* page);

/// Sets the button's text and marks a mnemonic that is not in `taken`: the one that `text` marks if it is free, else
/// the first free letter. Adds it to `taken`. Marks none if no letter is free.
void setTextWithMnemonic(QAbstractButton& button, const QString& text, QString& taken);

/// Makes Tab stop at the checked radio button of each group inside `page`. When the user checks another one, Qt moves
/// the stop. A group consists of the radio buttons of one parent.
void setRadioTabStops(const QWidget* page);

/// Returns the first control inside `page` in Tab order; null if there is none. Hidden and disabled controls are left
/// out.
QWidget* firstTabStop(const QWidget* page);
