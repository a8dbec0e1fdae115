#include "Ui/FileDialog.h"

#include "Ui/UiText.h"

#include <QFileDialog>

#include <algorithm>

// Files are opened by Qt's static functions, which use the desktop's dialog. A file to write needs a dialog object,
// because only that reports when the user picks another file type.
namespace {

// Some platform dialogs match patterns with letter case, so each pattern is listed in both cases. Qt expects "LABEL
// (PATTERN PATTERN)".
QStringList filterRows(const std::vector<FileFilter>& filters)
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
    return rows;
}

// Returns the folder that the dialog shows first, with the preset name if there is one.
QString startOf(const FileQuestion& question)
{
    const QString name = toUi(question.name);
    return name.startsWith('/') ? name : toUi(question.folder) + '/' + name;
}

// Returns the suffix of a file type with its dot; empty if it has several patterns or takes any name.
QString suffixOf(const FileFilter& filter)
{
    const QString patterns = toUi(filter.patterns);
    return patterns.contains(';') || patterns.endsWith('*') ? QString() : patterns.mid(1);
}

// Makes the name follow the file type that the user picks: its suffix replaces another type's, and is added to a name
// without one.
void followFileType(QFileDialog& dialog, const std::vector<FileFilter>& filters)
{
    const QString picked = dialog.selectedNameFilter(); // with or without patterns, by the version of Qt
    const auto type = std::ranges::find_if(
        filters, [&picked](const FileFilter& filter) { return picked.startsWith(toUi(filter.label)); });
    if (type == filters.end())
        return;
    const QString suffix = suffixOf(*type), name = dialog.selectedFiles().value(0);
    dialog.setDefaultSuffix(suffix);
    for (const FileFilter& filter : filters) // Qt's own dialog does this, those of desktops don't
        if (const QString other = suffixOf(filter); !other.isEmpty() && other != suffix && name.endsWith(other))
            dialog.selectFile(name.chopped(other.size()) + suffix);
}

} // namespace

CString chooseFileToOpen(QWidget* owner, const FileQuestion& question)
{
    return fromUi(QFileDialog::getOpenFileName(owner, toUi(question.title), startOf(question),
                                               filterRows(question.filters).join(";;"), nullptr,
                                               QFileDialog::HideNameFilterDetails));
}

std::vector<CString> chooseFilesToOpen(QWidget* owner, const FileQuestion& question)
{
    std::vector<CString> names;
    for (const QString& name : QFileDialog::getOpenFileNames(owner, toUi(question.title), startOf(question),
                                                             filterRows(question.filters).join(";;"), nullptr,
                                                             QFileDialog::HideNameFilterDetails))
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
    QFileDialog dialog(owner, toUi(question.title), startOf(question));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    // Restricts a desktop's dialog to local files.
    dialog.setSupportedSchemes({"file"});
    dialog.setNameFilters(filterRows(question.filters));
    const auto follow = [&] { followFileType(dialog, question.filters); };
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
    follow();
    return dialog.exec() == QDialog::Accepted ? fromUi(dialog.selectedFiles().value(0)) : CString();
}
