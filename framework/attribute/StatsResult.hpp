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

    std::uint64_t NbPixels = 0; ///< pixels that entered the result
    double Sum = 0;
    double Mean = 0; ///< Sum / NbPixels
    double Min = 0;
    double Max = 0;
    double StdDev = 0; ///< of the population: sqrt(E[x^2] - Mean^2)

    static constexpr auto fields()
    {
        return std::tuple{data::Field{"NbPixels", &StatsResult::NbPixels}, data::Field{"Sum", &StatsResult::Sum},
                          data::Field{"Mean", &StatsResult::Mean},         data::Field{"Min", &StatsResult::Min},
                          data::Field{"Max", &StatsResult::Max},           data::Field{"StdDev", &StatsResult::StdDev}};
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
