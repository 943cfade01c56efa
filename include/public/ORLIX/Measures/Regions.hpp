#pragma once

#include <ORLIX/Measures/State.hpp>

namespace orlix::measures
{

struct RegionsOptions
{
    Per per = Per::Image;
    NanPolicy nan = NanPolicy::Omit;
    bool median = false; ///< memory then goes with the different pixels of each region

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

/// What one image holds in each region, region by region. Sums, means and deviations are the doubles nearest to the
/// exact values.
struct RegionFigures
{
    std::vector<double> Sum;
    std::vector<double> Mean;
    std::vector<double> StdDev; ///< of the population
    std::vector<double> Min;
    std::vector<double> Max;
    std::vector<double> WeightedCentroid; ///< as many numbers as there are axes, for each region
    std::vector<double> Median;           ///< where it is asked for
    std::vector<std::uint64_t> NbNaN;     ///< pixels that take part in none of these
};

/// Columns of a table with a row for every label that occurs, but for the background 0, in ascending order.
struct Regions
{
    std::vector<std::int64_t> Label;
    std::vector<std::uint64_t> NbPixels;
    std::size_t nbAxes = 2;                 ///< x, y; per volume, and of one volume, z; of an image of several, c, t
    std::vector<std::uint64_t> BoundingBox; ///< nbAxes first positions, then as many behind the last ones, a region
    std::vector<double> Centroid;           ///< nbAxes numbers a region
    std::vector<bool> TouchesBorder;        ///< of the image, in an axis that has more than one position
    std::vector<RegionFigures> images;
    image::PlanIndex plan; ///< per plan or volume: which one

    std::size_t size() const { return Label.size(); }

    /// What a row holds, of one image.
    ORLIX_API void visitFields(data::FieldVisitor& field);
};

struct MeasureRegions
{
    using Options = RegionsOptions;
    using Result = Regions;
    static constexpr int nbImages = -1;
};

/// Regions that lie in several pieces are one.
using RegionsState = State<MeasureRegions>;
extern template class ORLIX_API State<MeasureRegions>;

/// `labels` are integers of any size, as sparse as they come; `images` have the same size. Throws MeasureException if
/// they do not go together.
ORLIX_API Results<Regions> regions(const ImageView& labels, const std::vector<ImageView>& images = {},
                                   const RegionsOptions& options = {});

} // namespace orlix::measures
