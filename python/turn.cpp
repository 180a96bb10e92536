#include "turn.h"

#include "texts.h"

#include "messageloggerinterface.h"
#include "messagetext.h"

#include <QVector>

#include <atomic>
#include <chrono>
#include <mutex>
#include <new>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int mostMessages = 1000; // of one turn, as a damaged file can make any number

std::mutex mutex;
std::atomic<std::thread::id> owner{};
int depth = 0;                       // turns of the owner
std::atomic<std::thread::id> last{}; // the thread that ends the interpreter
std::atomic<int> deliveries{0};      // that threads are at without having the turn
int leftOut = 0;

struct Message {
    MessageLoggerInterface::Level level;
    QString text;
};
QVector<Message> messages; // of the owner's turns so far

void keep(MessageLoggerInterface::Level level, const QString &text)
{
    if (level == MessageLoggerInterface::Level::Debug)
        return;
    if (messages.size() < mostMessages)
        messages += {level, plainText(text)};
    else
        ++leftOut;
}

// A child process has only the thread that made it. Another one whose turn it was is gone, and may have
// been in the middle of a message.
void startAnew()
{
    deliveries = 0;
    if (owner == std::this_thread::get_id())
        return;
    new (&mutex) std::mutex;
    new (&messages) QVector<Message>;
    owner = std::thread::id();
    depth = 0;
    leftOut = 0;
}

// What fails in the logger is no failure of the call. Ctrl-C isn't lost: it comes again.
void deliver(const QVector<Message> &said, int others)
{
    py::error_scope kept; // a call that fails has set an error of its own
    try {
        const py::object log = py::module_::import("logging").attr("getLogger")("aiams");
        for (const Message &message : said) {
            const bool isError = message.level == MessageLoggerInterface::Level::Error;
            log.attr(isError ? "warning" : "info")("%s", pythonText(message.text));
        }
        if (others > 0)
            log.attr("warning")("%d more messages were left out.", others);
    } catch (py::error_already_set &failure) {
        if (failure.matches(PyExc_KeyboardInterrupt))
            PyErr_SetInterrupt();
        else
            failure.discard_as_unraisable("aiams");
    }
}

// At its end, Python stops the threads that are left, such as daemons, where they ask for its lock. In
// the middle of C++ that ends the process, so all calls come to their end before, and none begins.
void endTurns()
{
    last = std::this_thread::get_id();
    static const Turn *const kept = new Turn;
    static_cast<void>(kept);
    constexpr int mostWaits = 5000; // as a handler of the logger may never return
    for (int i = 0; i < mostWaits && deliveries > 0; ++i) {
        const py::gil_scoped_release others;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

[[noreturn]] void waitForTheEnd()
{
    PyEval_SaveThread();
    while (true)
        pause();
}

} // namespace

Turn::Turn()
{
    const std::thread::id self = std::this_thread::get_id();
    if (owner != self) {
        if (last != std::thread::id() && last != self)
            waitForTheEnd();
        if (!mutex.try_lock()) {
            const py::gil_scoped_release others;
            mutex.lock();
        }
        owner = self;
    }
    ++depth;
}

Turn::~Turn()
{
    if (--depth > 0)
        return;
    const QVector<Message> said = std::exchange(messages, {});
    const int others = std::exchange(leftOut, 0);
    owner = std::thread::id();
    ++deliveries;
    mutex.unlock();
    if (!said.isEmpty())
        deliver(said, others);
    --deliveries;
}

Unlocked::Unlocked(bool allowed) : state(allowed ? PyEval_SaveThread() : nullptr)
{
}

Unlocked::~Unlocked()
{
    if (state)
        PyEval_RestoreThread(state);
}

void Unlocked::checkSignals()
{
    const bool wasUnlocked = state != nullptr;
    if (wasUnlocked)
        PyEval_RestoreThread(std::exchange(state, nullptr));
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
    if (wasUnlocked)
        state = PyEval_SaveThread();
}

void prepareTurns()
{
    pthread_atfork(nullptr, nullptr, startAnew);
    MessageLoggerInterface::setReceiver(keep);
    py::module_::import("atexit").attr("register")(py::cpp_function(endTurns));
}
