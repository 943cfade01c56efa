#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/process/Levels.hpp>

#include <span>

/// What the statistics measures share, with a mask and without. One pass over the pixels gives number, sum, mean,
/// minimum, maximum and standard deviation; the measures differ in how much of the image one result covers.
///
/// Neither threads nor the layout of the pixels in memory change a bit of a result. Integer images give the same bits
/// on every instruction set, float images on every vector instruction set; there the generic kernel adds in another
/// order, so that sum, mean and standard deviation may differ by the rounding of double additions, and a minimum or
/// maximum of zero by its sign. A mask that is set everywhere changes no bit.
///
/// The deviation is sqrt(E[x^2] - Mean^2) in double precision, on purpose without a clamp: NaN for about half of the
/// float images that hold one constant; of few digits where pixels are far from zero compared with their spread (floats
/// between 1e6 and 1e6 + 1: 0.245 for 0.290; uint32 between 4294967195 and 4294967294: 45.3 for 28.8). A NaN pixel
/// makes sum, mean and deviation NaN; as minimum or maximum it stays until the next number, so these depend on where
/// NaN lie. A part without pixels adds nothing to a merge.
///
/// An image on a GPU (framework/gpu) is measured there, without a mask. Its number, minimum, maximum and, where the
/// absolute values sum to less than 2^53, the sum of integers are those of the CPU; other sums, mean and deviation may
/// differ by the rounding of double additions, whose order the GPU's number of multiprocessors decides. Every run on
/// one GPU gives the same bits.
namespace orlix::imaproc::glbmsr
{

using attr::InImg;
using attr::InImg3d;
using attr::InMaskImg;
using attr::InMaskYStrip2d;
using attr::InMaskZStrip3d;
using attr::InSubImg2d;
using attr::InSubImg3d;
using attr::InSubMaskImg2d;
using attr::InSubMaskImg3d;
using attr::InYStrip2d;
using attr::InZStrip3d;
using attr::OutPIStatsResult;
using attr::OutStatsResult;
using attr::PlanIndexedStatsResult;
using attr::StatsResult;

/// Merges the statistics of disjoint parts, in their order; the sums of squares are rebuilt from mean and deviation.
struct StatsMerge
{
    ORLIX_API static core::ProcessingResult merge(std::span<const Ptr<StatsResult>> parts, StatsResult& merged);
};

/// One strip: the kernel and what is made of its sums. Strip is the strip attribute, Mask that of the mask's strip or
/// nothing.
template <class Self, class Strip, class... Mask>
class StatsStrip : public Algorithm<Self, Strip, Mask..., OutStatsResult>
{
    static constexpr bool isMasked = sizeof...(Mask) != 0;

public:
    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    core::ProcessingResult preProcess() override;
    core::ProcessingResult postProcess() override;

private:
    static const auto& getKernels();

    double sumSq_ = 0;
};

} // namespace orlix::imaproc::glbmsr
