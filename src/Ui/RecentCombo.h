#pragma once

#include <QComboBox>

/// Returns an editable combo box with recent entries. It does not complete typed text, because a new name may begin
/// like a recent one. `label` is the text of the label beside it.
QComboBox* newRecentCombo(const QString& label);
