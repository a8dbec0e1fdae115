#include "Ui/LongWork.h"

#include "Ui/SideWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The window's thread waits in two ways, one after the other. For the first 50 ms it waits for a condition variable, so
// that most work, which is short, has no side effects: no event is handled, and nothing flickers. Then it runs an event
// loop. In both it takes calls of the work (inWindowThread()): the work puts one into `wanted`, wakes the window's
// thread and waits for the call's future. There is one call at a time, because the work waits for each.
//
// The work's thread wakes the window's thread in both ways, because it doesn't know how that waits. A wake-up without
// anything to do is harmless. A queued event that is posted before the loop runs is delivered when it runs, so none is
// missed.
namespace {

constexpr milliseconds kBriefly(50); // too short for the user to notice
constexpr milliseconds kShown(500);  // after this time, progress is shown
constexpr milliseconds kRefresh(100);

// Needs no lock: it is set while no work runs, or while the outer work waits for a call.
LongWork* current = nullptr; // set in the window's thread, read there and in the work's

// Returns whether an event is the user's. Paint, resize, timer and focus events are not among them.
bool isInput(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::NativeGesture:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

bool isEscape(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
        return static_cast<const QKeyEvent&>(event).key() == Qt::Key_Escape;
    case QEvent::Shortcut:
        return static_cast<const QShortcutEvent&>(event).key() == QKeySequence(Qt::Key_Escape);
    default:
        return false;
    }
}

// Returns whether an object belongs to a window beside the wizard that has no owner, such as the help. Windows with an
// owner can show, and change, what the work uses.
bool isIndependent(const QObject* object)
{
    while (object->parent())
        object = object->parent();
    return dynamic_cast<const SideWindow*>(object) != nullptr;
}

// Returns whether an event may reach a button: any but a key that doesn't press it, because other keys move the focus
// away.
bool pressesButton(const QEvent& event)
{
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease)
        return true;
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

} // namespace

// The task passes an exception of `call` to the future, whose get() throws it in the work.
void inWindowThread(std::function<void()> call)
{
    LongWork* const work = current;
    if (!work || QThread::currentThread() == work->thread())
        return call();
    LongWork::Call task(std::move(call));
    std::future<void> answer = task.get_future();
    {
        const std::lock_guard lock(work->mutex);
        work->wanted = std::move(task);
    }
    work->changed.notify_one();
    QMetaObject::invokeMethod(work, &LongWork::serve, Qt::QueuedConnection);
    answer.get();
}

LongWork::LongWork(QAbstractButton& cancelButton) : cancelButton(cancelButton), outer(std::exchange(current, this)) {}

LongWork::~LongWork()
{
    current = outer;
}

// The progress handler is process-wide and may only be changed while no work runs. The join orders all writes of the
// work before the caller continues.
void LongWork::run(const std::function<void()>& work)
{
    const ProgressHandler before = setProgressHandler([this](const Progress& now) { return note(now); });
    std::exception_ptr raised;
    std::thread worker([&] { raised = attempt(work); });
    waitBriefly();
    waitInLoop();
    worker.join();
    setProgressHandler(before);
    if (raised)
        std::rethrow_exception(raised);
}

// Runs in the thread of the work. Catches everything, Cancelled included, because an exception that leaves a thread
// ends the program.
std::exception_ptr LongWork::attempt(const std::function<void()>& work)
{
    std::exception_ptr raised;
    try {
        work();
    } catch (...) {
        raised = std::current_exception();
    }
    {
        const std::lock_guard lock(mutex);
        isDone = true;
    }
    changed.notify_one();
    QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    return raised;
}

// Runs in the thread of the work. Only stores the progress; the window's thread shows it when its timer fires.
bool LongWork::note(const Progress& now)
{
    const std::lock_guard lock(mutex);
    progress = now;
    return !cancelled;
}

Progress LongWork::query() const
{
    const std::lock_guard lock(mutex);
    return progress;
}

// Emits the signal at once, so that the row shows "Cancelling ..." before the work has noticed.
void LongWork::cancel()
{
    cancelled = true;
    Q_EMIT progressed();
}

// Waits a short time without an event loop, so that short work behaves like a plain call.
void LongWork::waitBriefly()
{
    const auto end = steady_clock::now() + kBriefly;
    std::unique_lock lock(mutex);
    while (changed.wait_until(lock, end, [this] { return isDone || wanted; }) && !isDone) {
        lock.unlock();
        serve();
        lock.lock();
    }
}

// Waits in an event loop. Input stays queued until the progress is shown; from then on the event filter drops it. The
// loop is left and entered again at that moment, because its flags can't change while it runs.
void LongWork::waitInLoop()
{
    if (isFinished())
        return;
    qApp->installEventFilter(this);
    QTimer refresh;
    connect(&refresh, &QTimer::timeout, this, &LongWork::progressed);
    QTimer::singleShot(kShown - kBriefly, &refresh, [&] {
        Q_EMIT becameVisible();
        refresh.start(kRefresh);
        loop.quit();
    });
    // Qt keeps user input queued until then (ExcludeUserInputEvents).
    while (!isFinished())
        loop.exec(refresh.isActive() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
    if (refresh.isActive())
        QCoreApplication::processEvents(); // drops input meant for the work
    qApp->removeEventFilter(this);
}

// Takes the call out of `wanted` before running it: the call can show a box with an event loop, in which this function
// is called again.
void LongWork::serve()
{
    std::optional<Call> call;
    {
        const std::lock_guard lock(mutex);
        call.swap(wanted);
    }
    if (call)
        (*call)();
}

// Returns whether the work has ended. Its thread may take a moment more, so run() joins it.
bool LongWork::isFinished() const
{
    const std::lock_guard lock(mutex);
    return isDone;
}

// Returns whether an input event may reach its target. While the work shows a box, everything in the box's window
// works, and in its popups, such as the context menu of a text.
bool LongWork::isAllowed(const QObject* target, const QEvent& event) const
{
    if (isIndependent(target))
        return true;
    const QWidget* const box = QApplication::activeModalWidget(); // shown by the work
    if (!box)
        return target == &cancelButton && pressesButton(event);
    if (!target->isWidgetType())
        return true;
    const QWidget* const window = static_cast<const QWidget*>(target)->window();
    return window == box || window->windowType() == Qt::Popup;
}

// Filters events of widgets and shortcuts. Native windows pass their events on to widgets, so those come by here again.
// The application's filter sees the events of all windows, so windows that the wizard owns are blocked, too.
bool LongWork::eventFilter(QObject* target, QEvent* event)
{
    const bool isRelevant = target->isWidgetType() || event->type() == QEvent::Shortcut;
    if (!isRelevant || !isInput(*event) || isAllowed(target, *event))
        return false;
    if (event->type() == QEvent::Close || isEscape(*event))
        cancel();
    // An accepted ShortcutOverride would give the key to a widget instead of the button.
    static constexpr QEvent::Type declined[] = {QEvent::Close, QEvent::DragEnter, QEvent::ShortcutOverride};
    event->setAccepted(std::find(std::begin(declined), std::end(declined), event->type()) == std::end(declined));
    return true;
}
