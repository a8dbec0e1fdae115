#pragma once

#include "Resources/DialogIds.h"
#include "Ui/ListView.h"
#include "Ui/WizardPage.h"
#include "Wizard/QELWizard.h"
#include "support/Boxes.h"
#include "support/TempDir.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <memory>

using Texts = std::vector<CString>;

/// Handles the next file dialog: chooses a file, or cancels if `file` is empty. Before it accepts the file, it goes
/// down `types` rows in the list of file types. Call it before the click that opens the dialog, which blocks until it
/// closes.
inline void answerFileDialog(const std::string& file, int types = 0)
{
    QTimer::singleShot(100, [file, types] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        if (file.empty())
            return dialog->reject();
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(file));
        for (int i = 0; i < types; ++i)
            QTest::keyClick(dialog->findChild<QComboBox*>("fileTypeCombo"), Qt::Key_Down);
        QMetaObject::invokeMethod(dialog, "accept");
    });
}

/// A user of the wizard: own settings, own current folder, and the wizard's boxes recorded. The first call of wizard()
/// starts the wizard, so a test can write settings before.
class Desk
{
public:
    Desk() : folderBefore(std::filesystem::current_path())
    {
        qputenv("XDG_CONFIG_HOME", dir.path("config").c_str());
        std::filesystem::create_directories(dir.path("start"));
        std::filesystem::current_path(dir.path("start"));
    }

    ~Desk()
    {
        end();
        std::filesystem::current_path(folderBefore);
        for (const char* variable : {"TMP", "TEMP", "TYPEFORGE_VIEWER"})
            qunsetenv(variable);
    }

    /// Returns the wizard, which is started if it doesn't run.
    QELWizard& wizard()
    {
        if (running == nullptr) {
            running = std::make_unique<QELWizard>(IDS_TITLE, nullptr, 0, IDB_WATERMARK, nullptr, IDB_HEADER);
            running->show();
        }
        return *running;
    }

    /// Ends the wizard if it runs; the next call of wizard() starts it again.
    void end() { running.reset(); }

    /// Returns the dialog id of the current page; 0 if the wizard is closed.
    int page() { return wizard().isVisible() ? wizard().activePage()->queryDialogId() : 0; }

    /// Clicks a button of the sheet: "back", "next", "finish", "cancel" or "help".
    void click(const char* button) { QTest::mouseClick(wizard().findChild<QAbstractButton*>(button), Qt::LeftButton); }

    /// Returns a control of the current page.
    template <class Control>
    Control& control(int id)
    {
        auto* found = wizard().activePage()->findChild<Control*>(QString::number(id));
        if (found == nullptr)
            throw std::runtime_error("no such control: " + std::to_string(id));
        return *found;
    }

    /// Clicks a button of the current page.
    void press(int id) { control<QAbstractButton>(id).click(); }

    /// Returns the text of a combo box, field or label of the current page.
    CString text(int id)
    {
        const QVariant chosen = control<QWidget>(id).property("currentText");
        return (chosen.isValid() ? chosen : control<QWidget>(id).property("text")).toString().toStdString();
    }

    /// Selects an importer by name, as the keyboard does.
    void choose(const CString& importer)
    {
        auto& list = control<ListView>(IDC_IMPORTERS);
        int row = 0;
        while (row < list.rowCount() - 1 && list.cell(row, 0) != importer)
            ++row;
        list.setCurrentIndex(list.model()->index(row, 0));
    }

    /// Types a text into a combo box of the current page.
    void type(int combo, const std::string& text)
    {
        control<QComboBox>(combo).setEditText(QString::fromStdString(text));
    }

    /// Makes the window this high. Returns by how many pixels the current page is higher than its room, which scrolls.
    int scrollsAt(int height)
    {
        wizard().resize(wizard().width(), height);
        QApplication::processEvents();
        for (QWidget* widget = wizard().activePage(); widget != nullptr; widget = widget->parentWidget())
            if (const auto* area = qobject_cast<QScrollArea*>(widget))
                return area->verticalScrollBar()->maximum();
        return -1;
    }

    /// Walks from the first page to `target`, importing the file `source` by `importer`. Throws if a page doesn't let
    /// it go on.
    void walkTo(int target)
    {
        while (page() != target) {
            const int before = page();
            if (before == IDD_SOURCE_TYPE)
                choose(importer);
            if (before == IDD_SOURCE)
                type(IDC_INPUT_FILE, source);
            if (before == IDD_OUTPUT_FILE)
                type(IDC_OUTPUT_FILE, output);
            click("next");
            if (page() == before)
                throw std::runtime_error("the wizard doesn't leave page " + std::to_string(before));
        }
    }

    /// Returns the path of the file with the wizard's settings, which may not exist yet.
    std::string settingsFile() const { return dir.path("config/typeforge/settings.json"); }

    TempDir dir;
    Boxes boxes;
    std::string importer = "DTD importer";
    std::string source = dir.write("in/order.dtd", "<!ELEMENT order (line+)><!ELEMENT line (#PCDATA)>");
    std::string output = dir.path("out.xml");

private:
    std::filesystem::path folderBefore;
    std::unique_ptr<QELWizard> running;
};
