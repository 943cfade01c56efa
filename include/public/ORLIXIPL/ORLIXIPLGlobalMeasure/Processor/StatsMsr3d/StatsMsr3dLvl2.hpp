#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The statistics of one 3d volume.
class ORLIX_API StatsMsr3dLvl2 final
    : public StripsLvl2<StatsMsr3dLvl2, StatsMsr3dLvl3, Pass<OutStatsResult>, StatsMerge, Pass<InSubImg3d, InZStrip3d>>
{
public:
    StatsMsr3dLvl2();
    ~StatsMsr3dLvl2() override;

    static ProcessorClass processorClass;
    static GpuVariant gpuVariant;
};

} // namespace orlix::imaproc::glbmsr
