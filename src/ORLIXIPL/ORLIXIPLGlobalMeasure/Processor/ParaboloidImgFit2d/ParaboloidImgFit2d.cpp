#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2d.hpp>

#include <framework/process/CallingForms.hpp>

namespace orlix::imaproc::glbmsr
{

using Forms = CallingForms<ParaboloidImgFit2dLvl1>;

Ptr<ParaboloidParams3d> paraboloidImgFit2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::single<InImg>(image);
}

Ptr<ParaboloidParams3d> paraboloidImgFit2d(const Ptr<const image::BaseImage>& image,
                                           const Ptr<const image::BaseImage>& mask)
{
    return Forms::single<InImg, InOptMaskImg>(image, mask);
}

Ptr<ParaboloidImgFit2dLvl1> paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::singleAsync<InImg>(image);
}

Ptr<ParaboloidImgFit2dLvl1> paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask)
{
    return Forms::singleAsync<InImg, InOptMaskImg>(image, mask);
}

Ptr<PlanIndexedParaboloidParams3d> multiSlice_paraboloidImgFit2d(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlan<InImg>(image);
}

Ptr<PlanIndexedParaboloidParams3d> multiSlice_paraboloidImgFit2d(const Ptr<const image::BaseImage>& image,
                                                                 const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlan<InImg, InOptMaskImg>(image, mask);
}

Ptr<ParaboloidImgFit2dLvl1> multiSlice_paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image)
{
    return Forms::everyPlanAsync<InImg>(image);
}

Ptr<ParaboloidImgFit2dLvl1> multiSlice_paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask)
{
    return Forms::everyPlanAsync<InImg, InOptMaskImg>(image, mask);
}

Ptr<ParaboloidParams3d> getAsyncProcessorOutput(const Ptr<ParaboloidImgFit2dLvl1>& processor)
{
    return Forms::output(processor);
}

Ptr<PlanIndexedParaboloidParams3d> getAsyncProcessorMultiSliceOutput(const Ptr<ParaboloidImgFit2dLvl1>& processor)
{
    return Forms::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
