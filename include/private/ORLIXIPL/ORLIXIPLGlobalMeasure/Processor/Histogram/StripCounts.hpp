#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramKernels.hpp>
#include <framework/kernel/CountTables.hpp>
#include <framework/process/KernelTables.hpp>

#include <framework/attribute/HistogramData.hpp>

#include <vector>

namespace orlix::imaproc::glbmsr
{

/// The counts of one strip, from the histogram's bins to its frequencies.
class StripCounts final : public CountTables<BinCounts>
{
public:
    /// The histogram has from 2 to 2^31 frequencies. `tables` is memory that lives on from strip to strip.
    StripCounts(attr::HistogramData& histogram, image::eImageBufferType type, std::size_t nbPixels, bool isMasked,
                std::vector<std::uint32_t>& tables);

private:
    /// The value of an entry that counts by value.
    float valueOf(std::size_t entry) const;
    void collect() override;

    attr::HistogramData& histogram_;
    image::eImageBufferType type_;
    bool entryIsBin_ = true; ///< entry i counts bin firstBin_ + i
    std::size_t firstBin_ = 0;
};

} // namespace orlix::imaproc::glbmsr
