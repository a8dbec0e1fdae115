#include "Ui/FileDialog.h"

#include "Ui/UiText.h"

#include <QFileDialog>

#include <algorithm>

namespace {

// Some platform dialogs match patterns with letter case, so each pattern is listed in both cases.
QString filterRows(const std::vector<FileFilter>& filters)
{
    QStringList rows;
    for (const FileFilter& filter : filters) {
        QStringList patterns = toUi(filter.patterns).split(';');
        patterns.replaceInStrings("*.*", "*"); // "*.*" would leave out names without a dot
        QStringList both = patterns;
        for (const QString& pattern : patterns)
            both.append(pattern.toLower());
        both.removeDuplicates();
        rows.append(toUi(filter.label) + " (" + both.join(' ') + ')');
    }
    return rows.join(";;");
}

QString startOf(const FileQuestion& question)
{
    const QString name = toUi(question.name);
    return name.startsWith('/') ? name : toUi(question.folder) + '/' + name;
}

} // namespace

CString chooseFileToOpen(QWidget* owner, const FileQuestion& question)
{
    return fromUi(QFileDialog::getOpenFileName(owner, toUi(question.title), startOf(question),
                                               filterRows(question.filters), nullptr,
                                               QFileDialog::HideNameFilterDetails));
}

std::vector<CString> chooseFilesToOpen(QWidget* owner, const FileQuestion& question)
{
    std::vector<CString> names;
    for (const QString& name :
         QFileDialog::getOpenFileNames(owner, toUi(question.title), startOf(question), filterRows(question.filters),
                                       nullptr, QFileDialog::HideNameFilterDetails))
        names.push_back(fromUi(name));
    std::ranges::sort(names);
    return names;
}

CString chooseFolder(QWidget* owner, const CString& title, const CString& start)
{
    return fromUi(QFileDialog::getExistingDirectory(owner, toUi(title), toUi(start)));
}

CString chooseFileToSave(QWidget* owner, const FileQuestion& question)
{
    return fromUi(QFileDialog::getSaveFileName(owner, toUi(question.title), startOf(question),
                                               filterRows(question.filters), nullptr,
                                               QFileDialog::HideNameFilterDetails));
}
