#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The objects of every 2d plan of a label image.
class ORLIX_API Counting2dMsrLvl1 final
    : public PlanIndexedLvl1<Counting2dMsrLvl1, Counting2dMsrLvl2, Pass<OutPIIndexableUInt64, OutIndexableUInt64>,
                             Pass<InLabelImg, InSubLabelImg2d>>
{
public:
    Counting2dMsrLvl1();
    ~Counting2dMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
