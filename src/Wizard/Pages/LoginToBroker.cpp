#include "Wizard/Pages/LoginToBroker.h"

#include "Base/Progress.h"
#include "Base/QELApp.h"
#include "Base/Secret.h"
#include "Base/ServerAddress.h"
#include "Broker/BrokerSession.h"
#include "Broker/CreationRun.h"
#include "Broker/TypeSource.h"
#include "Database/ConnectString.h"
#include "Resources/StringTable.h"
#include "Ui/ComboBox.h"
#include "Ui/LongWork.h"
#include "Ui/Mnemonics.h"
#include "Ui/SecretEdit.h"
#include "Ui/UiText.h"
#include "Ui/WaitCursor.h"
#include "Ui/WizardSheet.h"
#include "Wizard/Pages/Overwrite.h"
#include "Wizard/Run/WizardRun.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QValidator>

// Next checks the fields, logs on and creates the types as one piece of long work, and leads to the results. Questions
// about existing types come from the work's thread and are asked in the window's. A failed logon keeps the page. Once
// the creation has begun, the results follow in any case, also if it was cancelled, because some types exist by then.
namespace {

// Converts letter by letter, so that the text keeps its length and the cursor its position.
QString upperCase(QString text)
{
    for (QChar& c : text)
        c = c.toUpper();
    return text;
}

// Accepts any text and converts it to upper case, in which the page shows users. The shipped client also tries the role
// in lower case.
class UpperCase : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString& text, int&) const override
    {
        text = upperCase(text);
        return Acceptable;
    }
};

} // namespace

LoginToBroker::LoginToBroker() : QELPage(IDD_LOGIN, "Typeforge - Login to Broker", IDS_LOGIN_TITLE, IDS_LOGIN_SUBTITLE)
{}

// The field exists only if the page was shown.
LoginToBroker::~LoginToBroker()
{
    if (passwordEdit)
        takeSecret(*passwordEdit, password);
    wipe(password);
}

// The progress bar keeps its place while it is hidden, so that the controls don't move when the creation begins.
void LoginToBroker::OnInitDialog()
{
    QELPage::OnInitDialog();
    keepOutOfCores();
    auto* column = new QVBoxLayout(this);
    column->addWidget(makeServerGroup());
    column->addWidget(makeLogonGroup());
    progress = withId(IDC_PROGRESS, new QProgressBar);
    progress->setAccessibleName("Progress of the creation");
    QSizePolicy place = progress->sizePolicy();
    place.setRetainSizeWhenHidden(true);
    progress->setSizePolicy(place);
    column->addWidget(progress);
    column->addStretch();
}

QWidget* LoginToBroker::makeServerGroup()
{
    serverCombo = withId(IDC_SERVER, newRecentCombo("&Name"));
    server = wizard->options.fillBrokerIP(*serverCombo);
    serverCombo->lineEdit()->setPlaceholderText("local, or the name or address of a server");
    connect(serverCombo->lineEdit(), &QLineEdit::textEdited, this, &LoginToBroker::suggestLogon);
    connect(serverCombo, &QComboBox::textActivated, this, &LoginToBroker::suggestLogon);
    port = wizard->options.queryBrokerPort();
    portEdit = withId(IDC_PORT, new QLineEdit(QString::number(port)));
    auto* group = new QGroupBox("Broker server");
    auto* form = new QFormLayout(group);
    form->addRow("&Name", serverCombo);
    form->addRow("&Port", portEdit);
    return group;
}

// The last kind of logon is chosen, which enables or disables the fields.
QWidget* LoginToBroker::makeLogonGroup()
{
    trustedButton = withId(IDC_LOGON_TRUSTED, new QRadioButton("Use &trusted logon"));
    brokerButton = withId(IDC_LOGON_BROKER, new QRadioButton("Use Broker &logon"));
    connect(trustedButton, &QRadioButton::clicked, this, &LoginToBroker::OnLogonTrusted);
    connect(brokerButton, &QRadioButton::clicked, this, &LoginToBroker::OnLogonBroker);
    userCombo = withId(IDC_USER, newRecentCombo("Broker &username"));
    userCombo->setValidator(new UpperCase(userCombo));
    user = wizard->options.fillUser(*userCombo);
    // The validator only sees typed text.
    for (int i = 0; i < userCombo->count(); ++i)
        userCombo->setItemText(i, upperCase(userCombo->itemText(i)));
    passwordEdit = withId(IDC_PASSWORD, new QLineEdit(toUi(wizard->options.queryPwd())));
    passwordEdit->setEchoMode(QLineEdit::Password);

    auto* group = new QGroupBox("Logon");
    auto* form = new QFormLayout(group);
    form->addRow(trustedButton);
    form->addRow(brokerButton);
    form->addRow("Broker &username", userCombo);
    form->addRow("Broker &password", passwordEdit);
    (wizard->options.queryUseTrustedLogon() ? trustedButton : brokerButton)->click();
    return group;
}

void LoginToBroker::OnSetActive()
{
    progress->hide();
}

// A click ends a suggestion: from then on the choice is the user's. suggestLogon() sets its flag after its own click.
void LoginToBroker::OnLogonTrusted()
{
    isSuggested = false;
    passwordEdit->setEnabled(false);
    userCombo->setEnabled(false);
}

void LoginToBroker::OnLogonBroker()
{
    isSuggested = false;
    passwordEdit->setEnabled(true);
    userCombo->setEnabled(true);
}

// Selects the trusted logon for "local", because the local repository needs no user. Restores the earlier choice if the
// name changes again, for example to "localhost".
void LoginToBroker::suggestLogon(const QString& typed)
{
    if (typed != "local") {
        if (isSuggested)
            brokerButton->click();
    } else if (!trustedButton->isChecked()) {
        trustedButton->click();
        isSuggested = true;
    }
    setRadioTabStops(this); // Qt only does this when one of the buttons gets the focus
}

// Logging on and creating are one piece of work. The session lives in the work's thread and ends there, so closing it
// doesn't block the window. The work reads members of the page that no handler changes meanwhile.
LRESULT LoginToBroker::OnWizardNext()
{
    const WaitCursor wait;
    if (!UpdateData())
        return -1;
    if (QWidget* blank = blankField()) {
        blank->setFocus();
        return stay(IDS_BLANK_FIELD);
    }
    storeInput();
    CString failure, reason;
    std::optional<int> errors; // nothing if the run was cancelled
    const bool isTrusted = logonSel == LogonKind::trusted;
    wizard->script.overwrite.clear();
    sheet()->runLong(
        [&] {
            BrokerSession session;
            const BrokerAccount account{user, password};
            failure = session.open(server, port, isTrusted ? nullptr : &account);
            throwIfCancelled();
            if (failure.empty())
                errors = createTypes(session);
            else
                reason = session.queryDescription();
        },
        progress, toUi(server));
    if (!failure.empty())
        return stay(failure, reason);
    ScriptCommand& script = wizard->script;
    // A port in the server's name overrides the field, here as in the session.
    const auto address = readServerAddress(server, port);
    script.address = address ? address->asText() : server;
    script.user = isTrusted ? CString() : user;
    script.output.clear();
    // The bar ends full even if the last report of progress came before the last type.
    if (errors)
        progress->setValue(progress->maximum());
    if (errors.value_or(0) != 0)
        theApp.Error(formatText(loadText(IDS_CREATION_ERRORS), *errors), IDS_ERROR_TITLE);
    return IDD_CREATE_RESULT;
}

// Reads the controls into the members. Returns false and focuses the port if it is not a number. An empty port becomes
// 0, which blankField() reports. A sign is refused; toUInt() would accept a plus.
bool LoginToBroker::UpdateData()
{
    server = fromUi(serverCombo->currentText());
    user = fromUi(userCombo->currentText());
    wipe(password);
    password = fromUi(passwordEdit->text());
    logonSel = trustedButton->isChecked() ? LogonKind::trusted : LogonKind::broker;
    const QString portText = portEdit->text().trimmed();
    bool isNumber = portText.isEmpty();
    port = isNumber || portText.startsWith('+') ? 0 : portText.toUInt(&isNumber);
    if (!isNumber) {
        portEdit->setFocus();
        stay("Please enter a positive integer.");
    }
    return isNumber;
}

// A missing user or password takes precedence over a missing server or port; of each two, the first one counts.
QWidget* LoginToBroker::blankField() const
{
    QWidget* blank = nullptr;
    if (server.empty())
        blank = serverCombo;
    else if (port == 0)
        blank = portEdit;
    if (logonSel == LogonKind::trusted)
        return blank;
    if (user.empty())
        blank = userCombo;
    else if (password.empty())
        blank = passwordEdit;
    return blank;
}

// Called before the logon, so the entries become recent ones whether it succeeds or not.
void LoginToBroker::storeInput()
{
    QELOptions& options = wizard->options;
    options.addBrokerIP(server);
    options.setBrokerPort(port);
    options.addUser(user);
    options.setPwd(password);
    options.setUseTrustedLogon(logonSel == LogonKind::trusted);
}

// Runs in the thread of the long work. Controls are only touched through inWindowThread().
std::optional<int> LoginToBroker::createTypes(BrokerSession& session)
{
    QELOptions& options = wizard->options;
    inWindowThread([this] {
        progress->setRange(0, wizard->message->beginEnum());
        progress->setValue(0);
        progress->show();
    });
    // Not before the logon, so that the results of the run before stay if it fails.
    options.clearResultList();
    const auto askInWindow = [this](const CString& question, const CString& details) {
        OverwriteChoice choice = OverwriteChoice::no;
        inWindowThread([&] { choice = ask(question, details); });
        return choice;
    };
    // The identity that the command line records, too, so that both recognise types of the same source.
    const bool readsTables = wizard->message->queryDescriptor()->querySource().readsTables;
    const CString& source = wizard->script.source;
    CreationRun run(session,
                    {askInWindow, [&options](const CString& line, ResultKind kind) { options.addResult(line, kind); }},
                    {readsTables ? TypeSource{toXmlText(identityOf("DSN=" + source))} : fileSource(source)});
    const int errors = run.run(*wizard->message);
    return run.wasCancelled() ? std::nullopt : std::optional(errors);
}

// The first answer also becomes the option of the command that does the same: yes or no to one type means to ask there.
OverwriteChoice LoginToBroker::ask(const CString& question, const CString& details)
{
    OverWriteDlg dialog(this);
    dialog.text = question;
    dialog.details = details;
    const PlainCursor arrow;
    dialog.DoModal();
    CString& word = wizard->script.overwrite; // the first answer decides for all
    if (word.empty())
        word = dialog.choice == OverwriteChoice::yesToAll  ? "all"
               : dialog.choice == OverwriteChoice::noToAll ? "none"
                                                           : "ask";
    return dialog.choice;
}
