#include "Wizard/Run/DataSourceLogon.h"

#include "Base/Secret.h"
#include "Database/ConnectString.h"
#include "Resources/DialogIds.h"
#include "Ui/PlainText.h"
#include "Ui/SecretEdit.h"
#include "Ui/UiText.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

// Takes the password out of its field also if the user cancels, so that it is wiped.
bool askForLogon(QWidget* parent, const CString& source, const CString& reason, CString& user, CString& logon)
{
    // Before the first letter of a password is typed.
    keepOutOfCores();
    QDialog dialog(parent);
    dialog.setObjectName("DataSourceLogon");
    dialog.setWindowModality(Qt::WindowModal); // leaves the help usable
    dialog.setWindowTitle(plainTitle("Log on to " + toUi(source)));
    auto* userEdit = new QLineEdit(toUi(user));
    userEdit->setObjectName(QString::number(IDC_SOURCE_USER));
    auto* passwordEdit = new QLineEdit;
    passwordEdit->setObjectName(QString::number(IDC_SOURCE_PASSWORD));
    passwordEdit->setEchoMode(QLineEdit::Password);
    QLabel* text = plainLabel(toUi(reason));
    text->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* form = new QFormLayout(&dialog);
    form->addRow(text);
    form->addRow("&User:", userEdit);
    form->addRow("&Password:", passwordEdit);
    form->addRow(buttons);
    dialog.setMinimumWidth(dialog.fontMetrics().averageCharWidth() * 60);
    // Only the password has to be typed then.
    if (!user.empty())
        passwordEdit->setFocus();
    const bool isConfirmed = dialog.exec() == QDialog::Accepted;
    Secret password;
    takeSecret(*passwordEdit, password.text);
    if (!isConfirmed)
        return false;
    wipe(logon);
    user = fromUi(userEdit->text());
    logon = logonText(user, password.text);
    return true;
}
