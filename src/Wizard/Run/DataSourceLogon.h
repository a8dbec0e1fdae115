#pragma once

#include "Base/Text.h"

class QWidget;

/// Asks for the user and the password of a data source, because the drivers never prompt, see CDatabase::Open().
/// `reason` is the driver's text for the refused logon, and `user` its user; both may be empty. Returns true if the
/// user of the program confirms the dialog; `user` is then the one typed, and `logon` the text for CDatabase::Open(),
/// which holds the password and is to be wiped. Changes neither otherwise.
bool askForLogon(QWidget* parent, const CString& source, const CString& reason, CString& user, CString& logon);
