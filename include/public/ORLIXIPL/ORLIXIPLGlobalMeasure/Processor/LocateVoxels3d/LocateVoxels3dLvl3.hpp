#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocateLevels.hpp>

namespace orlix::imaproc::glbmsr
{

/// The set voxels of one slab of planes.
class ORLIX_API LocateVoxels3dLvl3 final : public LocateStrip<LocateVoxels3dLvl3, InBinZStrip3d, OutVoxels3d>
{
public:
    LocateVoxels3dLvl3();
    ~LocateVoxels3dLvl3() override;

    static AlgorithmClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
