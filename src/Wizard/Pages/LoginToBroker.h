#pragma once

#include "Broker/CreationRun.h"
#include "Wizard/Pages/QELPage.h"

#include <optional>

class BrokerSession;
class QComboBox;
class QLineEdit;
class QProgressBar;
class QRadioButton;

/// Logs on to the broker and creates the types there.
class LoginToBroker : public QELPage
{
public:
    LoginToBroker();
    ~LoginToBroker() override;

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardBack() override { return IDD_OUTPUT; }
    LRESULT OnWizardNext() override;

    void OnLogonTrusted();
    void OnLogonBroker();

private:
    /// The choice, numbered like the radio buttons.
    enum class LogonKind : int
    {
        none = -1,
        trusted = 0, ///< as the user that runs the program
        broker = 1   ///< with user and password
    };

    QWidget* makeServerGroup();
    QWidget* makeLogonGroup();
    void suggestLogon(const QString& server);
    bool UpdateData();
    QWidget* blankField() const;
    void storeInput();
    OverwriteChoice ask(const CString& question, const CString& details);
    std::optional<int> createTypes(BrokerSession& session);

    QLineEdit* passwordEdit = nullptr;
    QProgressBar* progress = nullptr;
    QComboBox* serverCombo = nullptr;
    QComboBox* userCombo = nullptr;
    QLineEdit* portEdit = nullptr;
    QRadioButton* trustedButton = nullptr;
    QRadioButton* brokerButton = nullptr;
    DWORD port = 0;
    CString server;
    CString password;
    CString user;
    LogonKind logonSel = LogonKind::none;
    bool isSuggested = false; // the trusted logon was suggested by the server's name
};
