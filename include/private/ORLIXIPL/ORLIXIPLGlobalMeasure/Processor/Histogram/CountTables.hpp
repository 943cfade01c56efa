#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramKernels.hpp>
#include <framework/process/KernelTables.hpp>

#include <framework/attribute/HistogramData.hpp>

#include <algorithm>
#include <vector>

namespace orlix::imaproc::glbmsr
{

/// The tables of one strip.
class CountTables
{
public:
    /// Counts the pixels of a run with a kernel for them.
    template <class Kernel, class R>
    void add(Kernel kernel, R run)
    {
        for (std::size_t done = 0; done < run.size;) {
            const std::size_t size = std::min(run.size - done, room_);
            kernel(part(run, done, size), counts_);
            done += size;
            room_ -= size;
            if (room_ == 0) {
                flush();
            }
        }
    }
    /// Adds what the tables hold to where it is to go.
    void flush()
    {
        collect();
        clear();
    }

protected:
    CountTables() = default;
    ~CountTables() = default;

    /// Empty tables of counts_.size entries, in memory that lives on from strip to strip.
    void allocate(std::size_t pixelSize, std::size_t nbPixels, std::vector<std::uint32_t>& tables);
    std::uint64_t countOf(std::size_t entry) const
    {
        std::uint64_t sum = 0;
        for (std::size_t k = 0; k < nbTables_; ++k) {
            sum += counts_.tables[k * counts_.distance + entry];
        }
        return sum;
    }

    BinCounts counts_{};

private:
    static constexpr std::size_t capacity = std::size_t{1} << 31; ///< of a table's entry, and more

    virtual void collect() = 0;
    void clear();

    std::size_t nbTables_ = 1;
    std::size_t room_ = capacity;
};

/// The counts of one strip, from the histogram's bins to its frequencies.
class StripCounts final : public CountTables
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
