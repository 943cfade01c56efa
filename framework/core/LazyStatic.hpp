#pragma once

#include <framework/core/Mutex.hpp>

#include <atomic>
#include <mutex>
#include <optional>

namespace orlix::core
{

/// A value built on first use, under the process-wide mutex of its kind; afterwards it is read without a lock.
template <class T>
class LazyStatic
{
public:
    template <class Build>
    const T& get(Mutex& mutex, Build build)
    {
        if (!built_.load(std::memory_order_acquire)) {
            const std::lock_guard lock{mutex};
            if (!built_.load(std::memory_order_relaxed)) {
                value_.emplace(build());
                built_.store(true, std::memory_order_release);
            }
        }
        return *value_;
    }

private:
    std::atomic<bool> built_{false};
    std::optional<T> value_;
};

} // namespace orlix::core
