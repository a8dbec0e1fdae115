#pragma once

#include "Base/Text.h"

#include <QDialog>

class QLineEdit;

/// Asks for the user and the password that a data source wants.
class DataSourceLogon : public QDialog
{
public:
    /// `reason` is the driver's text for the logon that was refused, `user` the one that it was refused to, if any.
    DataSourceLogon(QWidget* parent, const CString& source, const CString& reason, const CString& user);

    /// Shows the dialog. True when the user has confirmed it; `user` is then the one that was typed, and `logon` what
    /// CDatabase::Open() takes, with the password.
    bool ask(CString& user, CString& logon);

private:
    QLineEdit* userEdit;
    QLineEdit* passwordEdit;
};
