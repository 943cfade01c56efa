#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<PearsonCorrelationCoefficient3dLvl1>;

Ptr<PearsonCCResult> pearsonCorrelationCoefficient3d(const Ptr<const image::BaseImage>& image1,
                                                     const Ptr<const image::BaseImage>& image2)
{
    return Forms::single<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PearsonCorrelationCoefficient3dLvl1>
pearsonCorrelationCoefficient3d_async(const Ptr<const image::BaseImage>& image1,
                                      const Ptr<const image::BaseImage>& image2)
{
    return Forms::singleAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PlanIndexedPearsonCCResult> multiSlice_pearsonCorrelationCoefficient3d(const Ptr<const image::BaseImage>& image1,
                                                                           const Ptr<const image::BaseImage>& image2)
{
    return Forms::everyPlan<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PearsonCorrelationCoefficient3dLvl1>
multiSlice_pearsonCorrelationCoefficient3d_async(const Ptr<const image::BaseImage>& image1,
                                                 const Ptr<const image::BaseImage>& image2)
{
    return Forms::everyPlanAsync<InImg3d1, InImg3d2>(image1, image2);
}

Ptr<PearsonCCResult> getAsyncProcessorOutput(const Ptr<PearsonCorrelationCoefficient3dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedPearsonCCResult>
getAsyncProcessorMultiSliceOutput(const Ptr<PearsonCorrelationCoefficient3dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
