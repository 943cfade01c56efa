#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The squared differences of two images, over all their plans.
class ORLIX_API SimilarityMsrLvl1 final
    : public MergedLvl1<SimilarityMsrLvl1, SimilarityMsrLvl2, Pass<OutSimilarityStats>, SimilarityMerge,
                        Pass<InImg1, InSubImg2d1>, Pass<InImg2, InSubImg2d2>>
{
public:
    SimilarityMsrLvl1();
    ~SimilarityMsrLvl1() override;

    static ProcessorClass processorClass;

protected:
    Rule makeRule() const override;
};

} // namespace orlix::imaproc::glbmsr
