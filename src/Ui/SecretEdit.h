#pragma once

#include "Base/Secret.h"

class QLineEdit;

/// Makes a field a password field: its text is not shown, suggested or remembered.
void makeSecret(QLineEdit& field);

/// Moves the field's text into `secret`. The field is empty afterwards, and its old text is wiped.
void takeSecret(QLineEdit& field, CString& secret);
