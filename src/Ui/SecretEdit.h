#pragma once

#include "Base/Secret.h"

class QLineEdit;

/// Makes the field one for a password: nothing of it is shown, suggested or remembered.
void makeSecret(QLineEdit& field);

/// Moves what is typed in the field into `secret`. The field is empty afterwards, and the text that it held is wiped.
void takeSecret(QLineEdit& field, CString& secret);
