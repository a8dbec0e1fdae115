#pragma once

#include "Base/Text.h"

#include <QDialog>

class QLineEdit;

/// Asks for the user and the password of a data source. The drivers never prompt, see CDatabase::Open().
class DataSourceLogon : public QDialog
{
public:
    /// `reason` is the driver's text for the refused logon, `user` its user; both may be empty.
    DataSourceLogon(QWidget* parent, const CString& source, const CString& reason, const CString& user);

    /// Shows the dialog. Returns true if the user confirms it; `user` is then the one typed, and `logon` the text for
    /// CDatabase::Open(), which holds the password and is to be wiped. Changes neither otherwise. The dialog keeps no
    /// password.
    bool ask(CString& user, CString& logon);

private:
    QLineEdit* userEdit;
    QLineEdit* passwordEdit;
};
