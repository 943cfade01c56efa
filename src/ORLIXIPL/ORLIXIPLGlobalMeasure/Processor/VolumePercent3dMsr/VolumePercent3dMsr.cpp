#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<Doubles> volumePercent3dMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<VolumePercent3dMsrLvl1>::single<InBinLabImg3d>(image);
}

Ptr<Doubles> volumePercent3dMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<VolumePercent3dMsrLvl1>::single<InBinLabImg3d, InOptMaskImg>(image, mask);
}

Ptr<VolumePercent3dMsrLvl1> volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<VolumePercent3dMsrLvl1>::singleAsync<InBinLabImg3d>(image);
}

Ptr<VolumePercent3dMsrLvl1> volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<VolumePercent3dMsrLvl1>::singleAsync<InBinLabImg3d, InOptMaskImg>(image, mask);
}

Ptr<PlanIndexedDoubles> multiSlice_volumePercent3dMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<VolumePercent3dMsrLvl1>::everyPlan<InBinLabImg3d>(image);
}

Ptr<PlanIndexedDoubles> multiSlice_volumePercent3dMsr(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<VolumePercent3dMsrLvl1>::everyPlan<InBinLabImg3d, InOptMaskImg>(image, mask);
}

Ptr<VolumePercent3dMsrLvl1> multiSlice_volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<VolumePercent3dMsrLvl1>::everyPlanAsync<InBinLabImg3d>(image);
}

Ptr<VolumePercent3dMsrLvl1> multiSlice_volumePercent3dMsr_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<VolumePercent3dMsrLvl1>::everyPlanAsync<InBinLabImg3d, InOptMaskImg>(image, mask);
}

Ptr<Doubles> getAsyncProcessorOutput(const Ptr<VolumePercent3dMsrLvl1>& processor)
{
    return CallingForms<VolumePercent3dMsrLvl1>::output(processor);
}

Ptr<PlanIndexedDoubles> getAsyncProcessorMultiSliceOutput(const Ptr<VolumePercent3dMsrLvl1>& processor)
{
    return CallingForms<VolumePercent3dMsrLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
