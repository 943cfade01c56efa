#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

#include <algorithm>
#include <cmath>

namespace orlix::imaproc::glbmsr
{

ProcessorClass GlobalEntropyMsr2dLvl2::processorClass = declare<GlobalEntropyMsr2dLvl2>("GlobalEntropyMsr2dLvl2", 11);

GlobalEntropyMsr2dLvl2::GlobalEntropyMsr2dLvl2() = default;
GlobalEntropyMsr2dLvl2::~GlobalEntropyMsr2dLvl2() = default;

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
    statistics_ = makeStageProcessor<StatsMsr2dLvl2, InSubImg2d>(attribute<InSubImg2d>().get());
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
        return nullptr; // no range for any classes, as the histogram will say
    }
    double width = std::max(1.0, span * 1.52587890625e-5);
    if (value<InSubImg2d>().getType() == image::eImageBufferType::eIBT_Float32) {
        width = std::min(span * 0.00390625, width);
    }
    return attr::createHistoMsrParamsWithBinWidth(range.Min, range.Max, width);
}

core::ProcessingResult GlobalEntropyMsr2dLvl2::retrieveProvider(ePriority, Ptr<ActionProvider>& provider)
{
    histogram_ = makeStageProcessor<HistogramMsr2dLvl2, InSubImg2d, InOptHistoMsrParams>(attribute<InSubImg2d>().get(),
                                                                                         chooseParams());
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

} // namespace orlix::imaproc::glbmsr
