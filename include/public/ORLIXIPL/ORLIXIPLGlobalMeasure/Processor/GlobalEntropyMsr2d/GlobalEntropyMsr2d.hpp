#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramLevels.hpp>

#include <framework/attribute/GlobalEntropyResult.hpp>

namespace orlix::imaproc::glbmsr
{

using attr::GlobalEntropyResult;
using attr::InOptPIHistoMsrParams;
using attr::OutGlobalEntropyResult;
using attr::OutPIGlobalEntropyResult;
using attr::PlanIndexedGlobalEntropyResult;
using attr::PlanIndexedHistoMsrParams;

/// The entropy of one 2d plan: its statistics, unless there are parameters, then its histogram, then the sum.
class ORLIX_API GlobalEntropyMsr2dLvl2 final : public Processor<GlobalEntropyMsr2dLvl2, BaseAsync1Processor, InSubImg2d,
                                                                InOptHistoMsrParams, OutGlobalEntropyResult>
{
public:
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

    Ptr<BaseProcessor> statistics_;
    Ptr<BaseProcessor> histogram_;
};

/// The entropy of every 2d plan of an image.
class ORLIX_API GlobalEntropyMsr2dLvl1 final
    : public Processor<GlobalEntropyMsr2dLvl1, Level, InImg, InOptPIHistoMsrParams, OutPIGlobalEntropyResult>
{
public:
    static LevelClass processorClass;
};

/// The Shannon entropy of the grey levels, in nats: one result per 2d plan (z, c, t). Without parameters the range of
/// the plan is cut into up to 65536 classes, at least 1 wide for integers and at least 256 of them for floats; what
/// lies outside the range of given parameters does not count. The form that takes one record applies it to plan (0, 0,
/// 0), the multi-slice form takes a record for every plan that is not to have its default. Fails where the histogram of
/// a plan does. The synchronous forms throw ORLIXBaseProcessingException when the run fails; the single-result forms
/// measure plan (0, 0, 0) only.
ORLIX_API Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                                                      const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                               const Ptr<const HistoMsrParams>& params);
ORLIX_API Ptr<PlanIndexedGlobalEntropyResult> multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1> multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image);
ORLIX_API Ptr<PlanIndexedGlobalEntropyResult>
multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                              const Ptr<const PlanIndexedHistoMsrParams>& params);
ORLIX_API Ptr<GlobalEntropyMsr2dLvl1>
multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                    const Ptr<const PlanIndexedHistoMsrParams>& params);

/// The result of a run, valid once its wait() has returned success. After a failure or cancellation it is null, or the
/// unfinished record of a single-result form.
ORLIX_API Ptr<GlobalEntropyResult> getAsyncProcessorOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor);
ORLIX_API Ptr<PlanIndexedGlobalEntropyResult>
getAsyncProcessorMultiSliceOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor);

} // namespace orlix::imaproc::glbmsr
