#include <framework/attribute/Pixels.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/data/DynamicObjectFactory.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<Pixels2d> pixels{Pixels2d::typeName};
const data::DynamicClassRegistration<PlanIndexedPixels2d> pixelsOfPlans{PlanIndexedPixels2d::typeName};
const data::DynamicClassRegistration<Voxels3d> voxels{Voxels3d::typeName};
const data::DynamicClassRegistration<PlanIndexedVoxels3d> voxelsOfVolumes{PlanIndexedVoxels3d::typeName};
} // namespace

core::ProcessingResult failUnevenList(const char* key, std::size_t numbers, std::size_t axes)
{
    return core::ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_UnevenList, key, numbers, axes));
}

Ptr<Pixels2d> Pixels2d::create()
{
    return makePtr<Pixels2d>();
}

Ptr<PlanIndexedPixels2d> PlanIndexedPixels2d::create()
{
    return makePtr<PlanIndexedPixels2d>();
}

Ptr<Voxels3d> Voxels3d::create()
{
    return makePtr<Voxels3d>();
}

Ptr<PlanIndexedVoxels3d> PlanIndexedVoxels3d::create()
{
    return makePtr<PlanIndexedVoxels3d>();
}

} // namespace orlix::imaproc::attr
