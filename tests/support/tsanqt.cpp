// What the thread sanitizer cannot see of the toolkit, which is not built with it: the order that
// its mutexes, semaphores, threads and queued signals put between two threads. Linked into every
// test of the tsan preset. Each function here stands before the toolkit's own of that name, calls
// it, and tells the sanitizer what it orders.

#include <QCoreApplication>
#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QVariant>

#include <dlfcn.h>

extern "C" {
void __tsan_acquire(void *);
void __tsan_release(void *);
void __tsan_ignore_thread_begin();
void __tsan_ignore_thread_end();
}

namespace {

template<typename Function>
Function *next(const char *symbol)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, symbol));
}

char queuedSignals; // stands for the queue of the GUI thread

bool onGuiThread()
{
    return !qApp || QThread::currentThread() == QCoreApplication::instance()->thread();
}

/// What a thread emitted happened before what the GUI thread does about it.
class Delivery : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *, QEvent *) override
    {
        __tsan_acquire(&queuedSignals);
        return false;
    }
};

void watchDelivery() { qApp->installEventFilter(new Delivery(qApp)); }
Q_COREAPP_STARTUP_FUNCTION(watchDelivery)

} // namespace

void QMetaObject::activate(QObject *sender, const QMetaObject *type, int signal, void **arguments)
{
    static const auto real = next<void(QObject *, const QMetaObject *, int, void **)>(
        "_ZN11QMetaObject8activateEP7QObjectPKS_iPPv");
    if (onGuiThread()) {
        real(sender, type, signal, arguments);
        return;
    }
    __tsan_release(&queuedSignals);
    // The copies of the arguments are made and handed over under the toolkit's own locks.
    __tsan_ignore_thread_begin();
    real(sender, type, signal, arguments);
    __tsan_ignore_thread_end();
}

/// The constructor of the base of every thread class of ours. The connection made here comes before
/// all others: what the run did happened before what anybody does on hearing that it is over.
extern "C" void constructThread(QThread *thread,
                                QObject *parent) __asm__("_ZN7QThreadC2EP7QObject");

void constructThread(QThread *thread, QObject *parent)
{
    static const auto real = next<void(QThread *, QObject *)>("_ZN7QThreadC2EP7QObject");
    real(thread, parent);
    QObject::connect(
        thread, &QThread::finished, thread, [] { __tsan_release(&queuedSignals); },
        Qt::DirectConnection);
}

void QThread::start(Priority priority)
{
    static const auto real = next<void(QThread *, Priority)>("_ZN7QThread5startENS_8PriorityE");
    if (!property("orderTold").toBool()) {
        setProperty("orderTold", true);
        // This one comes after the others: they happened before what follows a wait.
        connect(
            this, &QThread::finished, this, [this] { __tsan_release(this); }, Qt::DirectConnection);
    }
    real(this, priority);
}

bool QThread::wait(QDeadlineTimer deadline)
{
    static const auto real =
        next<bool(QThread *, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool ended = real(this, deadline);
    if (ended)
        __tsan_acquire(this);
    return ended;
}

bool QThread::wait(unsigned long ms)
{
    return wait(ms == ULONG_MAX ? QDeadlineTimer(QDeadlineTimer::Forever)
                                : QDeadlineTimer(qint64(ms)));
}

bool QThread::isRunning() const
{
    static const auto real = next<bool(const QThread *)>("_ZNK7QThread9isRunningEv");
    const bool running = real(this);
    if (!running)
        __tsan_acquire(const_cast<QThread *>(this));
    return running;
}

bool QThread::isFinished() const
{
    static const auto real = next<bool(const QThread *)>("_ZNK7QThread10isFinishedEv");
    const bool finished = real(this);
    if (finished)
        __tsan_acquire(const_cast<QThread *>(this));
    return finished;
}

void QMutex::lock()
{
    static const auto real = next<void(QMutex *)>("_ZN6QMutex4lockEv");
    real(this);
    __tsan_acquire(this);
}

bool QMutex::tryLock(int timeout)
{
    static const auto real = next<bool(QMutex *, int)>("_ZN6QMutex7tryLockEi");
    const bool locked = real(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QMutex::unlock()
{
    static const auto real = next<void(QMutex *)>("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    real(this);
}

void QSemaphore::acquire(int count)
{
    static const auto real = next<void(QSemaphore *, int)>("_ZN10QSemaphore7acquireEi");
    real(this, count);
    __tsan_acquire(this);
}

void QSemaphore::release(int count)
{
    static const auto real = next<void(QSemaphore *, int)>("_ZN10QSemaphore7releaseEi");
    __tsan_release(this);
    real(this, count);
}
