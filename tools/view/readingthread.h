// The one thread on which runs are read. The toolkit takes one call at a time, whatever the file, so all
// reading of a process happens here, and its window stays free. HDF5, under netCDF, keeps quiet only on
// the thread that used it first, so a process has one such thread.
#ifndef READINGTHREAD_H
#define READINGTHREAD_H

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

class ReadingThread
{
public:
    using Work = std::function<void()>;

    ReadingThread();
    // Ends after the work that waits. Who owns that work cancels it first. Returns when the
    // thread is gone, with what libraries keep for it; QThread's wait() would return before that.
    ~ReadingThread();
    ReadingThread(const ReadingThread &) = delete;
    ReadingThread &operator=(const ReadingThread &) = delete;

    // Long work waits for the long work before it; quick work comes in between, see catchUp().
    void postLong(Work work);
    void postQuick(Work work);

    // Does the quick work that waits. Long work calls it now and then, on this thread.
    void catchUp();

private:
    void run();
    void post(std::deque<Work> &queue, Work work);
    Work takeQuick();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> long_;
    std::deque<Work> quick_;
    bool ends_ = false;
    std::thread thread_; // the last, as it uses the others
};

// Stops long work: who asked for it keeps one copy, the work has another.
class Ticket
{
public:
    void cancel() { *isCancelled_ = true; }
    bool isCancelled() const { return *isCancelled_; }

private:
    std::shared_ptr<std::atomic<bool>> isCancelled_ = std::make_shared<std::atomic<bool>>(false);
};

#endif // READINGTHREAD_H
