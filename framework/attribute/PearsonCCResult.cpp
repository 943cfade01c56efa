#include <framework/attribute/PearsonCCResult.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<PearsonCCResult> element{PearsonCCResult::typeName};
const data::DynamicClassRegistration<PlanIndexedPearsonCCResult> collection{PlanIndexedPearsonCCResult::typeName};
} // namespace

Ptr<PearsonCCResult> PearsonCCResult::create()
{
    return makePtr<PearsonCCResult>();
}

Ptr<PlanIndexedPearsonCCResult> PlanIndexedPearsonCCResult::create()
{
    return makePtr<PlanIndexedPearsonCCResult>();
}

} // namespace orlix::imaproc::attr
