#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/CountingLevels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3dLvl1.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The objects of one volume.
class ORLIX_API Counting3dMsrLvl2 final : public ObjectCount<Counting3dMsrLvl2, InSubLabelImg3d, StatsMsr3dLvl2,
                                                             attr::InSubImg3d, HistogramMsr3dLvl1, attr::InImg3d>
{
public:
    Counting3dMsrLvl2();
    ~Counting3dMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
