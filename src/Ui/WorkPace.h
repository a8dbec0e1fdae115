#pragma once

#include "Base/Progress.h"

#include <QElapsedTimer>
#include <QString>

/// Estimates the remaining time of long work from its progress reports.
class WorkPace
{
public:
    /// Records a progress and returns the remaining time as words to append: ", about 40 s left". Empty in the first 5
    /// s of each kind of work, and if the total is unknown.
    QString left(const Progress& now);

    /// Returns the same words for a number of seconds.
    static QString inWords(double seconds);

private:
    Progress first; // first report of the current kind of work
    QElapsedTimer since;
};
