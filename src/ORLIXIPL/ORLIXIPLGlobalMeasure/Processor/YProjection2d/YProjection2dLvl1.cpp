#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2dLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass YProjection2dLvl1::processorClass = declare<YProjection2dLvl1>("YProjection2dLvl1", 103);

YProjection2dLvl1::YProjection2dLvl1() = default;
YProjection2dLvl1::~YProjection2dLvl1() = default;

void YProjection2dLvl1::clearIntermediateDataDerived()
{
    parts_.clear();
}

core::ProcessingResult YProjection2dLvl1::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    const Ptr<const image::BaseImage>& image = attribute<InSubImg2d>().get();
    const ProcessorDispatchPolicy& policy = getDispatchPolicy();
    cut_.emplace(StripCut::of<image::YStrip2d>(*image, policy.stripBytes, 1));
    parts_.resize(cut_->size());
    visitStatistic<YProjectionMax2dLvl3, YProjectionMean2dLvl3, YProjectionMedian2dLvl3, YProjectionMin2dLvl3,
                   YProjectionStdDev2dLvl3, YProjectionSum2dLvl3, YProjectionVar2dLvl3>(
        value<InProjStatType>(), [&]<class Lvl3>(std::type_identity<Lvl3>) {
            provider = makeDynamicDispatcher<Lvl3>(
                priority, policy, cut_->size(), DynamicByCreationResultSplit<Lvl3, OutProjStat>{parts_},
                ImageYStrip2dSplit<Lvl3, const image::BaseImage, InYStrip2d>{image, *cut_});
        });
    return {};
}

core::ProcessingResult YProjection2dLvl1::postProcess()
{
    value<OutProjStat>().Values = concatenate(parts_);
    return {};
}

} // namespace orlix::imaproc::glbmsr
