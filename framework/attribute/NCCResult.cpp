#include <framework/attribute/NCCResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<NCCResult> element{NCCResult::typeName};
const data::DynamicClassRegistration<PlanIndexedNCCResult> collection{PlanIndexedNCCResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
