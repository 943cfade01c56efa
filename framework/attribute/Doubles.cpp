#include <framework/attribute/Doubles.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<Doubles> element{Doubles::typeName};
const data::DynamicClassRegistration<PlanIndexedDoubles> collection{PlanIndexedDoubles::typeName};
} // namespace

Ptr<Doubles> Doubles::create()
{
    return makePtr<Doubles>();
}

Ptr<PlanIndexedDoubles> PlanIndexedDoubles::create()
{
    return makePtr<PlanIndexedDoubles>();
}

} // namespace orlix::imaproc::attr
