#include "readingthread.h"

#include "messageredirection.h"

#include <algorithm>
#include <utility>

ReadingThread::ReadingThread() : thread_([this] { run(); })
{
}

ReadingThread::~ReadingThread()
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ends_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void ReadingThread::post(std::deque<Work> &queue, Work work)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        queue.push_back(std::move(work));
    }
    changed_.notify_one();
}

void ReadingThread::postLong(Work work)
{
    post(long_, std::move(work));
}

void ReadingThread::postQuick(Work work)
{
    post(quick_, std::move(work));
}

ReadingThread::Work ReadingThread::takeQuick()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    if (quick_.empty())
        return {};
    Work work = std::move(quick_.front());
    quick_.pop_front();
    return work;
}

void ReadingThread::catchUp()
{
    while (const Work work = takeQuick())
        work();
}

void ReadingThread::run()
{
    const Silence silence; // what a file gives rise to is shown as its doubts
    for (;;) {
        Work work;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            changed_.wait(lock, [this] { return ends_ || !quick_.empty() || !long_.empty(); });
            std::deque<Work> &queue = quick_.empty() ? long_ : quick_;
            if (queue.empty())
                return;
            work = std::move(queue.front());
            queue.pop_front();
        }
        work();
    }
}
