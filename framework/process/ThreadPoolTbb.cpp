#include <framework/process/ThreadPool.hpp>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace orlix::imaproc
{

namespace
{

/// An arena bounds the threads of the work inside it, whatever else the host program does with oneTBB. Arenas stay: a
/// run may still be inside when the setting changes.
tbb::task_arena& getArena(unsigned threads, ePriority priority)
{
    static std::mutex mutex;
    static std::map<std::pair<int, ePriority>, tbb::task_arena> arenas;
    const auto tbbPriority = [&] {
        switch (priority) {
        case ePriority::eP_Low:
            return tbb::task_arena::priority::low;
        case ePriority::eP_High:
            return tbb::task_arena::priority::high;
        default:
            return tbb::task_arena::priority::normal;
        }
    }();
    // More threads than processors would gain nothing, and oneTBB would complain on standard error.
    const int slots = std::min(static_cast<int>(threads), tbb::info::default_concurrency());
    const std::lock_guard lock{mutex};
    return arenas.try_emplace({slots, priority}, slots, 1u, tbbPriority).first->second;
}

} // namespace

ThreadPool& ThreadPool::getInstance()
{
    static ThreadPool pool;
    return pool;
}

void ThreadPool::parallelFor(unsigned threads, std::size_t count, std::size_t grain, ePriority priority, RangeBody body)
{
    getArena(threads, priority).execute([&] {
        tbb::parallel_for(tbb::blocked_range<std::size_t>{0, count, grain},
                          [&](const tbb::blocked_range<std::size_t>& range) { body(range.begin(), range.end()); });
    });
}

void ThreadPool::submit(unsigned threads, ePriority priority, std::function<void()> task)
{
    getArena(threads, priority).enqueue(std::move(task));
}

} // namespace orlix::imaproc
