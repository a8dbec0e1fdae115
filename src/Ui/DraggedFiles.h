#pragma once

#include <QMimeData>
#include <QStringList>
#include <QUrl>

/// Returns the names of dragged local files, sorted. Remote files are left out. Empty if the data contains none, so
/// that other data is refused.
inline QStringList draggedFiles(const QMimeData& data)
{
    QStringList files;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    files.sort();
    return files;
}
