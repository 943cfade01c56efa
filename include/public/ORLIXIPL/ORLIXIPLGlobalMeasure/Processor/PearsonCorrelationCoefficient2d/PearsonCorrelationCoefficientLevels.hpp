#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationLevels.hpp>

#include <framework/attribute/PearsonCCResult.hpp>

#include <span>

/// What the Pearson correlations of plans and of volumes share. Everything is computed in double precision; products
/// are summed over one row at most, in 16 lanes. All instruction sets give the same bits, but that the means and
/// deviations of float images may differ in the generic one by the rounding of double additions.
namespace orlix::imaproc::glbmsr
{

using attr::InFactor;
using attr::InImgMean1;
using attr::InImgMean2;
using attr::OutPearsonCCResult;
using attr::OutPIPearsonCCResult;
using attr::PearsonCCResult;
using attr::PlanIndexedPearsonCCResult;

/// The sum of the parts, in their order.
struct PearsonCCMerge
{
    ORLIX_API static core::ProcessingResult merge(std::span<const Ptr<PearsonCCResult>> parts, PearsonCCResult& merged);
};

/// A pair of strips.
template <class Self, class Strip1, class Strip2>
class PearsonCCStrip : public Algorithm<Self, Strip1, Strip2, InImgMean1, InImgMean2, InFactor, OutPearsonCCResult>
{
public:
    /// Enters the kernels that this machine can run, for every pair of types.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);
};

/// A pair of sub images.
template <class Self, class Child, class Statistics, class SubImage, class Input1, class Input2>
class PearsonCCSubImages : public CorrelationLvl2<Self, Child, Pass<OutPearsonCCResult>, PearsonCCMerge, Statistics,
                                                  SubImage, Input1, Input2>
{
protected:
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const Deviations first = this->deviations1();
        const Deviations second = this->deviations2();
        provider = this->makeStripsProvider(priority, DynamicNoSplit<Child, InImgMean1>{first.mean},
                                            DynamicNoSplit<Child, InImgMean2>{second.mean},
                                            DynamicNoSplit<Child, InFactor>{first.stdDev * second.stdDev});
        return {};
    }

private:
    using BaseAsync1Processor::retrieveProvider;
};

} // namespace orlix::imaproc::glbmsr
