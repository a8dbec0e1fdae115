// screenshots FOLDER EXAMPLES light|dark: walks the wizard through an import and saves a picture of every page in
// FOLDER.

#include "Base/MessageBox.h"
#include "Resources/DialogIds.h"
#include "Resources/StringIds.h"
#include "Ui/ListView.h"
#include "Ui/ModalBox.h"
#include "Wizard/QELWizard.h"
#include "Wizard/Windows/HelpWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTimer>

#include <functional>

namespace {
QPalette palette(bool dark)
{
    if (!dark)
        return QPalette(QColor(239, 240, 242), QColor(239, 240, 242));
    QPalette tones(QColor(49, 52, 58), QColor(38, 40, 45));
    tones.setColor(QPalette::Base, QColor(29, 31, 35));
    tones.setColor(QPalette::AlternateBase, QColor(34, 36, 41));
    tones.setColor(QPalette::Link, QColor(122, 170, 255));
    tones.setColor(QPalette::Highlight, QColor(61, 99, 168));
    return tones;
}

class Walk
{
public:
    Walk(QString pictureFolder, QString tone) :
        folder(std::move(pictureFolder)), suffix(std::move(tone)),
        sheet(IDS_TITLE, nullptr, 0, IDB_WATERMARK, nullptr, IDB_HEADER)
    {
        setMessageBoxHandler(ModalBox(sheet));
        sheet.show();
    }

    /// Walks from the welcome page to the list of types.
    void source()
    {
        keep("welcome");
        sheet.goNext();
        control<ListView>(IDC_IMPORTERS).selectRow(0);
        keep("importer");
        sheet.goNext();
        fill(IDC_INPUT_FILE, "orders.dtd");
        keepDialog("error", &QDialog::reject, [this] { sheet.goNext(); });
        fill(IDC_INPUT_FILE, "order.dtd");
        waitForCounts();
        keep("inputfile");
        sheet.goNext();
        control<ListView>(IDC_TYPES).selectRow(2);
        keep("types");
        sheet.goNext();
    }

    void toFile()
    {
        control<QRadioButton>(IDC_TO_FILE).setChecked(true);
        keep("output");
        sheet.goNext();
        fill(IDC_OUTPUT_FILE, "order-types.xml");
        keep("outputfile");
        sheet.goNext();
        keep("finish");
    }

    /// Creates the types twice, so that the second time asks about existing ones, and returns to the finish page.
    void toBroker()
    {
        sheet.goBack(); // to the importer page, where the same import starts again
        for (int page = 0; page < 3; ++page)
            sheet.goNext();
        control<QRadioButton>(IDC_TO_BROKER).setChecked(true);
        sheet.goNext();
        fill(IDC_SERVER, "local");
        fill(IDC_USER, "ANNA");
        control<QLineEdit>(IDC_PASSWORD).setText("password");
        keep("login");
        sheet.goNext();
        keep("results");
        sheet.goBack();
        keepDialog("overwrite", &QDialog::reject, [this] { sheet.goNext(); });
        sheet.goNext();
    }

    void database()
    {
        sheet.goBack();
        ListView& importers = control<ListView>(IDC_IMPORTERS);
        int row = 0;
        while (!g_amud[row]->querySource().readsTables)
            ++row;
        importers.selectRow(row);
        Q_EMIT importers.chosen();
        sheet.goNext();
        control<ListView>(IDC_DATA_SOURCES).selectRow(1);
        keep("datasource");
        sheet.goNext();
        control<ListView>(IDC_TABLES).selectAll();
        keep("tables");
    }

    void help()
    {
        sheet.helpWindow().showTopic(10);
        keep("help", sheet.helpWindow());
    }

private:
    template <class Control>
    Control& control(int id)
    {
        return *sheet.activePage()->findChild<Control*>(QString::number(id));
    }

    // Waits for the counts of types, which come from a thread in the background.
    void waitForCounts()
    {
        QElapsedTimer since;
        since.start();
        const auto isCounting = [this] {
            const QString words = control<QLabel>(IDC_COUNTS).text();
            return words.isEmpty() || words.contains("ounting");
        };
        while (isCounting() && !since.hasExpired(5000))
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }

    void fill(int id, const char* text) { control<QComboBox>(id).setEditText(text); }

    void keep(const QString& name) { keep(name, sheet); }

    void keep(const QString& name, QWidget& window)
    {
        QApplication::processEvents();
        window.grab().save(QString("%1/%2-%3.png").arg(folder, name, suffix));
    }

    // Runs an action that opens dialogs, saves a picture of the last one, and closes all of them by `answer`.
    void keepDialog(const QString& name, void (QDialog::*answer)(), const std::function<void()>& action)
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr)
                return;
            dialog->grab().save(QString("%1/%2-%3.png").arg(folder, name, suffix));
            (dialog->*answer)();
        });
        timer.start(50);
        action();
    }

    QString folder;
    QString suffix;
    QELWizard sheet;
};
} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QString pictures = QDir(argv[1]).absolutePath();
    const QDir examples(QDir(argv[2]).absolutePath());
    const QString tone = argv[3];
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(palette(tone == "dark"));

    // The pictures show the name of the current folder.
    const QString work = "/tmp/orders";
    QDir().mkpath(work);
    QDir::setCurrent(work);
    for (const QString& name : examples.entryList(QDir::Files))
        QFile::copy(examples.filePath(name), name);
    {
        Walk walk(pictures, tone);
        walk.source();
        walk.toFile();
        walk.toBroker();
        walk.database();
        walk.help();
    }
    QDir(work).removeRecursively();
}
