#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2dLvl3.hpp>

#include <framework/process/Dispatcher.hpp>

#include <optional>
#include <vector>

namespace orlix::imaproc::glbmsr
{

using attr::Doubles;
using attr::InProjStatType;
using attr::InSubImg2d;

/// A statistic of every column of a 2d image.
class ORLIX_API XProjection2dLvl1 final
    : public Processor<XProjection2dLvl1, BaseAsync1Processor, InSubImg2d, InProjStatType, OutProjStat>
{
public:
    XProjection2dLvl1();
    ~XProjection2dLvl1() override;

    static ProcessorClass processorClass;

protected:
    void clearIntermediateDataDerived() override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

private:
    using BaseAsync1Processor::retrieveProvider;

    std::optional<StripCut> cut_;
    std::vector<Ptr<Doubles>> parts_;   ///< of the strips, in their order: what is merged, or sums
    std::vector<Ptr<Doubles>> squares_; ///< sums of squares
};

} // namespace orlix::imaproc::glbmsr
