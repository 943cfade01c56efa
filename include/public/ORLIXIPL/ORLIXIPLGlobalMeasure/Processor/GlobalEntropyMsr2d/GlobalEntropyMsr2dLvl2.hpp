#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2dLvl2.hpp>

#include <framework/attribute/GlobalEntropyResult.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::GlobalEntropyResult;
using attr::OutGlobalEntropyResult;

/// The entropy of one 2d plan: its statistics, unless there are parameters, then its histogram, then the sum.
class ORLIX_API GlobalEntropyMsr2dLvl2 final : public Processor<GlobalEntropyMsr2dLvl2, BaseAsync1Processor, InSubImg2d,
                                                                InOptHistoMsrParams, OutGlobalEntropyResult>
{
public:
    GlobalEntropyMsr2dLvl2();
    ~GlobalEntropyMsr2dLvl2() override;

    static ProcessorClass processorClass;

protected:
    void clearIntermediateDataDerived() override;
    std::size_t retrieveSequenceInfo() const override { return 2; }
    Ptr<BaseProcessor> makeStage(std::size_t index) override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

private:
    using BaseAsync1Processor::retrieveProvider;

    Ptr<const HistoMsrParams> chooseParams() const;

    Ptr<StatsMsr2dLvl2> statistics_;
    Ptr<HistogramMsr2dLvl2> histogram_;
};

} // namespace orlix::imaproc::glbmsr
