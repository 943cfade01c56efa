#include <framework/attribute/PearsonCCResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<PearsonCCResult> pearsonCCResultClass{PearsonCCResult::typeName};
const data::DynamicClassRegistration<PlanIndexedPearsonCCResult> planIndexedPearsonCCResultClass{
    PlanIndexedPearsonCCResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
