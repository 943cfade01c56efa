#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2dLvl2.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::InOptPIHistoMsrParams;
using attr::OutPIGlobalEntropyResult;
using attr::PlanIndexedGlobalEntropyResult;
using attr::PlanIndexedHistoMsrParams;

/// The entropy of every 2d plan of an image.
class ORLIX_API GlobalEntropyMsr2dLvl1 final
    : public PlanIndexedLvl1<GlobalEntropyMsr2dLvl1, GlobalEntropyMsr2dLvl2,
                             Pass<OutPIGlobalEntropyResult, OutGlobalEntropyResult>, Pass<InImg, InSubImg2d>,
                             Pass<InOptPIHistoMsrParams, InOptHistoMsrParams>>
{
public:
    GlobalEntropyMsr2dLvl1();
    ~GlobalEntropyMsr2dLvl1() override;

    static ProcessorClass processorClass;
};

} // namespace orlix::imaproc::glbmsr
