#include <framework/process/ThreadPool.hpp>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>

namespace orlix::imaproc
{

namespace
{

/// Whether the thread that brings the work helps with it.
enum class Caller
{
    works,
    leaves
};

/// An arena bounds the threads of the work inside it, whatever else the host program does with oneTBB. Arenas stay,
/// even at the program's end: a run may still be inside when the setting changes or when main has returned.
tbb::task_arena& getArena(unsigned threads, ePriority priority, Caller caller)
{
    static std::mutex mutex;
    static auto& arenas = *new std::map<std::tuple<int, ePriority, Caller>, tbb::task_arena>;
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
    return arenas.try_emplace({slots, priority, caller}, slots, caller == Caller::works ? 1u : 0u, tbbPriority)
        .first->second;
}

} // namespace

ThreadPool& ThreadPool::getInstance()
{
    // oneTBB keeps one worker less than there are processors, counting on the caller; nobody helps an asynchronous run.
    static const auto* const oneMore = new tbb::global_control{
        tbb::global_control::max_allowed_parallelism, static_cast<std::size_t>(tbb::info::default_concurrency()) + 1};
    (void)oneMore; // for as long as the process lives
    static ThreadPool pool;
    return pool;
}

void ThreadPool::parallelFor(unsigned threads, std::size_t count, std::size_t grain, ePriority priority, RangeBody body)
{
    getArena(threads, priority, Caller::works).execute([&] {
        tbb::parallel_for(tbb::blocked_range<std::size_t>{0, count, grain},
                          [&](const tbb::blocked_range<std::size_t>& range) { body(range.begin(), range.end()); });
    });
}

void ThreadPool::submit(unsigned threads, ePriority priority, std::function<void()> task)
{
    getArena(threads, priority, Caller::leaves).enqueue(std::move(task));
}

} // namespace orlix::imaproc
