#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsr.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<AreaPercent2dMsrLvl1>;

Ptr<Doubles> areaPercent2dMsr(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InBinLabImg>(image);
}

Ptr<Doubles> areaPercent2dMsr(const Ptr<const image::BaseImage>& image, const Ptr<const image::BaseImage>& mask)
{
    return Forms::single<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<AreaPercent2dMsrLvl1> areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InBinLabImg>(image);
}

Ptr<AreaPercent2dMsrLvl1> areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image,
                                                 const Ptr<const image::BaseImage>& mask)
{
    return Forms::singleAsync<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<PlanIndexedDoubles> multiSlice_areaPercent2dMsr(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InBinLabImg>(image);
}

Ptr<PlanIndexedDoubles> multiSlice_areaPercent2dMsr(const Ptr<const image::BaseImage>& image,
                                                    const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlan<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<AreaPercent2dMsrLvl1> multiSlice_areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InBinLabImg>(image);
}

Ptr<AreaPercent2dMsrLvl1> multiSlice_areaPercent2dMsr_async(const Ptr<const image::BaseImage>& image,
                                                            const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlanAsync<InBinLabImg, InOptMaskImg>(image, mask);
}

Ptr<Doubles> getAsyncProcessorOutput(const Ptr<AreaPercent2dMsrLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedDoubles> getAsyncProcessorMultiSliceOutput(const Ptr<AreaPercent2dMsrLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
