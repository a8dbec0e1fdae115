#include "Ui/PathCompleter.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QStringListModel>

PathCompleter::PathCompleter(QLineEdit& field) : QCompleter(&field), names(new QStringListModel(this))
{
    setModel(names);
    connect(&field, &QLineEdit::textEdited, this, &PathCompleter::offer); // comes before the field asks for completions
}

// While its list is open, no letter with Alt reaches the window. So there is none where nothing is left to complete.
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
