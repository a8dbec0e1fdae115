#include "Ui/ElidedLabel.h"
#include "Ui/ModalBox.h"
#include "Wizard/Run/DataSourceLogon.h"
#include "wizard/Desk.h"

#include <QHelpEvent>
#include <QToolTip>
#include <QTreeView>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

// A picture that records whether it was opened, and markup that refers to it as an image and as a style sheet.
class Bait
{
public:
    explicit Bait(const TempDir& dir) : file(dir.write("bait.png", "no picture"))
    {
        inotify_add_watch(watch, file.c_str(), IN_OPEN);
    }
    ~Bait() { close(watch); }

    std::string markup() const
    {
        return "<link rel='stylesheet' href='file://" + file + "'/><img src='file://" + file + "'/>";
    }
    bool wasOpened() const
    {
        for (QWidget* window : QApplication::topLevelWidgets())
            window->grab(); // painting lays out the text
        char events[4096];
        return read(watch, events, sizeof events) > 0;
    }

private:
    std::string file;
    int watch = inotify_init1(IN_NONBLOCK);
};

void showToolTip(QWidget& widget, const QPoint& place)
{
    QHelpEvent help(QEvent::ToolTip, place, widget.mapToGlobal(place));
    QApplication::sendEvent(&widget, &help);
    EXPECT_TRUE(QToolTip::isVisible());
}

TEST(Markup, OfADescriptionOpensNothing)
{
    for (const char* importer : {"BTD importer", "XML Schema importer"}) {
        Desk desk;
        const Bait bait(desk.dir);
        const std::string text =
            QString::fromStdString(bait.markup()).toHtmlEscaped().replace('\'', "&apos;").toStdString();
        desk.importer = importer;
        desk.source =
            *importer == 'B'
                ? desk.dir.write("a.xml", "<a><T NAME='r' DESCRIPTION='" + text +
                                              "'><ROW><X NAME='f' TYPE='String' DESCRIPTION='" + text +
                                              "'/></ROW></T></a>")
                : desk.dir.write("a.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element "
                                          "name='r'><xs:complexType><xs:sequence><xs:element name='f' "
                                          "type='xs:string'><xs:annotation><xs:documentation>" +
                                              text +
                                              "</xs:documentation></xs:annotation></xs:element></xs:sequence>"
                                              "</xs:complexType></xs:element></xs:schema>");
        desk.walkTo(IDD_SOURCE);
        if (*importer == 'X')
            desk.control<QAbstractButton>(IDC_FULL_READING).setChecked(true);
        desk.walkTo(IDD_EDIT);
        desk.wizard().activePage()->findChild<QAbstractButton*>("showStructure")->setChecked(true);
        desk.control<ListView>(IDC_TYPES).setCurrentIndex(desk.control<ListView>(IDC_TYPES).model()->index(0, 0));
        auto& tree = *desk.wizard().activePage()->findChild<QTreeView*>("structure");
        QApplication::processEvents();
        const QModelIndex field = tree.model()->index(0, 0);
        EXPECT_TRUE(field.data(Qt::AccessibleDescriptionRole).toString().contains("<img")) << importer;
        showToolTip(*tree.viewport(), tree.visualRect(field).center());
        EXPECT_FALSE(bait.wasOpened()) << importer;
        QToolTip::hideText();
    }
}

TEST(Markup, OfAServerOpensNothing)
{
    const TempDir dir;
    const Bait bait(dir);
    const std::string& text = bait.markup();
    ElidedLabel label(QString::fromStdString(text)); // as for the progress of long work
    label.resize(20, 20);
    label.show();
    showToolTip(label, {5, 5});
    const auto closeDialog = [&bait] {
        EXPECT_FALSE(bait.wasOpened());
        QApplication::activeModalWidget()->close();
    };
    QTimer::singleShot(0, closeDialog);
    CString user = text, logon;
    askForLogon(nullptr, text, text, user, logon);
    QTimer::singleShot(0, closeDialog);
    ModalBox(label).show(text, text, text);
    EXPECT_FALSE(bait.wasOpened());
}

} // namespace
