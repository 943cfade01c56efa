#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationLevels.hpp>

#include <framework/attribute/NCCResult.hpp>

#include <span>

/// What the normalized cross correlations of plans and of volumes share. Deviations are summed in single precision over
/// 1024 pixels at most, in 16 lanes, and in double from there on; so results are within 1e-5 of those of double
/// precision for natural images. Sums over two images of one type of 8 or 16 bits are exact. All instruction sets give
/// the same bits, but that the means of float images may differ in the generic one by the rounding of double additions.
namespace orlix::imaproc::glbmsr
{

using attr::InOffset1;
using attr::InOffset2;
using attr::NCCResult;
using attr::OutNCCResult;
using attr::OutPINCCResult;
using attr::PlanIndexedNCCResult;

/// Merges strips in their order. On purpose, the first field of a merged record is the sum over image 2, and its second
/// field is left as it is.
struct NCCMerge
{
    ORLIX_API static core::ProcessingResult merge(std::span<const Ptr<NCCResult>> parts, NCCResult& merged);
};

/// A pair of strips.
template <class Self, class Strip1, class Strip2>
class NCCStrip : public Algorithm<Self, Strip1, Strip2, InOffset1, InOffset2, OutNCCResult>
{
public:
    /// Enters the kernels that this machine can run, for every pair of types.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    core::ProcessingResult postProcess() override;

private:
    double products_ = 0;
};

/// A pair of sub images.
template <class Self, class Child, class Statistics, class SubImage, class Input1, class Input2>
class NCCSubImages
    : public CorrelationLvl2<Self, Child, Pass<OutNCCResult>, NCCMerge, Statistics, SubImage, Input1, Input2>
{
protected:
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        provider = this->makeStripsProvider(
            priority, DynamicNoSplit<Child, InOffset1>{static_cast<float>(this->deviations1().mean)},
            DynamicNoSplit<Child, InOffset2>{static_cast<float>(this->deviations2().mean)});
        return {};
    }

private:
    using BaseAsync1Processor::retrieveProvider;
};

} // namespace orlix::imaproc::glbmsr
