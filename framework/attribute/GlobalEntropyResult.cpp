#include <framework/attribute/GlobalEntropyResult.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<GlobalEntropyResult> element{GlobalEntropyResult::typeName};
const data::DynamicClassRegistration<PlanIndexedGlobalEntropyResult> collection{
    PlanIndexedGlobalEntropyResult::typeName};
} // namespace

Ptr<GlobalEntropyResult> GlobalEntropyResult::create()
{
    return makePtr<GlobalEntropyResult>();
}

Ptr<PlanIndexedGlobalEntropyResult> PlanIndexedGlobalEntropyResult::create()
{
    return makePtr<PlanIndexedGlobalEntropyResult>();
}

} // namespace orlix::imaproc::attr
