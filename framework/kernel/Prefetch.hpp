#pragma once

#include <framework/kernel/Pack.hpp>

#include <framework/core/Prefetch.hpp>

namespace orlix::imaproc
{

namespace
{

/// Asks for the memory that a loop over contiguous pixels will read soon. It never faults, whatever lies there.
class Prefetch
{
public:
    /// For loops over so many bytes; short ones are over before it would help.
    ORLIX_KERNEL explicit Prefetch(std::size_t bytes) : ahead_{bytes < 4096 ? 0 : core::prefetchDistance} {}

    /// For a step of the loop that reads `Bytes` at `at`.
    template <std::size_t Bytes, class T>
    ORLIX_KERNEL void step(const T* at) const
    {
        constexpr std::size_t line = 64;
        if (ahead_ == 0) {
            return;
        }
#pragma GCC unroll 8
        for (std::size_t i = 0; i < Bytes; i += line) {
            _mm_prefetch(reinterpret_cast<const char*>(at) + ahead_ + i, _MM_HINT_T0);
        }
    }

    /// The same for `Pixels` pixels of a run, and their mask.
    template <std::size_t Pixels, class R>
    ORLIX_KERNEL void stepOf(const R& run, std::size_t i) const
    {
        step<Pixels * sizeof(typename R::Pixel)>(run.pixels + i);
        if constexpr (R::isMasked) {
            step<Pixels>(run.mask + i);
        }
    }

    ORLIX_KERNEL bool isOn() const
    {
        return ahead_ != 0;
    }

private:
    std::ptrdiff_t ahead_;
};

/// The same for a loop that reads several rows side by side.
struct PrefetchRows
{
    Prefetch prefetch;

    template <std::size_t Bytes, std::size_t Rows, class T>
    ORLIX_KERNEL void step(const T* const* rows, std::size_t x) const
    {
#pragma GCC unroll 8
        for (std::size_t r = 0; r < Rows; ++r) {
            prefetch.step<Bytes>(rows[r] + x);
        }
    }
};
struct PrefetchNothing
{
    template <std::size_t Bytes, std::size_t Rows, class T>
    ORLIX_KERNEL void step(const T* const*, std::size_t) const
    {}
};

/// Calls `loop` with one or the other: compilers do not take the choice out of loops over rows.
template <class Loop>
ORLIX_KERNEL void choosePrefetch(std::size_t bytes, Loop loop)
{
    const Prefetch prefetch{bytes};
    if (prefetch.isOn()) {
        loop(PrefetchRows{prefetch});
    } else {
        loop(PrefetchNothing{});
    }
}

} // namespace

} // namespace orlix::imaproc
