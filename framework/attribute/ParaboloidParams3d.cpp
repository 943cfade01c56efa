#include <framework/attribute/ParaboloidParams3d.hpp>

#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<ParaboloidParams3d> element{ParaboloidParams3d::typeName};
const data::DynamicClassRegistration<PlanIndexedParaboloidParams3d> collection{PlanIndexedParaboloidParams3d::typeName};
} // namespace

Ptr<ParaboloidParams3d> ParaboloidParams3d::create()
{
    return makePtr<ParaboloidParams3d>();
}

Ptr<PlanIndexedParaboloidParams3d> PlanIndexedParaboloidParams3d::create()
{
    return makePtr<PlanIndexedParaboloidParams3d>();
}

} // namespace orlix::imaproc::attr
