#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one volume under a mask.
class ORLIX_API StatsMaskMsr3dLvl2 final
    : public StripsLvl2<StatsMaskMsr3dLvl2, StatsMaskMsr3dLvl3, Pass<OutStatsResult>, StatsMerge,
                        Pass<InSubImg3d, InZStrip3d>, Pass<InSubMaskImg3d, InMaskZStrip3d>>
{
public:
    StatsMaskMsr3dLvl2();
    ~StatsMaskMsr3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
