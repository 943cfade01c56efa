#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting/CountingLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/MeasureMessages.hpp>

#include <framework/core/Settings.hpp>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// Whether a histogram tells all labels of a range apart.
bool fitsHistogram(double lowest, double highest)
{
    constexpr double limit = 1 << 24; // beyond it, single precision takes several labels for one
    return -limit <= lowest && highest <= limit;
}

/// The classes but the first that hold a pixel.
std::uint64_t countObjects(const attr::HistogramData& labels)
{
    return static_cast<std::uint64_t>(std::count_if(labels.Frequencies.begin() + 1, labels.Frequencies.end(),
                                                    [](std::uint64_t frequency) { return frequency != 0; }));
}

/// A set of numbers from 0 to a largest one, which any number of threads add to. It takes memory where numbers lie.
class NumberSet
{
public:
    static std::size_t bytesFor(std::uint32_t largest)
    {
        return (std::size_t{largest} / 64 + 1) * sizeof(std::uint64_t);
    }

    explicit NumberSet(std::uint32_t largest)
        : size_{std::size_t{largest} / 64 + 1}, words_{static_cast<std::uint64_t*>(
                                                    std::calloc(size_, sizeof(std::uint64_t)))}
    {
        if (words_ == nullptr) {
            throw std::bad_alloc{};
        }
    }

    void add(std::uint32_t number)
    {
        const std::atomic_ref word{words_.get()[number / 64]};
        const std::uint64_t bit = std::uint64_t{1} << number % 64;
        if ((word.load(std::memory_order_relaxed) & bit) == 0) {
            word.fetch_or(bit, std::memory_order_relaxed);
        }
    }

    std::uint64_t count() const
    {
        std::uint64_t numbers = 0;
        for (std::size_t i = 0; i < size_; ++i) {
            numbers += static_cast<std::uint64_t>(std::popcount(words_.get()[i]));
        }
        return numbers;
    }

private:
    struct Free
    {
        void operator()(std::uint64_t* words) const { std::free(words); }
    };

    std::size_t size_;
    std::unique_ptr<std::uint64_t, Free> words_; // calloc has large zeroed memory at no cost
};

class LabelCounter final : public ActionProvider
{
public:
    LabelCounter(Ptr<const image::BaseImage> image, std::uint32_t lowest, std::uint32_t span, std::size_t partBytes,
                 ePriority priority, std::uint64_t& labels)
        : image_{std::move(image)}, lowest_{lowest}, span_{span},
          partBytes_{partBytes}, priority_{priority}, labels_{labels}
    {}

    core::ProcessingResult process(const RunContext& context) override
    {
        const image::ImageGeometry& size = image_->getGeometry();
        NumberSet set{span_};
        const std::size_t rows = std::min(size.y, partBytes_ / (size.x * sizeof(std::uint32_t)) + 1);
        const std::size_t parts = (size.y + rows - 1) / rows; // of a plane
        std::mutex mutex;
        core::ProcessingResult result;
        std::atomic<bool> ends{false};
        const auto addParts = [&](std::size_t begin, std::size_t end) {
            try {
                for (std::size_t i = begin; i < end && !ends && !context.cancelled(); ++i) {
                    const std::size_t y = i % parts * rows;
                    addPart({{0, y, i / parts}, {size.x, std::min(rows, size.y - y)}}, set);
                }
            } catch (...) {
                const std::lock_guard lock{mutex};
                result = core::ProcessingResult::failure(core::describeCurrentException());
                ends = true;
            }
        };
        executor::parallelInOrder(parts * size.z, 1, priority_, RangeBody{addParts});
        context.advance();
        labels_ = set.count();
        return context.cancelled() && result
                   ? core::ProcessingResult::failure(core::formatMessage(imaproc::eProcessorMessage::eCancelled))
                   : result;
    }

private:
    /// Rows of a plane.
    void addPart(const image::Box& part, NumberSet& set) const
    {
        const image::LoadRoom room{image_->hasSource() ? part.size.nbPixels() * sizeof(std::uint32_t) : 0, 0};
        const image::LoadedBox loaded = image_->load(part);
        for (std::size_t y = 0; y < part.size.y; ++y) {
            // Of either sign: what counts is how far it lies from the lowest.
            const auto* const pixels = reinterpret_cast<const std::uint32_t*>(
                loaded.first + static_cast<std::ptrdiff_t>(y) * loaded.strides.y);
            for (std::size_t x = 0; x < part.size.x; ++x) {
                if (x == 0 || pixels[x] != pixels[x - 1]) {
                    set.add(pixels[x] - lowest_);
                }
            }
        }
    }

    Ptr<const image::BaseImage> image_;
    std::uint32_t lowest_;
    std::uint32_t span_;
    std::size_t partBytes_;
    ePriority priority_;
    std::uint64_t& labels_;
};

/// Counts the different pixels of a plan or volume of 32-bit integers from `lowest` to `highest` into `labels`, in
/// parts of about so many bytes. Fails where a bit for each takes more than the memory limit.
core::ProcessingResult makeLabelCounter(Ptr<const image::BaseImage> image, double lowest, double highest,
                                        std::size_t partBytes, ePriority priority, std::uint64_t& labels,
                                        Ptr<ActionProvider>& provider)
{
    const auto span = static_cast<std::uint32_t>(highest - lowest);
    const std::size_t bytes = NumberSet::bytesFor(span);
    if (const std::size_t limit = core::settings::getMemoryLimit(); bytes > limit) {
        return core::ProcessingResult::failure(
            core::formatMessage(eMeasureMessage::eMM_WideLabels, lowest, highest, (bytes >> 20) + 1, limit >> 20));
    }
    const auto first = static_cast<std::uint32_t>(static_cast<std::int64_t>(lowest));
    provider = makePtr<LabelCounter>(std::move(image), first, span, partBytes, priority, labels);
    return {};
}

} // namespace

void ObjectCount::clearIntermediateDataDerived()
{
    statistics_.reset();
    histogram_.reset();
}

Ptr<BaseProcessor> ObjectCount::makeStage(std::size_t)
{
    statistics_ = makeStageProcessor(getStatisticsClass(), {getAttributes().front()});
    return statistics_;
}

core::ProcessingResult ObjectCount::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    const auto range = statistics_->getStorage<OutStatsResult>();
    const attr::BaseAttribute& labels = *getAttributes().front();
    if (!fitsHistogram(range->Min, range->Max)) {
        const auto& image = static_cast<const attr::StoredAttribute<Ptr<const image::BaseImage>>&>(labels).get();
        return makeLabelCounter(image, range->Min, range->Max, getDispatchPolicy().stripBytes, priority, nbLabels_,
                                provider);
    }
    const Ptr<BaseProcessor> processor = makeStageProcessor(getHistogramClass(), {&labels});
    histogram_ = makePtr<attr::HistogramData>();
    auto collection = makePtr<attr::PlanIndexedHistogramData>();
    collection->insert({0, 0, 0}, histogram_);
    processor->set<InOptHistoMsrParams>(createHistoMsrParamsWithBinWidth(range->Min, range->Max, 1.0));
    processor->set<OutPIHistogram>(collection);
    provider = makeSingleActionProvider(processor);
    return {};
}

core::ProcessingResult ObjectCount::postProcess()
{
    output<IndexableUInt64>().Value = histogram_ ? countObjects(*histogram_) : nbLabels_ - 1;
    return {};
}

LevelClass Counting2dMsrLvl1::processorClass = defineLevel<Counting2dMsrLvl1, Counting2dMsrLvl2>(3);
ProcessorClass Counting2dMsrLvl2::processorClass = define<Counting2dMsrLvl2>(4);
LevelClass Counting3dMsrLvl1::processorClass = defineLevel<Counting3dMsrLvl1, Counting3dMsrLvl2>(5);
ProcessorClass Counting3dMsrLvl2::processorClass = define<Counting3dMsrLvl2>(6);

namespace
{

constexpr data::FieldInfo countField{"Count", "number of the objects", "objects"};

void nameCount(NamedFields& fields, const NamedValues&, const image::ImageGeometry&)
{
    fields[0].first = countField.name;
    fields[0].second.info = countField;
}

const MeasureRegistration registration{{"Object count",
                                        "count",
                                        "number of objects in a label image",
                                        "The lowest label of a plan or volume is its background, whatever it is.",
                                        {&Counting2dMsrLvl1::processorClass, &Counting3dMsrLvl1::processorClass},
                                        {.fields = {countField}, .finish = &nameCount}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
