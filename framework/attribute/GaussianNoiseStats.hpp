#pragma once

#include <framework/attribute/Attribute.hpp>

#include <cstdint>

namespace orlix::imaproc::attr
{

/// The noise of an image (J. Immerkaer, Fast noise variance estimation, 1996).
class ORLIX_API GaussianNoiseStats final : public data::DataItem<GaussianNoiseStats>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::GaussianNoiseStats";

    static constexpr bool definedWithoutPixels = true; ///< by NaN

    std::uint64_t NbPixels = 0;
    double NoiseStdDev = 0;
    double SumAbsLaplacian = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"NbPixels", "number of the pixels", "pixels"}, NbPixels);
        field({"NoiseStdDev", "sqrt(pi / 2) SumAbsLaplacian / (6 NbPixels)", "grey levels"}, NoiseStdDev);
        field({"SumAbsLaplacian", "sum of the absolute responses to the mask (1 -2 1, -2 4 -2, 1 -2 1)", "grey levels"},
              SumAbsLaplacian);
    }
};

class ORLIX_API OutGaussianNoiseStats final : public ObjectOutput<OutGaussianNoiseStats, GaussianNoiseStats>
{
public:
    static constexpr const char* name = "OutGaussianNoiseStats";
};

} // namespace orlix::imaproc::attr
