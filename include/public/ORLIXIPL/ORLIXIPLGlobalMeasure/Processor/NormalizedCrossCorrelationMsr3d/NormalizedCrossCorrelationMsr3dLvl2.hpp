#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3dLvl3.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The normalized cross correlation of one pair of volumes.
class ORLIX_API NormalizedCrossCorrelationMsr3dLvl2 final
    : public NCCSubImages<NormalizedCrossCorrelationMsr3dLvl2, NormalizedCrossCorrelationMsr3dLvl3, StatsMsr3dLvl2,
                          InSubImg3d, Pass<InSubImg3d1, InZStrip3d1>, Pass<InSubImg3d2, InZStrip3d2>>
{
public:
    NormalizedCrossCorrelationMsr3dLvl2();
    ~NormalizedCrossCorrelationMsr3dLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
