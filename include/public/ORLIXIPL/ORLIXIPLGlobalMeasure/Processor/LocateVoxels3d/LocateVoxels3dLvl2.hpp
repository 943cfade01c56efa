#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3dLvl3.hpp>

namespace orlix::imaproc::glbmsr
{

/// The set voxels of one volume.
class ORLIX_API LocateVoxels3dLvl2 final
    : public LocateSubImage<LocateVoxels3dLvl2, LocateVoxels3dLvl3, OutVoxels3d, Pass<InSubBinImg3d, InBinZStrip3d>>
{
public:
    LocateVoxels3dLvl2();
    ~LocateVoxels3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
