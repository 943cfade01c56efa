#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The squared differences of a pair of 2d plans.
class ORLIX_API SimilarityMsrLvl2 final
    : public StripsLvl2<SimilarityMsrLvl2, SimilarityMsrLvl3, Pass<OutSimilarityStats>, SimilarityMerge,
                        Pass<InSubImg2d1, InYStrip2d1>, Pass<InSubImg2d2, InYStrip2d2>>
{
public:
    SimilarityMsrLvl2();
    ~SimilarityMsrLvl2() override;

    static ProcessorClass processorClass;

protected:
    Rule makeRule() const override;
};

} // namespace orlix::imaproc::glbmsr
