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

/// Runs `call` in the window's thread, waits for it and rethrows its exceptions. For boxes and questions of long work.
void inWindowThread(std::function<void()> call);

/// Runs one long work in a thread of its own, while the window still paints, moves and resizes. Input reaches only
/// `cancelButton`; Escape and closing a window act like that button. Boxes that the work shows through inWindowThread()
/// work as usual.
class LongWork : public QObject
{
    Q_OBJECT

public:
    explicit LongWork(QAbstractButton& cancelButton);
    ~LongWork() override;

    /// Runs the work and returns when it is done. Rethrows its exceptions, and Cancelled if it was cancelled. Short
    /// work looks like a plain call.
    void run(const std::function<void()>& work);

    /// Cancels the work at its next progress report.
    void cancel();

    bool isCancelled() const { return cancelled; }

    /// Returns the last reported progress.
    Progress query() const;

Q_SIGNALS:
    /// Emitted once the work has taken long enough to show its progress. From then on it can be cancelled.
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
    LongWork* const outer;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::optional<Call> wanted; // to be run in the window's thread
    bool isDone = false;
    Progress progress;
    std::atomic<bool> cancelled = false;
    QEventLoop loop;
};
