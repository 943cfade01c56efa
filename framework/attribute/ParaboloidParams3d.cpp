#include <framework/attribute/ParaboloidParams3d.hpp>

#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<ParaboloidParams3d> paraboloidParams3dClass{ParaboloidParams3d::typeName};
const data::DynamicClassRegistration<PlanIndexedParaboloidParams3d> planIndexedParaboloidParams3dClass{
    PlanIndexedParaboloidParams3d::typeName};
} // namespace

} // namespace orlix::imaproc::attr
