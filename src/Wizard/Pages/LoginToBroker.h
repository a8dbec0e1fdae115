#pragma once

#include "Broker/CreationRun.h"
#include "Wizard/Pages/QELPage.h"

#include <optional>

class BrokerSession;
class QComboBox;
class QLineEdit;
class QProgressBar;
class QRadioButton;

/// Logs on to the broker and creates the types there. Fills the result lines of the options, and the script's address,
/// user and overwrite. The password is kept for this run only, and wiped at its end.
class LoginToBroker : public QELPage
{
public:
    LoginToBroker();
    ~LoginToBroker() override;

    void OnInitDialog() override;
    void OnSetActive() override;
    LRESULT OnWizardBack() override { return IDD_OUTPUT; }
    /// Logs on and creates the types. Leads to the results once the creation has begun; stays after a failed logon.
    LRESULT OnWizardNext() override;

    /// Enable the controls of a kind of logon, when the user chooses it.
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

    // Create the two groups of controls, filled from the options.
    QWidget* makeServerGroup();
    QWidget* makeLogonGroup();
    void suggestLogon(const QString& server);
    bool UpdateData();
    // Returns the control of a missing entry; null if all entries that the logon needs are there.
    QWidget* blankField() const;
    // Stores the members in the options.
    void storeInput();
    // Asks whether to replace a type. Called in the window's thread.
    OverwriteChoice ask(const CString& question, const CString& details);
    // Returns the number of failures; nothing if the run was cancelled.
    std::optional<int> createTypes(BrokerSession& session);

    QLineEdit* passwordEdit = nullptr;
    QProgressBar* progress = nullptr;
    QComboBox* serverCombo = nullptr;
    QComboBox* userCombo = nullptr;
    QLineEdit* portEdit = nullptr;
    QRadioButton* trustedButton = nullptr;
    QRadioButton* brokerButton = nullptr;
    // The values of the controls as of the last UpdateData().
    DWORD port = 0;
    CString server;
    CString password; // wiped before it changes and at the end
    CString user;
    LogonKind logonSel = LogonKind::none;
    bool isSuggested = false; // the trusted logon was suggested by the server's name
};
