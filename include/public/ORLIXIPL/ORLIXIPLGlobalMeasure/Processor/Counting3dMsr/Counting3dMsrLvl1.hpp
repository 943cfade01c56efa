#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsrLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The objects of every volume of a label image.
class ORLIX_API Counting3dMsrLvl1 final
    : public PlanIndexedLvl1<Counting3dMsrLvl1, Counting3dMsrLvl2, Pass<OutPIIndexableUInt64, OutIndexableUInt64>,
                             Pass<InLabelImg3d, InSubLabelImg3d>>
{
public:
    Counting3dMsrLvl1();
    ~Counting3dMsrLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
