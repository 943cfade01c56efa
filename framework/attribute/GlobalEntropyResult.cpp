#include <framework/attribute/GlobalEntropyResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<GlobalEntropyResult> element{GlobalEntropyResult::typeName};
const data::DynamicClassRegistration<PlanIndexedGlobalEntropyResult> collection{
    PlanIndexedGlobalEntropyResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
