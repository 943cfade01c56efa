#include <framework/attribute/StatsResult.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<StatsResult> statsResult{StatsResult::typeName};
const data::DynamicClassRegistration<PlanIndexedStatsResult> planIndexedStatsResult{PlanIndexedStatsResult::typeName};
} // namespace

Ptr<StatsResult> StatsResult::create()
{
    return makePtr<StatsResult>();
}

Ptr<PlanIndexedStatsResult> PlanIndexedStatsResult::create()
{
    return makePtr<PlanIndexedStatsResult>();
}

} // namespace orlix::imaproc::attr
