#include "Ui/Viewer.h"

#include "Ui/UiText.h"

#include <QDeadlineTimer>
#include <QPointer>
#include <QProcess>

#include <unistd.h>
#include <unordered_set>

namespace {

// A viewer can outlive the wizard, and a QProcess that is destroyed ends its program: the ones that still run when the
// wizard ends are left here.
std::unordered_set<QProcess*>& running()
{
    static auto& processes = *new std::unordered_set<QProcess*>;
    return processes;
}

void forget(QProcess* viewer)
{
    running().erase(viewer);
    viewer->deleteLater();
}

} // namespace

// A viewer can write whatever it likes and isn't to end with the wizard: it gets no terminal of ours, and a session of
// its own.
void showInViewer(const CString& fileName, QObject* context, std::function<void()> whenNoneStarts)
{
    constexpr int kPatience = 30'000; // ms
    auto* viewer = new QProcess;
    running().insert(viewer);
    viewer->setProgram(qEnvironmentVariable("TYPEFORGE_VIEWER", "xdg-open"));
    viewer->setArguments({toUi(fileName)});
    viewer->setStandardInputFile(QProcess::nullDevice());
    viewer->setStandardOutputFile(QProcess::nullDevice());
    viewer->setStandardErrorFile(QProcess::nullDevice());
    viewer->setChildProcessModifier([] { ::setsid(); });
    const auto end = [viewer, context = QPointer(context), whenNoneStarts](bool failed) {
        if (failed && context)
            whenNoneStarts();
        forget(viewer);
    };
    QObject::connect(viewer, &QProcess::errorOccurred, viewer, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(true);
    });
    QObject::connect(viewer, &QProcess::finished, viewer,
                     [end, deadline = QDeadlineTimer(kPatience)](int status, QProcess::ExitStatus how) {
                         end((status != 0 || how != QProcess::NormalExit) && !deadline.hasExpired());
                     });
    viewer->start();
}
