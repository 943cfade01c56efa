#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3d.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/LocateLimit.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<LocateVoxels3dLvl1>;

Ptr<Voxels3d> locateVoxels3d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<Voxels3d> locateVoxels3d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return Forms::single<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<LocateVoxels3dLvl1> locateVoxels3d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<LocateVoxels3dLvl1> locateVoxels3d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return Forms::singleAsync<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<PlanIndexedVoxels3d> multiSlice_locateVoxels3d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<PlanIndexedVoxels3d> multiSlice_locateVoxels3d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return Forms::everyPlan<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<LocateVoxels3dLvl1> multiSlice_locateVoxels3d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InBinImg3d, InNbFeatures>(image, countPixels(image));
}

Ptr<LocateVoxels3dLvl1> multiSlice_locateVoxels3d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return Forms::everyPlanAsync<InBinImg3d, InNbFeatures>(image, nbFeatures);
}

Ptr<Voxels3d> getAsyncProcessorOutput(const Ptr<LocateVoxels3dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedVoxels3d> getAsyncProcessorMultiSliceOutput(const Ptr<LocateVoxels3dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
