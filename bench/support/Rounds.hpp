#pragma once

#include <framework/core/Settings.hpp>
#include <framework/process/Executor.hpp>
#include <support/Read.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>

/// Benchmarks compare within one run, since the machine may be shared: every round times the plain read of the buffer,
/// the measure and its peer one after the other, and the best round of each counts.
namespace orlix::bench
{

/// The best time, in seconds, of what is run again and again.
class BestTime
{
public:
    template <class Work>
    double run(Work work, int repeats)
    {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < repeats; ++i) {
            work();
        }
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        best_ = std::min(best_, time.count() / repeats);
        return time.count() / repeats;
    }
    double get() const { return best_; }

private:
    double best_ = std::numeric_limits<double>::infinity();
};

/// Reads the buffer with as many threads as measures use.
inline void readWithAllThreads(const std::byte* bytes, std::size_t size)
{
    const std::size_t threads = core::settings::getNbThreads();
    const std::size_t part = size / threads / 128 * 128;
    const auto body = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            benchmark::DoNotOptimize(readBytes(bytes + i * part, part));
        }
    };
    imaproc::executor::parallelFor(threads, 1, imaproc::ePriority::eP_Normal, imaproc::RangeBody{body});
}

/// Times the read of `size` bytes, the measure and, where there is one, its peer. Counters: GB/s of the measure, its
/// share of the read bandwidth, and how many times faster than the peer it is.
template <class Measure, class Peer>
void compare(benchmark::State& state, const std::byte* bytes, std::size_t size, Measure measure, Peer peer,
             bool hasPeer)
{
    const int repeats = static_cast<int>(std::max<std::size_t>(1, (std::size_t{4} << 20) / size));
    BestTime read;
    BestTime measured;
    BestTime peers;
    for (auto _ : state) {
        read.run([&] { readWithAllThreads(bytes, size); }, repeats);
        state.SetIterationTime(measured.run(measure, repeats));
        if (hasPeer) {
            peers.run(peer, repeats);
        }
    }
    state.counters["GB/s"] = static_cast<double>(size) / measured.get() / 1e9;
    state.counters["read"] = static_cast<double>(size) / read.get() / 1e9;
    state.counters["share"] = read.get() / measured.get();
    if (hasPeer) {
        state.counters["x_peer"] = peers.get() / measured.get();
    }
}

/// Buffer sizes that fit the L2 cache, the L3 cache and neither; one thread and all.
inline void sizesAndThreads(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"bytes", "threads"})
        ->ArgsProduct({{256 << 10, 8 << 20, 512 << 20}, {1, 0}})
        ->Iterations(15)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace orlix::bench
