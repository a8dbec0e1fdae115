#pragma once

#include <QMimeData>
#include <QStringList>
#include <QUrl>

/// The names of the files that are dragged, in order; of what lies on servers there is none.
inline QStringList draggedFiles(const QMimeData& data)
{
    QStringList files;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    files.sort();
    return files;
}
