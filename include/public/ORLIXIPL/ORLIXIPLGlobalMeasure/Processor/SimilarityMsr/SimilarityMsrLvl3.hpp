#pragma once

#include <framework/attribute/ImageAttributes.hpp>
#include <framework/attribute/SimilarityStats.hpp>
#include <framework/process/Levels.hpp>

#include <span>

namespace orlix::imaproc::glbmsr
{

using attr::InImg1;
using attr::InImg2;
using attr::InSubImg2d1;
using attr::InSubImg2d2;
using attr::InYStrip2d1;
using attr::InYStrip2d2;
using attr::OutSimilarityStats;
using attr::SimilarityStats;

/// Adds up numbers and sums in the order of the parts, and derives the rest from them.
struct SimilarityMerge
{
    ORLIX_API static core::ProcessingResult merge(std::span<const Ptr<SimilarityStats>> parts, SimilarityStats& merged);
};

/// The squared differences of a pair of strips.
class ORLIX_API SimilarityMsrLvl3 final
    : public Algorithm<SimilarityMsrLvl3, InYStrip2d1, InYStrip2d2, OutSimilarityStats>
{
public:
    SimilarityMsrLvl3();
    ~SimilarityMsrLvl3() override;

    /// Enters the kernels that this machine can run.
    static void functionRegistration(AlgorithmFunctionSelector& selector);

    template <class T, core::eInstructionSet::domain D>
    core::ProcessingResult genericProcessFunction(ProcessingInfo info);

    static AlgorithmClass processorClass;

protected:
    Rule makeRule() const override;
    core::ProcessingResult preProcess() override;
    core::ProcessingResult postProcess() override;
};

} // namespace orlix::imaproc::glbmsr
