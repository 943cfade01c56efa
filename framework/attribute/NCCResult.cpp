#include <framework/attribute/NCCResult.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<NCCResult> element{NCCResult::typeName};
const data::DynamicClassRegistration<PlanIndexedNCCResult> collection{PlanIndexedNCCResult::typeName};
} // namespace

Ptr<NCCResult> NCCResult::create()
{
    return makePtr<NCCResult>();
}

Ptr<PlanIndexedNCCResult> PlanIndexedNCCResult::create()
{
    return makePtr<PlanIndexedNCCResult>();
}

} // namespace orlix::imaproc::attr
