#pragma once

#include "Platform/Text.h"

#include <QDialog>

class QLineEdit;

/// Asks for the user and the password that a data source wants.
class DataSourceLogon : public QDialog
{
public:
    /// `reason` is the driver's text for the logon that was refused.
    DataSourceLogon(QWidget* parent, const CString& source, const CString& reason);

    /// Shows the dialog. True when the user has confirmed it; `logon` is then what CDatabase::Open() takes, and holds
    /// the password.
    bool ask(CString& logon);

private:
    QLineEdit* userEdit;
    QLineEdit* passwordEdit;
};
