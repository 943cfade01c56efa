#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramBins.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/StripCounts.hpp>
#include <framework/kernel/StripRuns.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

template <bool IsMasked>
const auto& getKernels()
{
    if constexpr (IsMasked) {
        return getHistogramMaskKernels();
    } else {
        return getHistogramKernels();
    }
}

} // namespace

template <bool IsMasked>
void HistogramStrip<IsMasked>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels<HistogramStrip>(selector, 1, []<class T>(std::type_identity<T>, auto set) {
        return kernelOf<T>(getKernels<IsMasked>().of(set)) != nullptr;
    });
}

template <bool IsMasked>
core::ProcessingResult HistogramStrip<IsMasked>::read(data::InputArchive& archive)
{
    core::ProcessingResult result = BaseProcessingAlgorithm::read(archive);
    attr::BaseAttribute& histogram = *getAttributes().back();
    histogram.setRecord(histogram.shareRecord());
    return result;
}

template <bool IsMasked>
Rule HistogramStrip<IsMasked>::makeRule() const
{
    return matchBins(*getAttributes().back(), *getAttributes().front());
}

template <bool IsMasked>
core::ProcessingResult HistogramStrip<IsMasked>::preProcess()
{
    output<HistogramData>().clear();
    return {};
}

template <bool IsMasked>
template <class T>
core::ProcessingResult HistogramStrip<IsMasked>::genericProcessFunction(ProcessingInfo info)
{
    // Rules may be switched off; the bounds of the vector are not.
    HistogramData& histogram = output<HistogramData>();
    if (core::ProcessingResult result = checkHasBins(*getAttributes().back(), histogram); !result) {
        return result;
    }
    StripCounts counts{histogram, image::imageBufferTypeOf<T>, info.size, IsMasked, tables_};
    const auto kernel = kernelOf<T>(getKernels<IsMasked>().of(getDomain()));
    const auto add = [&](const auto& run) { counts.add(kernel, run); };
    if constexpr (IsMasked) {
        forEachRun<T>(info, getParser(0), getParser(1), add);
    } else {
        forEachRun<T>(info, getParser(0), add);
    }
    counts.flush();
    return {};
}

template class HistogramStrip<false>;
template class HistogramStrip<true>;

Rule HistogramCount::makeRule() const
{
    const attr::BaseAttribute& histogram = *getAttributes().back();
    const bool bringsBins = histogram.getRole() == attr::eAttributeRole::eAR_InputOutput;
    return Level::makeRule() && (bringsBins ? matchBins(histogram, *getAttributes().front()) : none());
}

std::size_t HistogramCount::getMinStripPixels() const
{
    return glbmsr::getMinStripPixels(output<HistogramData>(), *getAttributes().front()->getImage());
}

std::size_t HistogramCount::getMaxParallelPlans() const
{
    return getMaxPartialHistograms(output<HistogramData>()) / 2; // a plan's own and its strip's
}

Rule Histogram::makeRule() const
{
    return HistogramCount::makeRule() && matchBinWidth(find<InOptHistoMsrParams>(), *getAttributes().front());
}

Ptr<BaseProcessor> Histogram::makeStage(std::size_t)
{
    statistics_.reset();
    const AttributeColl& attributes = getAttributes();
    if (hasUserRange(find<InOptHistoMsrParams>().get().get(), attributes.front()->getImage()->getType())) {
        return nullptr;
    }
    // Under a mask it is the second attribute.
    statistics_ = attributes[1]->getImage() != nullptr
                      ? makeStageProcessor(getStatisticsClass(), {attributes[0], attributes[1]})
                      : makeStageProcessor(getStatisticsClass(), {attributes[0]});
    return statistics_;
}

core::ProcessingResult Histogram::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    const image::eImageBufferType type = getAttributes().front()->getImage()->getType();
    const HistoMsrParams* const params = find<InOptHistoMsrParams>().get().get();
    HistogramData& histogram = output<HistogramData>();
    core::ProcessingResult result;
    if (!statistics_) {
        result = makeBins(histogram, type, params, params->Min, params->Max);
    } else {
        const auto range = statistics_->getStorage<attr::OutStatsResult>();
        statistics_.reset();
        if (range->NbPixels == 0) {
            makeEmptyBin(histogram, type, range->Min, range->Max);
            return {};
        }
        result = makeBins(histogram, type, params, range->Min, range->Max);
    }
    return result ? HistogramCount::retrieveProvider(priority, provider) : result;
}

core::ProcessingResult Histogram::postProcess()
{
    core::ProcessingResult result = HistogramCount::postProcess();
    output<HistogramData>().Frequencies.pop_back();
    return result;
}

void Histogram::clearIntermediateDataDerived()
{
    HistogramCount::clearIntermediateDataDerived();
    statistics_.reset();
}

Rule HistogramPerPlan::makeRule() const
{
    return Level::makeRule() && matchBinWidth(find<InOptHistoMsrParams>(), *getAttributes().front());
}

/// The histogram of one strip of rows.
class HistogramMsrLvl3 final : public Algorithm<HistogramMsrLvl3, HistogramStrip<false>, InYStrip2d, InOutHistogram>
{
public:
    static AlgorithmClass processorClass;
};

/// The histogram of one 2d plan, in the bins that it is given.
class HistogramMsrLvl2 final : public Processor<HistogramMsrLvl2, HistogramCount, InSubImg2d, InOutHistogram>
{
public:
    static LevelClass processorClass;
};

/// The histogram of one strip of rows under a mask.
class HistogramMaskMsrLvl3 final
    : public Algorithm<HistogramMaskMsrLvl3, HistogramStrip<true>, InYStrip2d, InMaskYStrip2d, InOutHistogram>
{
public:
    static AlgorithmClass processorClass;
};

/// The histogram of one 2d plan under a mask, in the bins that it is given.
class HistogramMaskMsrLvl2 final
    : public Processor<HistogramMaskMsrLvl2, HistogramCount, InSubImg2d, InSubMaskImg2d, InOutHistogram>
{
public:
    static LevelClass processorClass;
};

LevelClass HistogramMsrLvl1::processorClass =
    defineLevel<HistogramMsrLvl1, HistogramMsrLvl2>(27, inAnyOrder<HistogramData>);
LevelClass HistogramMsrLvl2::processorClass =
    defineLevel<HistogramMsrLvl2, HistogramMsrLvl3>(28, inAnyOrder<HistogramData>);
AlgorithmClass HistogramMsrLvl3::processorClass = defineAlgorithm<HistogramMsrLvl3>(29);

LevelClass HistogramMsr2dLvl1::processorClass = defineLevel<HistogramMsr2dLvl1, HistogramMsr2dLvl2>(21);
LevelClass HistogramMsr2dLvl2::processorClass =
    defineLevel<HistogramMsr2dLvl2, HistogramMsr2dLvl3>(22, inAnyOrder<HistogramData>);
AlgorithmClass HistogramMsr2dLvl3::processorClass = defineAlgorithm<HistogramMsr2dLvl3>(23);

LevelClass HistogramMsr3dLvl1::processorClass = defineLevel<HistogramMsr3dLvl1, HistogramMsr3dLvl2>(24);
LevelClass HistogramMsr3dLvl2::processorClass =
    defineLevel<HistogramMsr3dLvl2, HistogramMsr3dLvl3>(25, inAnyOrder<HistogramData>);
AlgorithmClass HistogramMsr3dLvl3::processorClass = defineAlgorithm<HistogramMsr3dLvl3>(26);

LevelClass HistogramMaskMsrLvl1::processorClass =
    defineLevel<HistogramMaskMsrLvl1, HistogramMaskMsrLvl2>(18, inAnyOrder<HistogramData>);
LevelClass HistogramMaskMsrLvl2::processorClass =
    defineLevel<HistogramMaskMsrLvl2, HistogramMaskMsrLvl3>(19, inAnyOrder<HistogramData>);
AlgorithmClass HistogramMaskMsrLvl3::processorClass = defineAlgorithm<HistogramMaskMsrLvl3>(20);

LevelClass HistogramMaskMsr2dLvl1::processorClass = defineLevel<HistogramMaskMsr2dLvl1, HistogramMaskMsr2dLvl2>(12);
LevelClass HistogramMaskMsr2dLvl2::processorClass =
    defineLevel<HistogramMaskMsr2dLvl2, HistogramMaskMsr2dLvl3>(13, inAnyOrder<HistogramData>);
AlgorithmClass HistogramMaskMsr2dLvl3::processorClass = defineAlgorithm<HistogramMaskMsr2dLvl3>(14);

LevelClass HistogramMaskMsr3dLvl1::processorClass = defineLevel<HistogramMaskMsr3dLvl1, HistogramMaskMsr3dLvl2>(15);
LevelClass HistogramMaskMsr3dLvl2::processorClass =
    defineLevel<HistogramMaskMsr3dLvl2, HistogramMaskMsr3dLvl3>(16, inAnyOrder<HistogramData>);
AlgorithmClass HistogramMaskMsr3dLvl3::processorClass = defineAlgorithm<HistogramMaskMsr3dLvl3>(17);

namespace
{

const MeasureRegistration registration{
    {"Histogram",
     "histogram",
     "number of pixels in classes of equal width",
     "NaN is never counted. Without bounds the range is that of the pixels, which NaN can narrow: what lies outside is "
     "not counted.",
     {&HistogramMsrLvl1::processorClass, &HistogramMsr2dLvl1::processorClass, &HistogramMsr3dLvl1::processorClass,
      &HistogramMaskMsrLvl1::processorClass, &HistogramMaskMsr2dLvl1::processorClass,
      &HistogramMaskMsr3dLvl1::processorClass},
     binExtras}};

} // namespace

} // namespace orlix::imaproc::glbmsr
