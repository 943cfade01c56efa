#pragma once

#include <framework/attribute/GaussianNoiseStats.hpp>
#include <framework/attribute/ImageAttributes.hpp>
#include <framework/process/Levels.hpp>

#include <span>

namespace orlix::imaproc::glbmsr
{

using attr::GaussianNoiseStats;
using attr::InImg;
using attr::InKnlYStrip2d;
using attr::InSubImg2d;
using attr::OutGaussianNoiseStats;

/// Adds up numbers and sums in the order of the parts, and derives the estimate from them.
struct GaussianNoiseMerge
{
    ORLIX_API static core::ProcessingResult merge(std::span<const Ptr<GaussianNoiseStats>> parts,
                                                  GaussianNoiseStats& merged);
};

/// The noise of one strip of rows.
class ORLIX_API GaussianNoiseMsrLvl3 final
    : public Algorithm<GaussianNoiseMsrLvl3, InKnlYStrip2d, OutGaussianNoiseStats>
{
public:
    GaussianNoiseMsrLvl3();
    ~GaussianNoiseMsrLvl3() override;

    static AlgorithmClass processorClass;

    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

protected:
    core::ProcessingResult preProcess() override;
    core::ProcessingResult postProcess() override;
};

} // namespace orlix::imaproc::glbmsr
