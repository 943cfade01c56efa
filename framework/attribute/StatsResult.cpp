#include <framework/attribute/StatsResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<StatsResult> statsResultClass{StatsResult::typeName};
const data::DynamicClassRegistration<PlanIndexedStatsResult> planIndexedStatsResultClass{
    PlanIndexedStatsResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
