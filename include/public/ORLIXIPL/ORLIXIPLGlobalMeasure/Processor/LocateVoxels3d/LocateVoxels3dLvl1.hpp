#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The set voxels of every volume of a binary image.
class ORLIX_API LocateVoxels3dLvl1 final
    : public PlanIndexedLvl1<LocateVoxels3dLvl1, LocateVoxels3dLvl2, Pass<OutPIVoxels3d, OutVoxels3d>,
                             Pass<InBinImg3d, InSubBinImg3d>, Pass<InNbFeatures>>
{
public:
    LocateVoxels3dLvl1();
    ~LocateVoxels3dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
