#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationKernels.hpp>

#include <framework/image/Strip.hpp>

namespace orlix::imaproc::glbmsr
{

const KernelTables<DeviationKernels>& getDeviationKernels(); ///< no AVX

/// Pixels of a segment that are worked at together, so that their deviations stay in the cache.
inline constexpr std::size_t deviationChunk = 1024;

/// Less `mean`, in the precision of Number. `pixels` is the first of so many pixels of the type.
void readDeviations(const DeviationKernels& kernels, image::eImageBufferType type, const std::byte* pixels,
                    std::size_t size, float mean, float* deviations);
void readDeviations(const DeviationKernels& kernels, image::eImageBufferType type, const std::byte* pixels,
                    std::size_t size, double mean, double* deviations);

/// Calls `begin()`, then `add(d1, d2, size)` for each chunk of deviations of both images, then `end()`, for every
/// row of two strips of one shape.
template <class Number, class Begin, class Add, class End>
void forRowsOfDeviations(const DeviationKernels& kernels, const image::StripParser& strip1,
                         const image::StripParser& strip2, image::eImageBufferType type1, image::eImageBufferType type2,
                         Number mean1, Number mean2, Begin begin, Add add, End end)
{
    const std::size_t row = strip1.getBox().x;
    const std::size_t rows = row == 0 ? 0 : strip1.nbPixels() / row;
    Number d1[deviationChunk];
    Number d2[deviationChunk];
    for (std::size_t y = 0; y < rows; ++y) {
        const auto* const pixels1 = strip1.run<std::byte>(y, row);
        const auto* const pixels2 = strip2.run<std::byte>(y, row);
        begin();
        for (std::size_t x = 0; x < row; x += deviationChunk) {
            const std::size_t size = row - x < deviationChunk ? row - x : deviationChunk;
            readDeviations(kernels, type1, pixels1 + x * strip1.getBox().pixelSize, size, mean1, d1);
            readDeviations(kernels, type2, pixels2 + x * strip2.getBox().pixelSize, size, mean2, d2);
            add(d1, d2, size);
        }
        end();
    }
}

} // namespace orlix::imaproc::glbmsr
