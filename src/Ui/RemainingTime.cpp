#include "Ui/RemainingTime.h"

#include <QObject>

#include <cmath>

// Starts again if the kind or the total changes, or if the count decreases, because that is other work. The pace of the
// first seconds is not shown, because it varies too much.
QString RemainingTime::textFor(const Progress& now)
{
    constexpr qint64 minElapsed = 5000; // milliseconds
    if (!since.isValid() || now.work != first.work || now.total != first.total || now.done < first.done) {
        first = now;
        since.start();
    }
    if (now.total == 0 || now.done <= first.done || now.done >= now.total || !since.hasExpired(minElapsed))
        return {};
    const double pace = double(now.done - first.done) / (double(since.elapsed()) / 1000);
    return textFor(double(now.total - now.done) / pace);
}

// Rounds up to steps, so that the text doesn't change all the time.
QString RemainingTime::textFor(double seconds)
{
    if (seconds < 90)
        return QObject::tr(", about %1 s left").arg(std::ceil(seconds / 5) * 5);
    if (seconds < 90 * 60)
        return QObject::tr(", about %1 min left").arg(std::ceil(seconds / 60));
    return QObject::tr(", about %1 h left").arg(std::ceil(seconds / 3600));
}
