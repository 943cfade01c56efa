#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The noise of an image, over all its plans.
class ORLIX_API GaussianNoiseMsrLvl1 final
    : public MergedLvl1<GaussianNoiseMsrLvl1, GaussianNoiseMsrLvl2, Pass<OutGaussianNoiseStats>, GaussianNoiseMerge,
                        Pass<InImg, InSubImg2d>>
{
public:
    GaussianNoiseMsrLvl1();
    ~GaussianNoiseMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
