#include "Ui/SecretEdit.h"

#include "Base/Secret.h"

#include <QLineEdit>

#include <cstring>

// Overwrites each copy: Qt's text, its bytes in UTF-8, and the earlier content of `secret`.
void takeSecret(QLineEdit& field, CString& secret)
{
    QString typed = field.text(); // shares the field's text, and is its only owner after clear()
    field.clear();
    QByteArray bytes = typed.toUtf8();
    wipe(secret);
    secret.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    explicit_bzero(bytes.data(), static_cast<std::size_t>(bytes.size()));
    explicit_bzero(typed.data(), static_cast<std::size_t>(typed.size()) * sizeof(QChar));
}
