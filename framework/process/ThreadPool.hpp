#pragma once

#include <framework/process/Executor.hpp>

#include <cstddef>
#include <functional>

namespace orlix::imaproc
{

/// The threads behind the executor: oneTBB's, or plain ones in the build for the thread sanitizer, which cannot see
/// into oneTBB. CMake compiles one of ThreadPoolTbb.cpp and ThreadPoolStd.cpp.
class ThreadPool
{
public:
    static ThreadPool& getInstance();

    void parallelFor(unsigned threads, std::size_t count, std::size_t grain, ePriority priority, RangeBody body);
    void submit(unsigned threads, ePriority priority, std::function<void()> task);
};

} // namespace orlix::imaproc
