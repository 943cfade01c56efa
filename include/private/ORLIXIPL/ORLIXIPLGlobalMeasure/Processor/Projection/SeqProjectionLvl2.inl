// The members of SeqProjectionLvl2; for the level 2 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionLevels.hpp>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Input, class Output>
Rule SeqProjectionLvl2<Self, Input, Output>::makeRule() const
{
    return matchOutputSize(this->template attribute<Output>(), this->template attribute<Input>());
}

template <class Self, class Input, class Output>
core::ProcessingResult SeqProjectionLvl2<Self, Input, Output>::retrieveProvider(ePriority priority,
                                                                                Ptr<ActionProvider>& provider)
{
    Ptr<const image::BaseImage> sequence = this->template attribute<Input>().get();
    if constexpr (Input::kind == image::ePlanKind::ePK_Volume3d) {
        sequence = sequence->getPlanesAsSequence();
    }
    const ProcessorDispatchPolicy& policy = this->getDispatchPolicy();
    cut_.emplace(StripCut::of<image::SeqYStrip2d>(*sequence, policy.stripBytes, 1));
    visitStatistic<SeqProjectionMaxImgLvl3, SeqProjectionMeanImgLvl3, SeqProjectionMedianImgLvl3,
                   SeqProjectionMinImgLvl3, SeqProjectionStdDevImgLvl3, SeqProjectionSumImgLvl3,
                   SeqProjectionVarImgLvl3>(
        this->template value<InProjStatType>(), [&]<class Lvl3>(std::type_identity<Lvl3>) {
            provider = makeDynamicDispatcher<Lvl3>(
                priority, policy, cut_->size(),
                ImageYStripSeq2dSplit<Lvl3, const image::BaseImage, InSeqYStrip2d>{sequence, *cut_},
                ImageYStrip2dSplit<Lvl3, image::BaseImage, OutSingleYStrip2d>{this->template attribute<Output>().get(),
                                                                              *cut_});
        });
    return {};
}

} // namespace orlix::imaproc::glbmsr
