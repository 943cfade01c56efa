#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramKernels.hpp>

#include <framework/attribute/HistogramData.hpp>

#include <vector>

namespace orlix::imaproc::glbmsr
{

const KernelTables<HistogramKernels>& getHistogramKernels();
const KernelTables<HistogramMaskKernels>& getHistogramMaskKernels();

/// The counts of one strip, from the histogram's classes to its frequencies.
class StripCounts
{
public:
    /// The histogram has from 2 to 2^31 frequencies. `tables` is memory that lives on from strip to strip.
    StripCounts(attr::HistogramData& histogram, image::eImageBufferType type, std::size_t nbPixels, bool isMasked,
                std::vector<std::uint32_t>& tables);

    const ClassCounts& get() const { return counts_; }
    /// How many more pixels the tables can take before flush().
    std::size_t getRoom() const { return room_; }
    void take(std::size_t nbPixels) { room_ -= nbPixels; }
    /// Adds what the tables hold to the frequencies.
    void flush();

private:
    static constexpr std::size_t capacity = std::size_t{1} << 31; ///< of a table's entry, and more

    /// The value of an entry that counts by value.
    float valueOf(std::size_t entry) const;
    void clear();

    attr::HistogramData& histogram_;
    image::eImageBufferType type_;
    bool classIsEntry_ = true; ///< entry i counts class firstClass_ + i
    std::size_t firstClass_ = 0;
    std::size_t nbTables_ = 1;
    std::size_t room_ = capacity;
    ClassCounts counts_{};
};

} // namespace orlix::imaproc::glbmsr
