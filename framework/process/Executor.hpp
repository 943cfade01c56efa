#pragma once

#include <framework/core/Api.hpp>

#include <cstddef>
#include <functional>

namespace orlix::imaproc
{

enum class ePriority
{
    eP_Low,
    eP_Normal,
    eP_High
};

/// A loop body over [begin, end), without the heap that std::function would take.
class RangeBody
{
public:
    template <class Body>
    explicit RangeBody(const Body& body)
        : body_{&body}, call_{[](const void* b, std::size_t begin, std::size_t end) {
              (*static_cast<const Body*>(b))(begin, end);
          }}
    {}
    void operator()(std::size_t begin, std::size_t end) const { call_(body_, begin, end); }

private:
    const void* body_;
    void (*call_)(const void*, std::size_t, std::size_t);
};

/// The one place where work meets threads. Every function may be called from any thread, also from inside a body. After
/// a fork() the child has none of the parent's threads: runs that were on are not there, and new ones stay on the
/// calling thread (asynchronous ones on one of their own).
namespace executor
{

/// Runs `body` over [0, count) in ranges of about `grain` elements, on at most settings::getNbThreads() threads, and
/// returns when all have run. One range, or one thread, runs on the calling thread. `body` throws nothing.
ORLIX_API void parallelFor(std::size_t count, std::size_t grain, ePriority priority, RangeBody body);

/// The same in ranges of `grain` that begin in their order, each when a thread is free: for what is best read from its
/// begin to its end.
ORLIX_API void parallelInOrder(std::size_t count, std::size_t grain, ePriority priority, RangeBody body);

/// Runs `task`, which throws nothing, on another thread and returns at once.
ORLIX_API void submit(ePriority priority, std::function<void()> task);

/// Returns when every submitted task has run and is gone.
ORLIX_API void waitForSubmitted();

} // namespace executor

} // namespace orlix::imaproc
