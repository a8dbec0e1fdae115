#include "Ui/Viewer.h"

#include "Ui/UiText.h"

#include <QDeadlineTimer>
#include <QPointer>
#include <QProcess>

#include <unistd.h>
#include <unordered_set>

namespace {

// The running viewers. A viewer can outlive the wizard, but QProcess's destructor would kill it, so the objects are
// leaked at the end.
std::unordered_set<QProcess*>& running()
{
    static auto& processes = *new std::unordered_set<QProcess*>;
    return processes;
}

} // namespace

// The viewer gets no terminal and a session of its own, so that it can't write to the wizard's terminal or end with the
// wizard. startDetached() would only tell whether the program starts, and xdg-open starts even if there is no viewer:
// it then ends with 3 or 4. An exit status after the deadline is no failure, because the viewer has run until then.
void showInViewer(const CString& fileName, QObject* context, std::function<void()> onFailure)
{
    constexpr int kStartTimeout = 30'000; // ms
    auto* viewer = new QProcess;
    running().insert(viewer);
    viewer->setProgram(qEnvironmentVariable("TYPEFORGE_VIEWER", "xdg-open"));
    viewer->setArguments({toUi(fileName)});
    viewer->setStandardInputFile(QProcess::nullDevice());
    viewer->setStandardOutputFile(QProcess::nullDevice());
    viewer->setStandardErrorFile(QProcess::nullDevice());
    viewer->setChildProcessModifier([] { ::setsid(); });
    const auto end = [viewer, context = QPointer(context), onFailure](bool failed) {
        if (failed && context)
            onFailure();
        running().erase(viewer);
        viewer->deleteLater();
    };
    QObject::connect(viewer, &QProcess::errorOccurred, viewer, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end(true);
    });
    QObject::connect(viewer, &QProcess::finished, viewer,
                     [end, deadline = QDeadlineTimer(kStartTimeout)](int status, QProcess::ExitStatus how) {
                         end((status != 0 || how != QProcess::NormalExit) && !deadline.hasExpired());
                     });
    viewer->start();
}
