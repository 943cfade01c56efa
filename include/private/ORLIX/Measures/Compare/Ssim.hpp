#pragma once

#include <ORLIX/Measures/Compare.hpp>
#include <ORLIX/Measures/Compare/SsimKernels.hpp>
#include <ORLIX/Measures/Pieces.hpp>

#include <boost/align/aligned_allocator.hpp>

namespace orlix::measures
{

/// The peak of the signal. Throws MeasureException if options and images do not go together.
double checkComparison(const CompareOptions& options, const ImageView& image, const ImageView& image2);

/// The structural similarity of two planes, row by row.
class SsimPlane
{
public:
    /// The windows centred on pixels [begin, end) of the rows of two planes in memory, up to 2^12.
    SsimPlane(const CompareOptions& options, double peak, std::span<const ImageView, 2> images, std::size_t begin,
              std::size_t end);

    static std::size_t getRadius(const CompareOptions& options);
    /// So many windows keep the sums of their rows in the cache.
    static constexpr std::size_t bestSize = 512;

    /// Of row y; beyond the border images go on as their mirror image. Rows are asked for in ascending order.
    const double* measure(std::size_t y);
    /// Of the last row, the sum in units of 2^SsimWindows::unit; none if a value is NaN.
    std::optional<std::int64_t> getSum() const;

private:
    void read(std::ptrdiff_t y);
    std::size_t slot(std::ptrdiff_t y) const;

    std::span<const ImageView, 2> images_;
    std::size_t begin_;
    std::size_t size_;
    std::size_t height_;
    std::size_t radius_;
    using Row = std::vector<double, boost::alignment::aligned_allocator<double, 64>>; ///< packs lie in cache lines

    std::vector<double> weights_;
    Row pixels_[2];                     ///< a row, with the neighbours of its windows
    std::vector<Row> sums_[nbSsimSums]; ///< of rows, by their number modulo the window
    std::ptrdiff_t nextRow_;            ///< that is not read yet
    Row values_;
    SsimWindows windows_{};
};

} // namespace orlix::measures
