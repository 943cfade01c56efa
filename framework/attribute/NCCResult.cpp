#include <framework/attribute/NCCResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<NCCResult> nCCResultClass{NCCResult::typeName};
const data::DynamicClassRegistration<PlanIndexedNCCResult> planIndexedNCCResultClass{PlanIndexedNCCResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
