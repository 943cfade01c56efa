#include <framework/attribute/IndexableUInt64.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<IndexableUInt64> element{IndexableUInt64::typeName};
const data::DynamicClassRegistration<PlanIndexedIndexableUInt64> collection{PlanIndexedIndexableUInt64::typeName};
} // namespace

Ptr<IndexableUInt64> IndexableUInt64::create()
{
    return makePtr<IndexableUInt64>();
}

Ptr<PlanIndexedIndexableUInt64> PlanIndexedIndexableUInt64::create()
{
    return makePtr<PlanIndexedIndexableUInt64>();
}

} // namespace orlix::imaproc::attr
