#pragma once

#include "Base/Progress.h"

#include <QElapsedTimer>
#include <QString>

/// How fast long work gets on, from what it says again and again of how far it has come.
class WorkPace
{
public:
    /// Takes note of the progress and returns how much time is left, in words that follow it: ", about 40 s left". ""
    /// in the first 5 s of each kind of work, and where the end is not known.
    QString left(const Progress& now);

    /// The same words for a number of seconds.
    static QString inWords(double seconds);

private:
    Progress first; // of this kind of work
    QElapsedTimer since;
};
