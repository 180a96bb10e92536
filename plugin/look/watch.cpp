#include "watch.h"

#include <chrono>
#include <ctime>
#include <limits>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
#ifdef Q_OS_WIN
#include <windows.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using Clock = std::chrono::steady_clock;

MsLookLimits bounds;
Clock::time_point start;

double usedSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

#ifdef Q_OS_UNIX
// Bytes that the process has in memory; 0 on a system that doesn't tell. The largest amount so far, which
// getrusage knows, is no use: it counts what the process that this one was forked from had. Only calls
// that a signal handler may make.
qint64 usedMemory()
{
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (file == -1)
        return 0;
    char text[128];
    const ssize_t size = read(file, text, sizeof text);
    close(file);
    qint64 pages[2] = {0, 0}; // of the address space, in memory
    int place = 0;
    for (ssize_t i = 0; i < size && place < 2; ++i) {
        if (text[i] == ' ')
            ++place;
        else
            pages[place] = 10 * pages[place] + (text[i] - '0');
    }
    return pages[1] * sysconf(_SC_PAGESIZE);
}

// Called every few milliseconds of processor time. Nowhere else could a library be stopped that hangs or
// takes all memory. A limit of the system on memory wouldn't end the process: the library takes it for a
// file that can't be read, and what opens the file later has no such limit.
void onTick(int)
{
    const int error = errno;
    if (usedMemory() > bounds.memory)
        _exit(MsLookTooLarge);
    if (usedSeconds() > bounds.processor_seconds)
        _exit(MsLookTooLong);
    errno = error;
}

void startTicking()
{
    struct sigaction action = {};
    action.sa_handler = onTick;
    action.sa_flags = SA_RESTART;
    sigaction(SIGPROF, &action, nullptr);
    sigset_t ticks;
    sigemptyset(&ticks);
    sigaddset(&ticks, SIGPROF);
    sigprocmask(SIG_UNBLOCK, &ticks, nullptr); // the mask is that of the thread that started the process
    const timeval interval = {0, 5000};
    const itimerval timer = {interval, interval};
    setitimer(ITIMER_PROF, &timer, nullptr);
}
#endif

} // namespace

void watchProcess(const MsLookLimits &limits)
{
    bounds = limits;
    start = Clock::now();
#ifdef Q_OS_UNIX
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    startTicking();
#endif
#ifdef Q_OS_LINUX
    prctl(PR_SET_DUMPABLE, 0); // a program that collects crashes doesn't hear of one
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
#ifdef Q_OS_WIN
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
#endif
}

void fillMemory()
{
#ifdef __GLIBC__
    constexpr int freed = 0xa5; // and what comes anew is filled with the other bits
    mallopt(M_PERTURB, freed);
    // Blocks of packed numbers stay in the process when they are freed. The system needn't clear them
    // over and over again then, which saves more time than it takes to fill them.
    constexpr int largest = 1 << 25; // that glibc takes
    mallopt(M_MMAP_THRESHOLD, largest);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
}

bool isHalfTimeGone()
{
    const std::chrono::duration<double> passed = Clock::now() - start;
    const double half = bounds.processor_seconds / 2.0;
    // The clock first: to ask for the processor's time takes as long as to read a small scan.
    return passed.count() > half && (usedSeconds() > half || passed.count() > bounds.seconds / 2.0);
}
