#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/kernel/ValueTables.hpp>

#include <algorithm>
#include <vector>

namespace orlix::imaproc
{

/// The tables that kernels count into, with what they are described by: ValueTables or more. For files with baseline
/// flags.
template <class Counts>
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
    void allocate(std::size_t pixelSize, std::size_t nbPixels, std::vector<std::uint32_t>& tables)
    {
        // Together the tables stay in the cache, and few pixels are not worth many tables.
        const std::size_t entries = pixelSize == 1 ? 512 : std::size_t{counts_.size} + 1;
        counts_.eight = pixelSize == 1 || (entries <= ValueTables::stride && nbPixels >= 8192);
        nbTables_ = counts_.eight ? 8 : entries <= 32768 ? 2 : 1;
        counts_.distance = counts_.eight ? ValueTables::stride : nbTables_ == 2 ? (entries + 15) / 16 * 16 + 16 : 0;
        tables.resize(std::max(tables.size(), (nbTables_ - 1) * counts_.distance + entries));
        counts_.tables = tables.data();
        clear();
    }
    std::uint64_t countOf(std::size_t entry) const
    {
        std::uint64_t sum = 0;
        for (std::size_t k = 0; k < nbTables_; ++k) {
            sum += counts_.tables[k * counts_.distance + entry];
        }
        return sum;
    }

    Counts counts_{};

private:
    static constexpr std::size_t capacity = std::size_t{1} << 31; ///< of a table's entry, and more

    virtual void collect() = 0;
    void clear()
    {
        for (std::size_t k = 0; k < nbTables_; ++k) {
            std::fill_n(counts_.tables + k * counts_.distance, counts_.size, 0);
        }
        room_ = capacity;
    }

    std::size_t nbTables_ = 1;
    std::size_t room_ = capacity;
};

} // namespace orlix::imaproc
