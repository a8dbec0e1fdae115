// screenshots FOLDER EXAMPLES light|dark: walks the wizard through an import and keeps a picture of every page in
// FOLDER.

#include "HelpWindow.h"
#include "Platform/MessageBox.h"
#include "Platform/Ui/ModalBox.h"
#include "QELWizard.h"
#include "Resources/DialogIds.h"
#include "Resources/StringIds.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

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

    void fileRoad()
    {
        keep("welcome");
        sheet.next();
        choose("1022", 0);
        keep("importer");
        sheet.next();
        fill("1041", "order.dtd");
        keep("inputfile");
        keepError();
        sheet.next();
        choose("1024", 2);
        keep("types");
        sheet.next();
        keep("output");
        sheet.next();
        fill("1040", "order-types.xml");
        keep("outputfile");
        sheet.next();
        keep("finish");
    }

private:
    template <class Control>
    Control* control(const char* id)
    {
        return sheet.activePage()->findChild<Control*>(id);
    }

    void choose(const char* id, int row)
    {
        auto* list = control<QTreeView>(id);
        list->setCurrentIndex(list->model()->index(row, 0));
    }

    void fill(const char* id, const char* text) { control<QComboBox>(id)->setEditText(text); }

    void keep(const QString& name) { keep(name, sheet); }

    void keep(const QString& name, QWidget& window)
    {
        QApplication::processEvents();
        window.grab().save(QString("%1/%2-%3.png").arg(folder, name, suffix));
    }

    void keepError()
    {
        fill("1041", "nowhere.dtd");
        QTimer::singleShot(0, [this] {
            QWidget* box = QApplication::activeModalWidget();
            keep("error", *box);
            box->close();
        });
        sheet.next();
        fill("1041", "order.dtd");
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

    // Pictures name the folder that they were made in.
    const QString work = "/tmp/orders";
    QDir().mkpath(work);
    QDir::setCurrent(work);
    for (const QString& name : examples.entryList(QDir::Files))
        QFile::copy(examples.filePath(name), name);
    Walk(pictures, tone).fileRoad();
    QDir(work).removeRecursively();
}
