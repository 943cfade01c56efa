#pragma once

#include <ORLIX/Measures/Compare.hpp>
#include <ORLIX/Measures/Compare/SsimKernels.hpp>
#include <ORLIX/Measures/Pieces.hpp>

namespace orlix::measures
{

/// The peak of the signal. Throws MeasureException if options and images do not go together.
double checkComparison(const CompareOptions& options, const ImageView& image, const ImageView& image2);

/// The structural similarity of two planes, row by row.
class SsimPlane
{
public:
    /// `at` is a position in the images, whose z, c and t say which planes.
    SsimPlane(const CompareOptions& options, double peak, std::span<const ImageView> images, const Position& at);

    static std::size_t getRadius(const CompareOptions& options);

    /// Of the windows centred on pixels [begin, end) of row y; beyond the border images go on as their mirror image.
    /// Rows are asked for in ascending order.
    const double* measure(std::size_t y, std::size_t begin, std::size_t end);

private:
    void read(std::ptrdiff_t y);
    std::vector<double>& slot(int image, std::ptrdiff_t y);

    std::span<const ImageView> images_;
    Position at_;
    std::size_t width_;
    std::size_t height_;
    std::size_t radius_;
    std::vector<double> weights_;
    std::vector<std::vector<double>> rows_[2]; ///< by their number modulo the window
    std::ptrdiff_t nextRow_;                   ///< that is not read yet
    std::vector<double> columns_[5];
    std::vector<double> values_;
    SsimRow row_{};
};

} // namespace orlix::measures
