// What is made of rows of pixels: parts of the statistics kernels, and the median.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Selection.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.hpp>

#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

namespace
{

template <class T, Domain::domain D>
T rowMedian(Run<T> run, unsigned char* scratch)
{
    using Group = KeyGroup<Key<T>, D>;
    constexpr std::size_t size = lanes<T, D> * Group::packs;
    auto* const groups = reinterpret_cast<Group*>(scratch + (64 - reinterpret_cast<std::uintptr_t>(scratch) % 64) % 64);
    std::size_t count = 0;
    const auto addGroup = [&](const T* pixels) __attribute__((always_inline))
    {
        for (std::size_t k = 0; k < Group::packs; ++k) {
            groups[count].keys[k] = toKeys<T>(load<Pack<T, D>>(pixels + k * lanes<T, D>));
        }
        ++count;
    };
    for (std::size_t i = 0; i + size <= run.size; i += size) {
        addGroup(run.pixels + i);
    }
    if (const std::size_t rest = run.size % size; rest != 0) {
        // Filled up with keys that come after all others, so that they change no rank.
        T filled[size];
        for (T& pixel : filled) {
            pixel = toPixel<T>(highestOf<Key<T>>);
        }
        __builtin_memcpy(filled, run.pixels + run.size - rest, rest * sizeof(T));
        addGroup(filled);
    }
    const Group middle = selectKeys<Key<T>, D, Ranking::ofAll>(groups, count, run.size / 2,
                                                               reinterpret_cast<Pack<signed char, D>*>(groups + count));
    T median[lanes<T, D>];
    const auto pixels = toPixels<T>(middle.keys[0]);
    __builtin_memcpy(median, &pixels, sizeof median);
    return median[0];
}

/// The kernels of one type of a vector set.
template <class T, Domain::domain D>
constexpr RowKernel<T> rowKernel{&accumulate<Run<T>, D, Figures::Sum>, &accumulate<Run<T>, D, Figures::Sums>,
                                 &accumulate<Run<T>, D, Figures::Extremes>, &rowMedian<T, D>};

template <Domain::domain D>
constexpr RowKernels everyRowKernel{
    {rowKernel<unsigned char, D>}, {rowKernel<signed char, D>}, {rowKernel<unsigned short, D>}, {rowKernel<short, D>},
    {rowKernel<unsigned int, D>},  {rowKernel<int, D>},         {rowKernel<float, D>}};

} // namespace

} // namespace orlix::imaproc::glbmsr
