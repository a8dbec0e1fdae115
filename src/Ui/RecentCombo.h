#pragma once

#include <QComboBox>

/// A field to type into, with a list of what was entered there earlier. Nothing is completed: a name that begins like a
/// recent one is not that one. `label` is the text of the label beside it.
QComboBox* newRecentCombo(const QString& label);
