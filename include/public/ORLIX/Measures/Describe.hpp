#pragma once

#include <ORLIX/Measures/State.hpp>

#include <optional>

namespace orlix::measures
{

/// How a percentile between two pixels is found, with p / 100 (n - 1) for its place among n sorted ones.
enum class PercentileDefinition
{
    Linear, ///< between both, as far as the place is
    Lower,
    Higher,
    Nearest ///< the even place where both are as near
};
ORLIX_API std::span<const char* const> namesOf(PercentileDefinition);

/// Whether the entropy is measured.
enum class EntropyPolicy
{
    Automatic, ///< of integer pixels of 8 and 16 bits
    Always,    ///< of 32 bits as well, where memory goes with the number of values; of float pixels there is none
    Never
};
ORLIX_API std::span<const char* const> namesOf(EntropyPolicy);

struct DescribeOptions
{
    Per per = Per::Image;
    ImageView
        mask{}; ///< of describe() alone: pixels count where it is not 0. Binary or of 8 bits, as large as the image
    NanPolicy nan = NanPolicy::Omit;
    std::vector<double> percentiles{1, 5, 25, 75, 95, 99}; ///< from 0 to 100; none: no median either
    PercentileDefinition definition = PercentileDefinition::Linear;
    unsigned ddof = 0;     ///< the variance is the sum of squared deviations over NbPixels - ddof: 0 or 1
    unsigned moments = 2;  ///< 4: skewness and kurtosis, too
    bool saturated = true; ///< count pixels at the limits of their type
    EntropyPolicy entropy = EntropyPolicy::Automatic;

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

/// What an image, plan or volume holds. Sum, mean, variance and deviation are the doubles nearest to the exact values;
/// percentiles are exact order statistics. See docs/numbers.md for infinities and NaN.
struct Description
{
    std::uint64_t NbPixels = 0; ///< measured: inside the mask, and no NaN
    std::uint64_t NbNaN = 0;
    std::uint64_t NbPositiveInfinity = 0;
    std::uint64_t NbNegativeInfinity = 0;
    std::uint64_t NbSaturated = 0; ///< integer pixels at the lowest or the highest value of their type
    double Sum = 0;
    double Mean = 0;
    double Variance = 0;
    double StdDev = 0;
    double Min = 0;
    std::vector<std::uint64_t> MinPosition; ///< the first: [x, y], [x, y, z] or [x, y, z, c, t]
    double Max = 0;
    std::vector<std::uint64_t> MaxPosition;
    std::optional<double> Median;
    std::vector<double> Percentiles; ///< percent, value, percent, value ...
    std::optional<double> Skewness;  ///< the third standardised moment
    std::optional<double> Kurtosis;  ///< the fourth, less 3
    std::optional<double> Entropy;   ///< of the pixel values, in nats
    image::PlanIndex plan;           ///< per plan or volume: which one

    ORLIX_API void visitFields(data::FieldVisitor& field);
};

struct Describe
{
    using Options = DescribeOptions;
    using Result = Description;
    static constexpr int nbImages = 1;
};

/// Percentiles of 32-bit and float pixels need a second pass, and a third where there are many.
using DescribeState = State<Describe>;
extern template class ORLIX_API State<Describe>;

/// Throws MeasureException if image, mask and options do not go together.
ORLIX_API Results<Description> describe(const ImageView& image, const DescribeOptions& options = {});

} // namespace orlix::measures
