#include <framework/attribute/ParaboloidParams3d.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<ParaboloidParams3d> element{ParaboloidParams3d::typeName};
const data::DynamicClassRegistration<PlanIndexedParaboloidParams3d> collection{PlanIndexedParaboloidParams3d::typeName};
} // namespace

} // namespace orlix::imaproc::attr
