#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/CountingLevels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl1.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

/// The objects of one 2d plan.
class ORLIX_API Counting2dMsrLvl2 final : public ObjectCount<Counting2dMsrLvl2, InSubLabelImg2d, StatsMsr2dLvl2,
                                                             attr::InSubImg2d, HistogramMsr2dLvl1, attr::InImg>
{
public:
    Counting2dMsrLvl2();
    ~Counting2dMsrLvl2() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
