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

    double SumSquaredDev1 = 0;
    double SumSquaredDev2 = 0;
    double Correlation = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"SumSquaredDev1", "sum of the squared deviations of image 1; of a merged record, that of image 2",
               "grey levels^2"},
              SumSquaredDev1);
        field(
            {"SumSquaredDev2", "sum of the squared deviations of image 2; a merge leaves it as it is", "grey levels^2"},
            SumSquaredDev2);
        field({"Correlation", "from -1 to 1; NaN where an image is constant"}, Correlation);
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
