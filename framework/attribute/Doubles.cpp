#include <framework/attribute/Doubles.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<Doubles> doublesClass{Doubles::typeName};
const data::DynamicClassRegistration<PlanIndexedDoubles> planIndexedDoublesClass{PlanIndexedDoubles::typeName};
} // namespace

} // namespace orlix::imaproc::attr
