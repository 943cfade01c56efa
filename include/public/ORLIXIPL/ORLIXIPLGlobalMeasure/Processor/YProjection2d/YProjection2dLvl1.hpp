#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2dLvl3.hpp>

#include <framework/process/Dispatcher.hpp>

#include <optional>
#include <vector>

namespace orlix::imaproc::glbmsr
{

using attr::Doubles;
using attr::InProjStatType;
using attr::InSubImg2d;

/// A statistic of every row of a 2d image.
class ORLIX_API YProjection2dLvl1 final
    : public Processor<YProjection2dLvl1, BaseAsync1Processor, InSubImg2d, InProjStatType, OutProjStat>
{
public:
    YProjection2dLvl1();
    ~YProjection2dLvl1() override;

    static ProcessorClass processorClass;

protected:
    void clearIntermediateDataDerived() override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

private:
    using BaseAsync1Processor::retrieveProvider;

    std::optional<StripCut> cut_;
    std::vector<Ptr<Doubles>> parts_; ///< of the strips, in their order
};

} // namespace orlix::imaproc::glbmsr
