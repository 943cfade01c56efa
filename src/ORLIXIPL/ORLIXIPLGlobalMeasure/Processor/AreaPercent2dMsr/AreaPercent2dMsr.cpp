#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<Doubles> areaPercent2dMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<AreaPercent2dMsrLvl1>::single<InBinLabImg>(image);
}

Ptr<Doubles> areaPercent2dMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<AreaPercent2dMsrLvl1>::single<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<AreaPercent2dMsrLvl1> areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<AreaPercent2dMsrLvl1>::singleAsync<InBinLabImg>(image);
}

Ptr<AreaPercent2dMsrLvl1> areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image,
                                                 const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<AreaPercent2dMsrLvl1>::singleAsync<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<PlanIndexedDoubles> multiSlice_areaPercent2dMsr(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<AreaPercent2dMsrLvl1>::everyPlan<InBinLabImg>(image);
}

Ptr<PlanIndexedDoubles> multiSlice_areaPercent2dMsr(const Ptr<const image::BaseImage>& image,
                                                    const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<AreaPercent2dMsrLvl1>::everyPlan<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<AreaPercent2dMsrLvl1> multiSlice_areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<AreaPercent2dMsrLvl1>::everyPlanAsync<InBinLabImg>(image);
}

Ptr<AreaPercent2dMsrLvl1> multiSlice_areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image,
                                                            const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<AreaPercent2dMsrLvl1>::everyPlanAsync<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<Doubles> getAsyncProcessorOutput(const Ptr<AreaPercent2dMsrLvl1>& processor)
{
    return CallingForms<AreaPercent2dMsrLvl1>::output(processor);
}

Ptr<PlanIndexedDoubles> getAsyncProcessorMultiSliceOutput(const Ptr<AreaPercent2dMsrLvl1>& processor)
{
    return CallingForms<AreaPercent2dMsrLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
