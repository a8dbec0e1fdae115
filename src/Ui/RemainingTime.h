#pragma once

#include "Base/Progress.h"

#include <QElapsedTimer>
#include <QString>

/// Estimates the remaining time of long work from its progress reports, at the average pace since the first report of
/// its kind.
class RemainingTime
{
public:
    /// Records a progress and returns the remaining time as a text to append: ", about 40 s left". Empty in the first 5
    /// s of each kind of work, and if the total is unknown.
    QString textFor(const Progress& now);

    /// Returns the same text for a number of seconds.
    static QString textFor(double seconds);

private:
    Progress first; // first report of the current kind of work
    QElapsedTimer since;
};
