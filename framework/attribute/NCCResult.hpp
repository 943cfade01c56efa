#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

namespace orlix::imaproc::attr
{

/// The normalized cross correlation of two images.
class ORLIX_API NCCResult final : public data::DataItem<NCCResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::NCCResult";

    double SumSquaredDev1 = 0; ///< sum of the squared deviations of image 1; of a merged record, that of image 2
    double SumSquaredDev2 = 0; ///< sum of the squared deviations of image 2; a merge leaves it as it is
    double Correlation = 0;    ///< from -1 to 1; NaN where an image is constant

    static constexpr auto fields()
    {
        return std::tuple{data::Field{"SumSquaredDev1", &NCCResult::SumSquaredDev1},
                          data::Field{"SumSquaredDev2", &NCCResult::SumSquaredDev2},
                          data::Field{"Correlation", &NCCResult::Correlation}};
    }
};

class ORLIX_API PlanIndexedNCCResult final : public PlanIndexedColl<PlanIndexedNCCResult, NCCResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedNCCResult";
};

/// What is subtracted from the pixels of image 1.
class ORLIX_API InOffset1 final : public ValueInput<InOffset1, float>
{
public:
    static constexpr const char* name = "InOffset1";
};

/// What is subtracted from the pixels of image 2.
class ORLIX_API InOffset2 final : public ValueInput<InOffset2, float>
{
public:
    static constexpr const char* name = "InOffset2";
};

class ORLIX_API OutNCCResult final : public ObjectOutput<OutNCCResult, NCCResult>
{
public:
    static constexpr const char* name = "OutNCCResult";
};

class ORLIX_API OutPINCCResult final : public PlanIndexedOutput<OutPINCCResult, PlanIndexedNCCResult>
{
public:
    static constexpr const char* name = "OutPINCCResult";
};

} // namespace orlix::imaproc::attr
