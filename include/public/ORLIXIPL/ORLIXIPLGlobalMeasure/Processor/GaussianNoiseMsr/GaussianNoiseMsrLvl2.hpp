#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsrLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The noise of one 2d plan.
class ORLIX_API GaussianNoiseMsrLvl2 final
    : public StripsLvl2<GaussianNoiseMsrLvl2, GaussianNoiseMsrLvl3, Pass<OutGaussianNoiseStats>, GaussianNoiseMerge,
                        Pass<InSubImg2d, InKnlYStrip2d>>
{
public:
    GaussianNoiseMsrLvl2();
    ~GaussianNoiseMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
