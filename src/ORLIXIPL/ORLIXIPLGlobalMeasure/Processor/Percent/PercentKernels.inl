// Sums, largest values and masked values of binary and label images, once for every pixel type and instruction set.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/PercentKernels.hpp>
#include <framework/kernel/Prefetch.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// The sum of the pixels that count.
template <Domain::domain D, class R>
std::uint64_t sum(R run)
{
    std::uint64_t total = 0;
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using Bytes = Pack<std::uint8_t, D>;
        const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
        Pack<std::uint64_t, D> sums{};
        for (; i + sizeof(Bytes) <= run.size; i += sizeof(Bytes)) {
            prefetch.stepOf<sizeof(Bytes)>(run, i);
            Bytes x = load<Bytes>(run.pixels + i);
            if constexpr (R::isMasked) {
                x = keep(loadLaneMask<std::uint8_t, D>(run.mask + i), x);
            }
            sums += addBytes<D>(x);
        }
        total = addLanes<std::uint64_t, std::uint64_t>(sums);
    }
    for (; i < run.size; ++i) {
        total += isSelected(run, i) ? run.pixels[i] : 0;
    }
    return total;
}

template <class T, Domain::domain D>
std::uint32_t largest(Run<T> run)
{
    T label = 0;
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using P = Pack<T, D>;
        constexpr std::size_t step = lanes<T, D>;
        const Prefetch prefetch{run.size * sizeof(run.pixels[0])};
        P packs[4] = {};
        for (; i + 4 * step <= run.size; i += 4 * step) {
            prefetch.stepOf<4 * step>(run, i);
            for (std::size_t k = 0; k < 4; ++k) {
                packs[k] = imaproc::maximum(packs[k], load<P>(run.pixels + i + k * step));
            }
        }
        label = maximumLane<T>(
            imaproc::maximum(imaproc::maximum(packs[0], packs[1]), imaproc::maximum(packs[2], packs[3])));
    }
    for (; i < run.size; ++i) {
        label = label < run.pixels[i] ? run.pixels[i] : label;
    }
    return label;
}

/// The compiler widens and selects in vectors of the file's instruction set.
template <class T>
void select(MaskedRun<T> run, std::uint32_t* __restrict labels)
{
    for (std::size_t i = 0; i < run.size; ++i) {
        labels[i] = isSelected(run, i) ? run.pixels[i] : 0;
    }
}

template <class T, Domain::domain D>
constexpr LabelKernel<T> labelKernel{&largest<T, D>, &select<T>};

template <Domain::domain D>
constexpr PercentKernels percentKernels{&sum<D, Run<std::uint8_t>>, &sum<D, MaskedRun<std::uint8_t>>,
                                        labelKernel<std::uint8_t, D>, labelKernel<std::uint16_t, D>,
                                        labelKernel<std::uint32_t, D>};

} // namespace

} // namespace orlix::imaproc::glbmsr
