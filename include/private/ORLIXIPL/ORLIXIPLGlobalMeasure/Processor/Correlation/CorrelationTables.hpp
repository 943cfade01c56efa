#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationKernels.hpp>

#include <framework/image/Strip.hpp>

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

const KernelTables<DeviationKernels>& getDeviationKernels(); ///< no AVX

/// The strip of the second image: pixels of any type.
struct SecondStrip
{
    const DeviationKernels& kernels;
    const image::StripParser& parser;
    image::eImageBufferType type;

    /// The deviations of pixels [x, x + size) of a row.
    void read(std::size_t row, std::size_t x, std::size_t size, float mean, float* deviations) const;
    void read(std::size_t row, std::size_t x, std::size_t size, double mean, double* deviations) const;
};

/// Sums over every row of two strips of one shape: `begin()`, `addPair` of the row where both have pixels of type T,
/// else `add` of parts of it with the deviations of the second strip, `end()`.
template <class T, class Number, class Sums, class End>
void forRowsOfDeviations(const image::StripParser& first, const SecondStrip& second, Number mean1, Number mean2,
                         void (*add)(DeviationsOf<T, Number>, const Number*, std::size_t, Sums&),
                         void (*addPair)(DeviationsOf<T, Number>, DeviationsOf<T, Number>, std::size_t, Sums&), End end)
{
    constexpr std::size_t part = 1024; // whose deviations stay in the cache
    Number deviations[part];
    const std::size_t size = first.getBox().x;
    const std::size_t rows = size == 0 ? 0 : first.nbPixels() / size;
    for (std::size_t y = 0; y < rows; ++y) {
        Sums sums{};
        const T* const pixels = first.run<T>(y, size);
        if (second.type == image::imageBufferTypeOf<T>) {
            addPair({pixels, mean1}, {second.parser.run<T>(y, size), mean2}, size, sums);
        } else {
            for (std::size_t x = 0; x < size; x += part) {
                const std::size_t n = std::min(part, size - x);
                second.read(y, x, n, mean2, deviations);
                add({pixels + x, mean1}, deviations, n, sums);
            }
        }
        end(sums);
    }
}

} // namespace orlix::imaproc::glbmsr
