#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

Ptr<PearsonCCResult> pearsonCorrelationCoefficient3d(const Ptr<const image::BaseImage>& image1,
                                                     const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient3dLvl1>::single<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PearsonCorrelationCoefficient3dLvl1>
pearsonCorrelationCoefficient3d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient3dLvl1>::singleAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PlanIndexedPearsonCCResult> multiSlice_pearsonCorrelationCoefficient3d(const Ptr<const image::BaseImage>& image1,
                                                                           const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient3dLvl1>::everyPlan<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PearsonCorrelationCoefficient3dLvl1>
multiSlice_pearsonCorrelationCoefficient3d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return CallingForms<PearsonCorrelationCoefficient3dLvl1>::everyPlanAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PearsonCCResult> getAsyncProcessorOutput(const Ptr<PearsonCorrelationCoefficient3dLvl1>& processor)
{
    return CallingForms<PearsonCorrelationCoefficient3dLvl1>::output(processor);
}

Ptr<PlanIndexedPearsonCCResult>
getAsyncProcessorMultiSliceOutput(const Ptr<PearsonCorrelationCoefficient3dLvl1>& processor)
{
    return CallingForms<PearsonCorrelationCoefficient3dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
