#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

#include <cstdint>

namespace orlix::imaproc::attr
{

/// The intensity indicators of a set of pixels.
class ORLIX_API StatsResult final : public data::DataItem<StatsResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::StatsResult";

    static constexpr bool definedWithoutPixels = true; ///< by NaN

    std::uint64_t NbPixels = 0;
    double Sum = 0;
    double Mean = 0;
    double Min = 0;
    double Max = 0;
    double StdDev = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"NbPixels", "number of the pixels", "pixels"}, NbPixels);
        field({"Sum", "sum of the pixels", "grey levels"}, Sum);
        field({"Mean", "Sum / NbPixels", "grey levels"}, Mean);
        field({"Min", "lowest pixel", "grey levels"}, Min);
        field({"Max", "highest pixel", "grey levels"}, Max);
        field({"StdDev", "standard deviation of the population: sqrt(E[x^2] - Mean^2)", "grey levels"}, StdDev);
    }
};

class ORLIX_API PlanIndexedStatsResult final : public PlanIndexedColl<PlanIndexedStatsResult, StatsResult>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedStatsResult";
};

class ORLIX_API OutStatsResult final : public ObjectOutput<OutStatsResult, StatsResult>
{
public:
    static constexpr const char* name = "OutStatsResult";
};

class ORLIX_API OutPIStatsResult final : public PlanIndexedOutput<OutPIStatsResult, PlanIndexedStatsResult>
{
public:
    static constexpr const char* name = "OutPIStatsResult";
};

} // namespace orlix::imaproc::attr
