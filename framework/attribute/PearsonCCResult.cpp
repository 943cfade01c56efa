#include <framework/attribute/PearsonCCResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<PearsonCCResult> element{PearsonCCResult::typeName};
const data::DynamicClassRegistration<PlanIndexedPearsonCCResult> collection{PlanIndexedPearsonCCResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
