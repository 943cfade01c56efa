#include <framework/process/ThreadPool.hpp>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace orlix::imaproc
{

ThreadPool& ThreadPool::getInstance()
{
    static ThreadPool pool;
    return pool;
}

void ThreadPool::parallelFor(unsigned threads, std::size_t count, std::size_t grain, ePriority, RangeBody body)
{
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t begin = next.fetch_add(grain); begin < count; begin = next.fetch_add(grain)) {
            body(begin, std::min(count, begin + grain));
        }
    };
    std::vector<std::thread> workers;
    const std::size_t ranges = (count + grain - 1) / grain;
    for (std::size_t i = 1; i < std::min<std::size_t>(threads, ranges); ++i) {
        workers.emplace_back(work);
    }
    work();
    for (std::thread& worker : workers) {
        worker.join();
    }
}

void ThreadPool::submit(unsigned, ePriority, std::function<void()> task)
{
    std::thread{std::move(task)}.detach();
}

} // namespace orlix::imaproc
