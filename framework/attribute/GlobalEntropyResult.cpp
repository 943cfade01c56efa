#include <framework/attribute/GlobalEntropyResult.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<GlobalEntropyResult> globalEntropyResultClass{GlobalEntropyResult::typeName};
const data::DynamicClassRegistration<PlanIndexedGlobalEntropyResult> planIndexedGlobalEntropyResultClass{
    PlanIndexedGlobalEntropyResult::typeName};
} // namespace

} // namespace orlix::imaproc::attr
