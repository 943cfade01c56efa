// What is made of rows of pixels: parts of the statistics kernels, and the median.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.hpp>
#include <framework/kernel/RankSelection.hpp>

#include "../Stats/StatsKernels.inl"

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

namespace
{

template <class T>
T rowMedianGeneric(Run<T> run, unsigned char* scratch)
{
    auto* const keys = reinterpret_cast<Key<T>*>(scratch);
    for (std::size_t i = 0; i < run.size; ++i) {
        keys[i] = toKey(run.pixels[i]);
    }
    std::nth_element(keys, keys + run.size / 2, keys + run.size);
    return toPixel<T>(keys[run.size / 2]);
}

template <Domain::domain D>
constexpr RowKernels rowKernels = makeKernels<RowKernel, D>([]<class T>(std::type_identity<T>) {
    RowKernel<T> kernel{&accumulate<Run<T>, D, Figures::Sum>, &accumulate<Run<T>, D, Figures::Sums>,
                        &accumulate<Run<T>, D, Figures::Extremes>, nullptr};
    if constexpr (D == Domain::eIS_Generic) {
        kernel.median = &rowMedianGeneric<T>;
    } else if constexpr (D != Domain::eIS_AVX) {
        kernel.median = &medianOfRow<T, D>;
    }
    return kernel;
});

} // namespace

} // namespace orlix::imaproc::glbmsr
