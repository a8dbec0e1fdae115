#include "Wizard/Run/DataSourceLogon.h"

#include "Base/Secret.h"
#include "Database/ConnectString.h"
#include "Database/Odbc.h"
#include "Resources/DialogIds.h"
#include "Ui/PlainText.h"
#include "Ui/SecretEdit.h"
#include "Ui/UiText.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

DataSourceLogon::DataSourceLogon(QWidget* parent, const CString& source, const CString& reason, const CString& user) :
    QDialog(parent), userEdit(new QLineEdit(toUi(user))), passwordEdit(new QLineEdit)
{
    // Before the first letter of a password is typed.
    keepOutOfCores();
    setObjectName("DataSourceLogon");
    setWindowTitle(plainTitle("Log on to " + toUi(source)));
    userEdit->setObjectName(QString::number(IDC_SOURCE_USER));
    passwordEdit->setObjectName(QString::number(IDC_SOURCE_PASSWORD));
    passwordEdit->setEchoMode(QLineEdit::Password);
    QLabel* text = plainLabel(toUi(reason));
    text->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* form = new QFormLayout(this);
    form->addRow(text);
    form->addRow("&User:", userEdit);
    form->addRow("&Password:", passwordEdit);
    form->addRow(buttons);
    setMinimumWidth(fontMetrics().averageCharWidth() * 60);
    // Only the password has to be typed then.
    if (!user.empty())
        passwordEdit->setFocus();
}

// Takes the password out of its field also if the user cancels, so that it is wiped.
bool DataSourceLogon::ask(CString& user, CString& logon)
{
    const bool confirmed = exec() == Accepted;
    Secret password;
    takeSecret(*passwordEdit, password.text);
    if (!confirmed)
        return false;
    wipe(logon);
    user = fromUi(userEdit->text());
    logon = logonText(user, password.text);
    return true;
}
