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

/// Calls something in the window's thread and waits for it; what it raises is raised here. For what work shows and
/// asks.
void inWindowThread(std::function<void()> call);

/// Does one long work in a thread of its own, while the window goes on to paint, to move and to change its size. What
/// the user does meanwhile with any window reaches nothing but `cancelButton`; Escape and closing a window do what that
/// does. The boxes that the work raises by inWindowThread() are used as ever.
class LongWork : public QObject
{
    Q_OBJECT

public:
    explicit LongWork(QAbstractButton& cancelButton);
    ~LongWork() override;

    /// Returns when the work is done; what it raises is raised here, Cancelled where it was cancelled. Work that is
    /// done at once is done as if it had been called.
    void run(const std::function<void()>& work);

    /// Has the work end as soon as it next tells how far it has come.
    void cancel();

    bool isCancelled() const { return cancelled; }

    /// How far the work has come.
    Progress query() const;

Q_SIGNALS:
    /// The work takes long enough to be shown; from now on it can be cancelled.
    void lasts();

    /// Some time has passed since.
    void goesOn();

protected:
    bool eventFilter(QObject* target, QEvent* event) override;

private:
    friend void inWindowThread(std::function<void()> call);
    using Call = std::packaged_task<void()>;

    std::exception_ptr attempt(const std::function<void()>& work);
    bool note(const Progress& progress);
    void waitAtHand();
    void waitInLoop();
    void serve();
    bool isOver() const;
    bool mayPass(const QObject* target, const QEvent& event) const;

    QAbstractButton& cancelButton;
    LongWork* const outer;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::optional<Call> wanted; // in the window's thread
    bool isDone = false;
    Progress progress;
    std::atomic<bool> cancelled = false;
    QEventLoop loop;
};
