#include <framework/process/Executor.hpp>

#include <framework/core/Settings.hpp>
#include <framework/process/ThreadPool.hpp>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace orlix::imaproc::executor
{

namespace
{

/// Counts the tasks between submission and their end.
class Submitted
{
public:
    void add()
    {
        const std::lock_guard lock{mutex_};
        ++tasks_;
    }
    void remove()
    {
        const std::lock_guard lock{mutex_};
        --tasks_;
        none_.notify_all();
    }
    void wait()
    {
        std::unique_lock lock{mutex_};
        none_.wait(lock, [this] { return tasks_ == 0; });
    }

private:
    std::mutex mutex_;
    std::condition_variable none_;
    std::size_t tasks_ = 0;
};

Submitted& submitted = *new Submitted; // libraries that unload at the program's end wait for it

} // namespace

void parallelFor(std::size_t count, std::size_t grain, ePriority priority, RangeBody body)
{
    const unsigned threads = core::settings::getNbThreads();
    if (count <= grain || threads == 1) {
        if (count != 0) {
            body(0, count);
        }
        return;
    }
    ThreadPool::getInstance().parallelFor(threads, count, std::max<std::size_t>(1, grain), priority, body);
}

void submit(ePriority priority, std::function<void()> task)
{
    submitted.add();
    try {
        ThreadPool::getInstance().submit(core::settings::getNbThreads(), priority, [task = std::move(task)]() mutable {
            task();
            task = nullptr; // what it holds goes before it counts as gone
            submitted.remove();
        });
    } catch (...) {
        submitted.remove();
        throw;
    }
}

void waitForSubmitted()
{
    submitted.wait();
}

} // namespace orlix::imaproc::executor
