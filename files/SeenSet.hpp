#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace orlix::files
{

/// Which of so many things were there, as any number of threads meet them; of too many things, how often they were.
class SeenSet
{
public:
    explicit SeenSet(std::uint64_t size = 0) : size_{size} {}

    void add(std::uint64_t i, std::uint64_t weight = 1)
    {
        constexpr std::uint64_t most = std::uint64_t{1} << 29;
        if (size_ <= most) {
            const std::lock_guard lock{mutex_};
            seen_.resize(size_);
            if (seen_[i]) {
                return;
            }
            seen_[i] = true;
        }
        sum_ += weight;
    }
    /// The weights of all that were seen.
    std::uint64_t getSum() const { return sum_; }

private:
    std::uint64_t size_;
    std::mutex mutex_;
    std::vector<bool> seen_;
    std::atomic<std::uint64_t> sum_{0};
};

} // namespace orlix::files
