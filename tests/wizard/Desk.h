#pragma once

#include "Platform/Ui/WizardPage.h"
#include "QELWizard.h"
#include "Resources/DialogIds.h"
#include "support/Boxes.h"
#include "support/TempDir.h"

#include <QAbstractButton>
#include <QTest>

#include <memory>

/// A user before a wizard: own settings, own folder, and the wizard's boxes recorded. The wizard starts on the first
/// call of wizard(), so that a test can write settings before.
class Desk
{
public:
    Desk() : startFolder(std::filesystem::current_path())
    {
        qputenv("XDG_CONFIG_HOME", dir.path("config").c_str());
        std::filesystem::create_directories(dir.path("start"));
        std::filesystem::current_path(dir.path("start"));
    }

    ~Desk()
    {
        running.reset();
        std::filesystem::current_path(startFolder);
    }

    QELWizard& wizard()
    {
        if (running == nullptr) {
            running = std::make_unique<QELWizard>(IDS_TITLE, nullptr, 0, IDB_WATERMARK, nullptr, IDB_HEADER);
            running->show();
        }
        return *running;
    }

    /// Ends the wizard, if it runs; the next call of wizard() is a new run.
    void end() { running.reset(); }

    /// The dialog id of the page that is shown.
    int page() { return wizard().activePage()->queryDialogId(); }

    /// Clicks a button of the sheet: "back", "next", "finish", "cancel" or "help".
    void click(const char* button) { QTest::mouseClick(wizard().findChild<QAbstractButton*>(button), Qt::LeftButton); }

    /// A control of the page that is shown.
    template <class Control>
    Control& control(int id)
    {
        auto* found = wizard().activePage()->findChild<Control*>(QString::number(id));
        if (found == nullptr)
            throw std::runtime_error("no such control: " + std::to_string(id));
        return *found;
    }

    std::string settingsFile() const { return dir.path("config/typeforge/settings.json"); }

    TempDir dir;
    Boxes boxes;

private:
    std::filesystem::path startFolder;
    std::unique_ptr<QELWizard> running;
};
