#pragma once

#include "Base/Text.h"

class QLineEdit;

/// Moves the field's text into `secret`. The field is empty afterwards, and its old text is wiped.
void takeSecret(QLineEdit& field, CString& secret);
