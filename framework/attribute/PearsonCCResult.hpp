#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

namespace orlix::imaproc::attr
{

/// The Pearson correlation of two images.
class ORLIX_API PearsonCCResult final : public data::DataItem<PearsonCCResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PearsonCCResult";

    double PearsonCC = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"PearsonCC", "number of the pixels times the coefficient r", "pixels"}, PearsonCC);
    }
};

class ORLIX_API PlanIndexedPearsonCCResult final : public PlanIndexedColl<PlanIndexedPearsonCCResult, PearsonCCResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedPearsonCCResult";
};

class ORLIX_API InImgMean1 final : public ValueInput<InImgMean1, double>
{
public:
    static constexpr const char* name = "InImgMean1";
};

class ORLIX_API InImgMean2 final : public ValueInput<InImgMean2, double>
{
public:
    static constexpr const char* name = "InImgMean2";
};

/// The product of the standard deviations of both images.
class ORLIX_API InFactor final : public ValueInput<InFactor, double>
{
public:
    static constexpr const char* name = "InFactor";
};

class ORLIX_API OutPearsonCCResult final : public ObjectOutput<OutPearsonCCResult, PearsonCCResult>
{
public:
    static constexpr const char* name = "OutPearsonCCResult";
};

class ORLIX_API OutPIPearsonCCResult final : public PlanIndexedOutput<OutPIPearsonCCResult, PlanIndexedPearsonCCResult>
{
public:
    static constexpr const char* name = "OutPIPearsonCCResult";
};

} // namespace orlix::imaproc::attr
