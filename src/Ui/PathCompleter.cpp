#include "Ui/PathCompleter.h"

#include "Ui/UiText.h"

#include <QAbstractItemView>
#include <QElapsedTimer>
#include <QEvent>
#include <QFileInfo>
#include <QLineEdit>
#include <QStringListModel>

#include <filesystem>

namespace {

// Returns the files and folders whose names continue the typed path, sorted. In a very large or slow folder, returns
// those found until the limits. Qt's own model of the file system lists and sorts the whole folder with the state of
// each file: 1 s for each key in a folder of 100,000 files. Hidden files are left out.
QStringList namesAfter(const QString& typed)
{
    constexpr qsizetype kMaxNames = 1'000;
    constexpr qint64 kMaxTime = 30; // ms
    const QString start = typed.left(typed.lastIndexOf('/') + 1);
    const CString wanted = fromUi(typed.mid(start.size()));
    QStringList found;
    QElapsedTimer since;
    since.start();
    std::error_code end; // ends the loop as the last entry does
    for (std::filesystem::directory_iterator entry(start.isEmpty() ? "." : fromUi(start), end), none;
         entry != none && found.size() < kMaxNames && !since.hasExpired(kMaxTime); entry.increment(end)) {
        const CString name = entry->path().filename().string();
        if (!name.starts_with(wanted) || name.starts_with('.'))
            continue;
        std::error_code unknown;
        const bool isFolder = entry->is_directory(unknown);
        if (isFolder || entry->is_regular_file(unknown))
            found.append(start + toUi(name) + (isFolder ? "/" : ""));
    }
    found.sort();
    return found;
}

} // namespace

// The list of completions stays empty if nothing is left to complete, because an open list keeps mnemonics from the
// window. It is filled before the field asks for completions.
PathCompleter::PathCompleter(QLineEdit& field) : QCompleter(&field)
{
    auto* names = new QStringListModel(this);
    setModel(names);
    connect(&field, &QLineEdit::textEdited, this, [names](const QString& typed) {
        names->setStringList(typed.isEmpty() || QFileInfo(typed).isFile() ? QStringList() : namesAfter(typed));
    });
}

bool PathCompleter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Hide && watched == widget())
        popup()->hide();
    return QCompleter::eventFilter(watched, event);
}
