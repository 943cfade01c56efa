#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2d.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramBins.hpp>

#include <framework/process/CallingForms.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::glbmsr
{

void GlobalEntropyMsr2dLvl2::clearIntermediateDataDerived()
{
    statistics_.reset();
    histogram_.reset();
}

Ptr<BaseProcessor> GlobalEntropyMsr2dLvl2::makeStage(std::size_t)
{
    statistics_.reset();
    if (attribute<InOptHistoMsrParams>().isSet()) {
        return nullptr;
    }
    statistics_ = makeStageProcessor(StatsMsr2dLvl2::processorClass, {&attribute<InSubImg2d>()});
    return statistics_;
}

Ptr<const HistoMsrParams> GlobalEntropyMsr2dLvl2::chooseParams() const
{
    if (!statistics_) {
        auto params = makePtr<HistoMsrParams>(value<InOptHistoMsrParams>());
        if (params->MinMaxDefinition != attr::eMinMaxDefinition::eMMD_UserDefinedMinMax) {
            params->MinMaxDefinition = attr::eMinMaxDefinition::eMMD_ImgMinMax;
        }
        return params;
    }
    // Up to 65536 classes; of floats, 256 at least.
    const attr::StatsResult& range = *statistics_->getStorage<attr::OutStatsResult>();
    const double span = range.Max - range.Min;
    if (!std::isfinite(span)) {
        return nullptr; // no range for any bins, as the histogram will say
    }
    double width = std::max(1.0, span * 1.52587890625e-5);
    if (value<InSubImg2d>().getType() == image::eImageBufferType::eIBT_Float32) {
        width = std::min(span * 0.00390625, width);
    }
    return attr::createHistoMsrParamsWithBinWidth(range.Min, range.Max, width);
}

core::ProcessingResult GlobalEntropyMsr2dLvl2::retrieveProvider(ePriority, Ptr<ActionProvider>& provider)
{
    histogram_ = makeStageProcessor(HistogramMsr2dLvl2::processorClass, {&attribute<InSubImg2d>()});
    histogram_->set<InOptHistoMsrParams>(chooseParams());
    provider = makeSingleActionProvider(histogram_);
    return {};
}

core::ProcessingResult GlobalEntropyMsr2dLvl2::postProcess()
{
    const auto& frequencies = histogram_->getStorage<OutHistogram>()->Frequencies;
    std::uint64_t sum = 0;
    for (const std::uint64_t frequency : frequencies) {
        sum += frequency;
    }
    const auto total = static_cast<double>(sum);
    double entropy = 0;
    for (const std::uint64_t frequency : frequencies) {
        if (frequency != 0) {
            const double p = static_cast<double>(frequency) / total;
            entropy += p * std::log(1 / p);
        }
    }
    value<OutGlobalEntropyResult>().Entropy = entropy;
    return {};
}

LevelClass GlobalEntropyMsr2dLvl1::processorClass = defineLevel<GlobalEntropyMsr2dLvl1, GlobalEntropyMsr2dLvl2>(10);
ProcessorClass GlobalEntropyMsr2dLvl2::processorClass = define<GlobalEntropyMsr2dLvl2>(11);

namespace
{

const MeasureRegistration registration{{"Entropy",
                                        "entropy",
                                        "entropy of the grey levels of each plan, in nats",
                                        "",
                                        {&GlobalEntropyMsr2dLvl1::processorClass},
                                        binExtras}};

} // namespace

namespace
{

Ptr<const PlanIndexedHistoMsrParams> forFirstPlan(const Ptr<const HistoMsrParams>& params)
{
    if (!params) {
        return nullptr;
    }
    auto collection = makePtr<PlanIndexedHistoMsrParams>();
    collection->insert({0, 0, 0}, makePtr<HistoMsrParams>(*params));
    return collection;
}

} // namespace

Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::single<InImg>(image);
}

Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::singleAsync<InImg>(image);
}

Ptr<GlobalEntropyResult> globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                                            const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::single<InImg, InOptPIHistoMsrParams>(image, forFirstPlan(params));
}

Ptr<GlobalEntropyMsr2dLvl1> globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const HistoMsrParams>& params)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::singleAsync<InImg, InOptPIHistoMsrParams>(image, forFirstPlan(params));
}

Ptr<PlanIndexedGlobalEntropyResult> multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::everyPlan<InImg>(image);
}

Ptr<GlobalEntropyMsr2dLvl1> multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::everyPlanAsync<InImg>(image);
}

Ptr<PlanIndexedGlobalEntropyResult> multiSlice_globalEntropyMsr2d(const Ptr<const image::BaseImage>& image,
                                                                  const Ptr<const PlanIndexedHistoMsrParams>& params)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::everyPlan<InImg, InOptPIHistoMsrParams>(image, params);
}

Ptr<GlobalEntropyMsr2dLvl1> multiSlice_globalEntropyMsr2d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const PlanIndexedHistoMsrParams>& params)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::everyPlanAsync<InImg, InOptPIHistoMsrParams>(image, params);
}

Ptr<GlobalEntropyResult> getAsyncProcessorOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::output(processor);
}

Ptr<PlanIndexedGlobalEntropyResult> getAsyncProcessorMultiSliceOutput(const Ptr<GlobalEntropyMsr2dLvl1>& processor)
{
    return CallingForms<GlobalEntropyMsr2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
