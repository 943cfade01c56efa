#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<PearsonCCResult> pearsonCorrelationCoefficient2d(const Ptr<const image::BaseImage>& image1,
                                                     const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient2dLvl1>::single<InImg1, InImg2>(image1, image2);
}

Ptr<PearsonCorrelationCoefficient2dLvl1>
pearsonCorrelationCoefficient2d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient2dLvl1>::singleAsync<InImg1, InImg2>(image1, image2);
}

Ptr<PlanIndexedPearsonCCResult> multiSlice_pearsonCorrelationCoefficient2d(const Ptr<const image::BaseImage>& image1,
                                                                           const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient2dLvl1>::everyPlan<InImg1, InImg2>(image1, image2);
}

Ptr<PearsonCorrelationCoefficient2dLvl1>
multiSlice_pearsonCorrelationCoefficient2d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient2dLvl1>::everyPlanAsync<InImg1, InImg2>(image1, image2);
}

Ptr<PearsonCCResult> getAsyncProcessorOutput(const Ptr<PearsonCorrelationCoefficient2dLvl1>& processor)
{
    return CallingForms<PearsonCorrelationCoefficient2dLvl1>::output(processor);
}

Ptr<PlanIndexedPearsonCCResult>
getAsyncProcessorMultiSliceOutput(const Ptr<PearsonCorrelationCoefficient2dLvl1>& processor)
{
    return CallingForms<PearsonCorrelationCoefficient2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
