#include <framework/process/Executor.hpp>

#include <framework/core/Settings.hpp>
#include <framework/process/ThreadPool.hpp>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include <pthread.h>

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

Submitted* submitted = new Submitted; // libraries that unload at the program's end wait for it

std::atomic<bool> isPoolUsed{false};
/// Set in a process that was forked from one whose pool had threads: it has none of them.
std::atomic<bool> hasLostPool{false};

[[maybe_unused]] const int watchForks = ::pthread_atfork(nullptr, nullptr, [] {
    hasLostPool = isPoolUsed.load();
    submitted = new Submitted; // what the parent waits for does not run here
});

} // namespace

void parallelFor(std::size_t count, std::size_t grain, ePriority priority, RangeBody body)
{
    const unsigned threads = core::settings::getNbThreads();
    if (count <= grain || threads == 1 || hasLostPool) {
        if (count != 0) {
            body(0, count);
        }
        return;
    }
    isPoolUsed = true;
    ThreadPool::getInstance().parallelFor(threads, count, std::max<std::size_t>(1, grain), priority, body);
}

void parallelInOrder(std::size_t count, std::size_t grain, ePriority priority, RangeBody body)
{
    std::atomic<std::size_t> next{0};
    const auto work = [&](std::size_t, std::size_t) {
        for (std::size_t begin = next.fetch_add(grain); begin < count; begin = next.fetch_add(grain)) {
            body(begin, std::min(count, begin + grain));
        }
    };
    const std::size_t ranges = count / grain + (count % grain != 0 ? 1 : 0);
    parallelFor(std::min<std::size_t>(ranges, core::settings::getNbThreads()), 1, priority, RangeBody{work});
}

void submit(ePriority priority, std::function<void()> task)
{
    Submitted* const counter = submitted;
    counter->add();
    try {
        auto counted = [task = std::move(task), counter]() mutable {
            task();
            task = nullptr; // what it holds goes before it counts as gone
            counter->remove();
        };
        if (hasLostPool) {
            std::thread{std::move(counted)}.detach();
        } else {
            isPoolUsed = true;
            ThreadPool::getInstance().submit(core::settings::getNbThreads(), priority, std::move(counted));
        }
    } catch (...) {
        counter->remove();
        throw;
    }
}

void waitForSubmitted()
{
    submitted->wait();
}

} // namespace orlix::imaproc::executor
