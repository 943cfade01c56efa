#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/StripCounts.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/PercentKernels.hpp>

#include <framework/core/ProcessingResult.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlix::imaproc::glbmsr
{

template <class T>
const LabelKernel<T>& labelKernelOf(const PercentKernels& kernels)
{
    if constexpr (sizeof(T) == 1) {
        return kernels.uint8;
    } else if constexpr (sizeof(T) == 2) {
        return kernels.uint16;
    } else {
        return kernels.uint32;
    }
}

/// The counts of the labels of one strip.
class LabelCounts final : public CountTables<BinCounts>
{
public:
    /// Labels from 0 to `largest`, below 2^31, in pixels of a size. `tables` is memory that lives on from strip to
    /// strip.
    LabelCounts(std::uint32_t largest, std::size_t pixelSize, std::size_t nbPixels, std::vector<std::uint32_t>& tables);

    /// The number of pixels of each label, once all are added.
    std::vector<double> take();

private:
    void collect() override;

    std::vector<double> numbers_;
};

/// Whether `nbStrips` lists of counts of all labels up to `largest` fit the memory limit, with what is needed on the
/// way; if not, the failure names the label.
core::ProcessingResult checkLabel(std::uint32_t largest, std::size_t nbStrips);

} // namespace orlix::imaproc::glbmsr
