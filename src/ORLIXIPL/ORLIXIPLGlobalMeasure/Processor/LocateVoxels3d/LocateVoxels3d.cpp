#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3d.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/LocateLimit.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<Voxels3d> locateVoxels3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocateVoxels3dLvl1>::single<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<Voxels3d> locateVoxels3d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocateVoxels3dLvl1>::single<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<LocateVoxels3dLvl1> locateVoxels3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocateVoxels3dLvl1>::singleAsync<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<LocateVoxels3dLvl1> locateVoxels3d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocateVoxels3dLvl1>::singleAsync<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<PlanIndexedVoxels3d> multiSlice_locateVoxels3d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocateVoxels3dLvl1>::everyPlan<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<PlanIndexedVoxels3d> multiSlice_locateVoxels3d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocateVoxels3dLvl1>::everyPlan<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<LocateVoxels3dLvl1> multiSlice_locateVoxels3d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocateVoxels3dLvl1>::everyPlanAsync<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<LocateVoxels3dLvl1> multiSlice_locateVoxels3d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocateVoxels3dLvl1>::everyPlanAsync<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<Voxels3d> getAsyncProcessorOutput(const Ptr<LocateVoxels3dLvl1>& processor)
{
    return CallingForms<LocateVoxels3dLvl1>::output(processor);
}

Ptr<PlanIndexedVoxels3d> getAsyncProcessorMultiSliceOutput(const Ptr<LocateVoxels3dLvl1>& processor)
{
    return CallingForms<LocateVoxels3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
