#include <framework/attribute/Doubles.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<Doubles> element{Doubles::typeName};
const data::DynamicClassRegistration<PlanIndexedDoubles> collection{PlanIndexedDoubles::typeName};
} // namespace

} // namespace orlix::imaproc::attr
