#include "Platform/Ui/Viewer.h"

#include "Platform/Ui/UiText.h"

#include <QProcess>

// A viewer can outlive the wizard and write whatever it likes: it gets no terminal of ours.
void showInViewer(const CString& fileName)
{
    QProcess viewer;
    viewer.setProgram(qEnvironmentVariable("TYPEFORGE_VIEWER", "xdg-open"));
    viewer.setArguments({toUi(fileName)});
    viewer.setStandardInputFile(QProcess::nullDevice());
    viewer.setStandardOutputFile(QProcess::nullDevice());
    viewer.setStandardErrorFile(QProcess::nullDevice());
    viewer.startDetached();
}
