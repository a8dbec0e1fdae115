#pragma once

#include "Base/Progress.h"

#include <QEventLoop>
#include <QObject>

#include <atomic>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <optional>

class QAbstractButton;

/// Runs `call` in the window's thread, waits for it and rethrows its exceptions. For boxes and questions of long work,
/// because widgets may only be used in that thread. In the window's thread, or while no work runs, it is a plain call.
void inWindowThread(std::function<void()> call);

/// Runs one long work in a thread of its own, while the window still paints, moves and resizes. Input reaches only
/// `cancelButton`; Escape and closing a window act like that button. Boxes that the work shows through inWindowThread()
/// work as usual.
///
/// Created and used in the window's thread. The caller waits in run(), so the work may use its variables. Timers and
/// resize events still come, so the work must not set members that their handlers read.
class LongWork : public QObject
{
    Q_OBJECT

public:
    /// `cancelButton` must outlive the object. The object only lets its input through; the caller connects its click to
    /// cancel().
    explicit LongWork(QAbstractButton& cancelButton);
    ~LongWork() override;

    /// Runs the work and returns when it is done. Rethrows its exceptions, and Cancelled if it was cancelled. Short
    /// work looks like a plain call.
    void run(const std::function<void()>& work);

    /// Cancels the work at its next progress report; returns at once. Work that doesn't report isn't ended.
    void cancel();

    /// Returns whether cancel() was called. The work may still run, or have ended before it noticed.
    bool isCancelled() const { return cancelled; }

    /// Returns the last reported progress; before the first report, Work::waiting without counts.
    Progress query() const;

Q_SIGNALS:
    /// Emitted once the work has taken long enough to show its progress. From then on it can be cancelled. Until then
    /// input is queued, so a click that was meant for the page reaches the page after short work.
    void becameVisible();

    /// Emitted regularly afterwards, and when the work is cancelled.
    void progressed();

protected:
    bool eventFilter(QObject* target, QEvent* event) override;

private:
    friend void inWindowThread(std::function<void()> call);
    using Call = std::packaged_task<void()>;

    std::exception_ptr attempt(const std::function<void()>& work);
    bool note(const Progress& progress);
    void waitBriefly();
    void waitInLoop();
    void serve();
    bool isFinished() const;
    bool isAllowed(const QObject* target, const QEvent& event) const;

    QAbstractButton& cancelButton;
    LongWork* const outer;           // the current work before this one, restored at the end
    mutable std::mutex mutex;        // guards `wanted`, `isDone` and `progress`
    std::condition_variable changed; // wakes waitBriefly()
    std::optional<Call> wanted;      // to be run in the window's thread
    bool isDone = false;
    Progress progress;
    std::atomic<bool> cancelled = false;
    QEventLoop loop; // the window's, while it waits for the work
};
