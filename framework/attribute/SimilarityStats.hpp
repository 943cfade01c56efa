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
    double SumSquaredDiff = 0;
    double MSE = 0;
    double PSNR = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"NbPixels", "number of the pixels", "pixels"}, NbPixels);
        field({"SumSquaredDiff", "sum of (a - b)^2", "grey levels^2"}, SumSquaredDiff);
        field({"MSE", "mean of (a - b)^2", "grey levels^2"}, MSE);
        field({"PSNR", "20 log10(255 / sqrt(MSE)), whatever the pixel type; the greatest double where MSE is 0", "dB"},
              PSNR);
    }
};

class ORLIX_API OutSimilarityStats final : public ObjectOutput<OutSimilarityStats, SimilarityStats>
{
public:
    static constexpr const char* name = "OutSimilarityStats";
};

} // namespace orlix::imaproc::attr
