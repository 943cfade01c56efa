#include <framework/attribute/StatsResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<StatsResult> statsResult{StatsResult::typeName};
const data::DynamicClassRegistration<PlanIndexedStatsResult> planIndexedStatsResult{PlanIndexedStatsResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
