#include <framework/attribute/Pixels.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/data/DynamicClassRegistration.hpp>

namespace orlix::imaproc::attr
{

namespace
{
const data::DynamicClassRegistration<Pixels2d> pixels2dClass{Pixels2d::typeName};
const data::DynamicClassRegistration<PlanIndexedPixels2d> planIndexedPixels2dClass{PlanIndexedPixels2d::typeName};
const data::DynamicClassRegistration<Voxels3d> voxels3dClass{Voxels3d::typeName};
const data::DynamicClassRegistration<PlanIndexedVoxels3d> planIndexedVoxels3dClass{PlanIndexedVoxels3d::typeName};
} // namespace

core::ProcessingResult failUnevenList(const char* key, std::size_t numbers, std::size_t axes)
{
    return core::ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_UnevenList, key, numbers, axes));
}

} // namespace orlix::imaproc::attr
