#include <framework/attribute/IndexableUInt64.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<IndexableUInt64> indexableUInt64Class{IndexableUInt64::typeName};
const data::DynamicClassRegistration<PlanIndexedIndexableUInt64> planIndexedIndexableUInt64Class{
    PlanIndexedIndexableUInt64::typeName};
} // namespace

} // namespace orlix::imaproc::attr
