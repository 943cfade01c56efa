#pragma once

#include <framework/attribute/Attribute.hpp>

#include <cstdint>

namespace orlix::imaproc::attr
{

/// How far two images differ.
class ORLIX_API SimilarityStats final : public data::DataItem<SimilarityStats>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::SimilarityStats";

    std::uint64_t NbPixels = 0;
    double SumSquaredDiff = 0; ///< sum of (a - b)^2
    double MSE = 0;            ///< mean of (a - b)^2
    double PSNR =
        0; ///< 20 log10(255 / sqrt(MSE)) decibels, whatever the pixel type; the greatest double where MSE is 0

    static constexpr auto fields()
    {
        return std::tuple{data::Field{"NbPixels", &SimilarityStats::NbPixels},
                          data::Field{"SumSquaredDiff", &SimilarityStats::SumSquaredDiff},
                          data::Field{"MSE", &SimilarityStats::MSE}, data::Field{"PSNR", &SimilarityStats::PSNR}};
    }
};

class ORLIX_API OutSimilarityStats final : public ObjectOutput<OutSimilarityStats, SimilarityStats>
{
public:
    static constexpr const char* name = "OutSimilarityStats";
};

} // namespace orlix::imaproc::attr
