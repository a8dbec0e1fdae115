#include "Ui/PathCompleter.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QStringListModel>

PathCompleter::PathCompleter(QLineEdit& field) : QCompleter(&field), names(new QStringListModel(this))
{
    setModel(names);
    connect(&field, &QLineEdit::textEdited, this, &PathCompleter::offer); // before the field asks for completions
}

// Fills the list of completions. It stays empty if nothing is left to complete, because an open list keeps mnemonics
// from the window.
void PathCompleter::offer(const QString& typed)
{
    const QString start = typed.left(typed.lastIndexOf('/') + 1);
    QStringList found;
    if (!typed.isEmpty() && !QFileInfo(typed).isFile())
        for (const QFileInfo& entry :
             QDir(start.isEmpty() ? "." : start).entryInfoList({}, QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name))
            found.append(start + entry.fileName() + (entry.isDir() ? "/" : ""));
    names->setStringList(found);
}
