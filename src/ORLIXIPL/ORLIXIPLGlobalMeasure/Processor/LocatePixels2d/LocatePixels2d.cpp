#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2d.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Locate/LocateLimit.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<Pixels2d> locatePixels2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocatePixels2dLvl1>::single<InBinImg, InNbFeatures>(image, countPixels(image));
}

Ptr<Pixels2d> locatePixels2d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocatePixels2dLvl1>::single<InBinImg, InNbFeatures>(image, nbFeatures);
}

Ptr<LocatePixels2dLvl1> locatePixels2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocatePixels2dLvl1>::singleAsync<InBinImg, InNbFeatures>(image, countPixels(image));
}

Ptr<LocatePixels2dLvl1> locatePixels2d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocatePixels2dLvl1>::singleAsync<InBinImg, InNbFeatures>(image, nbFeatures);
}

Ptr<PlanIndexedPixels2d> multiSlice_locatePixels2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocatePixels2dLvl1>::everyPlan<InBinImg, InNbFeatures>(image, countPixels(image));
}

Ptr<PlanIndexedPixels2d> multiSlice_locatePixels2d(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocatePixels2dLvl1>::everyPlan<InBinImg, InNbFeatures>(image, nbFeatures);
}

Ptr<LocatePixels2dLvl1> multiSlice_locatePixels2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<LocatePixels2dLvl1>::everyPlanAsync<InBinImg, InNbFeatures>(image, countPixels(image));
}

Ptr<LocatePixels2dLvl1> multiSlice_locatePixels2d_async(const Ptr<const image::BaseImage>& image, unsigned nbFeatures)
{
    return CallingForms<LocatePixels2dLvl1>::everyPlanAsync<InBinImg, InNbFeatures>(image, nbFeatures);
}

Ptr<Pixels2d> getAsyncProcessorOutput(const Ptr<LocatePixels2dLvl1>& processor)
{
    return CallingForms<LocatePixels2dLvl1>::output(processor);
}

Ptr<PlanIndexedPixels2d> getAsyncProcessorMultiSliceOutput(const Ptr<LocatePixels2dLvl1>& processor)
{
    return CallingForms<LocatePixels2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
