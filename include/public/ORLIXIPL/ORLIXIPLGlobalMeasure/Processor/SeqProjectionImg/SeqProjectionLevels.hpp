#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImgLvl3.hpp>

#include <framework/process/Levels.hpp>

#include <optional>

/// What the projections along the time and along z share: a volume is a sequence of its planes.
///
/// Neither threads, nor the layout of the pixels in memory, nor the instruction set change a bit of a result.
namespace orlix::imaproc::glbmsr
{

using attr::InImg3d;
using attr::InProjStatType;
using attr::InSeqImg;
using attr::InSubImg3d;
using attr::InSubSeqImg2d;
using attr::OutImg2d;
using attr::OutSingleImg;

/// One sequence, or one volume, and the plan that it becomes.
template <class Self, class Input, class Output>
class SeqProjectionLvl2 : public Processor<Self, BaseAsync1Processor, Input, InProjStatType, Output>
{
protected:
    Rule makeRule() const override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;

private:
    std::optional<StripCut> cut_;
};

} // namespace orlix::imaproc::glbmsr
