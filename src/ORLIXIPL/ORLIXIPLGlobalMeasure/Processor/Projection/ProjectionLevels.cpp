#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ColumnKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/PixelWriterKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/MomentSums.hpp>

#include <framework/core/NumericLimits.hpp>
#include <framework/core/Settings.hpp>
#include <framework/process/KernelTables.hpp>
#include <framework/process/ParallelRead.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>

namespace orlix::imaproc::glbmsr
{

using enum eProjStatType;

namespace
{

/// The set whose kernels stand behind medians that are registered as generic: the best of this machine, or of the
/// forced sets, if there are any.
core::eInstructionSet::domain chooseMedianSet(core::InstructionSetsIdentifier forced)
{
    using enum core::eInstructionSet::domain;
    for (const core::eInstructionSet::domain set : {eIS_AVX512, eIS_AVX2, eIS_SSE2}) {
        if (core::isAvailable(set) && (forced.empty() || forced.contains(set))) {
            return set;
        }
    }
    return eIS_Generic;
}

} // namespace

void XProjectionStrip::functionRegistration(AlgorithmFunctionSelector& selector, eProjStatType statistic)
{
    registerKernels<XProjectionStrip>(selector, 1, [statistic]<class T>(std::type_identity<T>, auto set) {
        return statistic == ePST_Median ? set == core::eInstructionSet::eIS_Generic
                                        : kernelOf<T>(getColumnKernels().of(set)).sum != nullptr;
    });
}

template <class T>
core::ProcessingResult XProjectionStrip::genericProcessFunction(ProcessingInfo)
{
    const image::PixelBox& box = getParser(0).getBox();
    const Columns<T> columns{reinterpret_cast<const T*>(box.origin), box.x, box.y, box.strideY};
    const ColumnKernel<T> kernel = kernelOf<T>(getColumnKernels().of(getDomain()));
    std::vector<double>& values = output<Doubles>().Values; // or the sums of squares
    std::vector<T> pixels;
    switch (getStatistic()) {
    case ePST_Mean:
    case ePST_Sum:
        values.assign(box.x, 0);
        kernel.sum(columns, values.data());
        return {};
    case ePST_StdDev:
    case ePST_Var: {
        std::vector<double>& sums = static_cast<Doubles&>(*getAttributes()[1]->getRecord()).Values;
        sums.assign(box.x, 0);
        values.assign(box.x, 0);
        kernel.squares(columns, sums.data(), values.data());
        return {};
    }
    case ePST_Median: {
        pixels.resize(box.x);
        const ColumnKernel<T> medians = kernelOf<T>(getColumnKernels().of(chooseMedianSet(getEffectiveSets())));
        const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(medians.scratchBytes(box.x, box.y));
        medians.median(columns, scratch.get(), pixels.data());
        break;
    }
    case ePST_Min:
        pixels.assign(box.x, core::NumericLimits<T>::s_max);
        kernel.minimum(columns, pixels.data());
        break;
    default:
        pixels.assign(box.x, core::NumericLimits<T>::s_min);
        kernel.maximum(columns, pixels.data());
        break;
    }
    values.assign(pixels.begin(), pixels.end());
    return {};
}

void YProjectionStrip::functionRegistration(AlgorithmFunctionSelector& selector, eProjStatType statistic)
{
    registerKernels<YProjectionStrip>(selector, 1, [statistic]<class T>(std::type_identity<T>, auto set) {
        return statistic == ePST_Median ? set == core::eInstructionSet::eIS_Generic
                                        : kernelOf<T>(getRowKernels().of(set)).sum != nullptr;
    });
}

template <class T>
core::ProcessingResult YProjectionStrip::genericProcessFunction(ProcessingInfo)
{
    const image::PixelBox& box = getParser(0).getBox();
    std::vector<double>& values = output<Doubles>().Values;
    values.resize(box.y);
    const auto n = static_cast<double>(box.x);
    const auto forEachRow = [&](auto reduce) {
        for (std::size_t y = 0; y < box.y; ++y) {
            const auto* const row = box.origin + static_cast<std::ptrdiff_t>(y) * box.strideY;
            values[y] = reduce(Run<T>{reinterpret_cast<const T*>(row), box.x});
        }
    };
    const eProjStatType statistic = getStatistic();
    const bool isMedian = statistic == ePST_Median;
    const RowKernel<T> kernel =
        kernelOf<T>(getRowKernels().of(isMedian ? chooseMedianSet(getEffectiveSets()) : getDomain()));
    switch (statistic) {
    case ePST_Sum:
    case ePST_Mean:
        forEachRow([&](Run<T> row) {
            Moments moments{};
            kernel.sum(row, moments);
            return statistic == ePST_Sum ? getSum<T>(moments) : getSum<T>(moments) / n;
        });
        break;
    case ePST_Var:
    case ePST_StdDev:
        forEachRow([&](Run<T> row) {
            Moments moments{};
            kernel.squares(row, moments);
            const double sum = getSum<T>(moments);
            // On purpose: no clamp. Rounding may make the variance negative, and the deviation NaN.
            const double variance = (getSumOfSquares<T>(moments) - sum * sum / n) / n;
            return statistic == ePST_Var ? variance : std::sqrt(variance);
        });
        break;
    case ePST_Median: {
        const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(rowScratchBytes<T>(box.x));
        forEachRow([&](Run<T> row) { return static_cast<double>(kernel.median(row, scratch.get())); });
        break;
    }
    default:
        forEachRow([&](Run<T> row) {
            constexpr double infinity = std::numeric_limits<double>::infinity();
            const bool isMin = statistic == ePST_Min;
            Moments moments{};
            moments.min = infinity;
            moments.max = -infinity;
            kernel.extremes(row, moments);
            const double extreme = isMin ? moments.min : moments.max;
            // Nothing but NaN, perhaps.
            return extreme == (isMin ? infinity : -infinity) &&
                           std::all_of(row.pixels, row.pixels + row.size, [](T x) { return x != x; })
                       ? static_cast<double>(row.pixels[0])
                       : extreme;
        });
        break;
    }
    return {};
}

void SeqProjectionStrip::functionRegistration(AlgorithmFunctionSelector& selector, eProjStatType)
{
    registerPairKernels<SeqProjectionStrip>(
        selector, [](auto, core::eInstructionSet::domain set) { return set != core::eInstructionSet::eIS_AVX; });
}

namespace
{

/// Pixels that are worked at together, so that their sums stay in the cache.
constexpr std::size_t chunk = 1024;

/// Null stays null.
template <class T>
T* advance(T* from, std::size_t count)
{
    return from == nullptr ? nullptr : from + count;
}

/// Where the pixels of a strip go, whatever their type.
struct Output
{
    const PixelWriterKernels& writers;
    image::eImageBufferType type;

    void write(const double* numbers, std::size_t size, std::byte* pixels) const
    {
        image::forEachPixelType([&]<class U>(std::type_identity<U>) {
            if (type == image::imageBufferTypeOf<U>) {
                kernelOf<U>(writers).write(numbers, size, reinterpret_cast<U*>(pixels));
            }
        });
    }
};

template <class T>
void writeSums(const Columns<T>& columns, eProjStatType statistic, const ColumnKernel<T>& kernel, const Output& output,
               const SequenceSums& kept, std::byte* to)
{
    const auto n = static_cast<double>(kept.nbTimes);
    const ProjectionFinish& finish = output.writers.finish;
    const bool hasSquares = statistic == ePST_Var || statistic == ePST_StdDev;
    double own[2][chunk];
    double* const sums = kept.sums != nullptr ? kept.sums : own[0];
    double* const squares = kept.squares != nullptr ? kept.squares : own[1];
    if (kept.isFirst) {
        std::fill_n(sums, columns.width, 0.0);
        std::fill_n(squares, hasSquares ? columns.width : 0, 0.0);
    }
    if (hasSquares) {
        kernel.squares(columns, sums, squares);
    } else {
        kernel.sum(columns, sums);
    }
    if (!kept.isLast) {
        return;
    }
    if (statistic == ePST_Mean) {
        finish.mean(sums, columns.width, n);
    } else if (hasSquares) {
        (statistic == ePST_Var ? finish.variance : finish.deviation)(sums, squares, columns.width, n);
    }
    output.write(sums, columns.width, to);
}

template <class T>
void writeSelected(const Columns<T>& columns, eProjStatType statistic, const ColumnKernel<T>& kernel,
                   const Output& output, const SequenceSums& kept, unsigned char* scratch, std::byte* to)
{
    T own[chunk]; // not the output itself, which may be a plane of the input
    T* const pixels = kept.extremes != nullptr ? reinterpret_cast<T*>(kept.extremes) : own;
    if (statistic == ePST_Median) {
        kernel.median(columns, scratch, pixels);
    } else {
        const std::size_t first = kept.isFirst ? 1 : 0;
        if (kept.isFirst) {
            std::memcpy(pixels, columns.pixels, columns.width * sizeof(T));
        }
        const Columns<T> others = columns.part(0, columns.width, first, columns.count - first);
        (statistic == ePST_Min ? kernel.minimum : kernel.maximum)(others, pixels);
    }
    if (!kept.isLast) {
        return;
    }
    if (output.type == image::imageBufferTypeOf<T>) {
        std::memcpy(to, pixels, columns.width * sizeof(T));
        return;
    }
    double numbers[chunk];
    kernelOf<T>(output.writers).read(pixels, columns.width, numbers);
    output.write(numbers, columns.width, to);
}

} // namespace

template <class T>
core::ProcessingResult SeqProjectionStrip::genericProcessFunction(ProcessingInfo info)
{
    const image::BaseImage& sequence = *getAttributes()[0]->getImage();
    const image::BaseImage& target = *getAttributes()[1]->getImage();
    const ColumnKernel<T> kernel = kernelOf<T>(getColumnKernels().of(getDomain()));
    const Output output{getPixelWriterKernels().of(getDomain()), target.getType()};
    const std::size_t count = sequence.getGeometry().t;
    const eProjStatType statistic = getStatistic();
    const bool isMedian = statistic == ePST_Median;
    const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(
        isMedian ? kernel.scratchBytes(std::min(chunk, info.rowSize), count) : 0);
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        const Columns<T> run{getParser(0).run<T>(i, info.rowSize), info.rowSize, count, sequence.getStrides().t};
        std::byte* const to = getParser(1).outputRun<std::byte>(i, info.rowSize);
        for (std::size_t x = 0; x < run.width; x += chunk) {
            const Columns<T> columns = run.part(x, std::min(chunk, run.width - x), 0, count);
            std::byte* const pixels = to + x * target.getPixelSize();
            SequenceSums kept{.nbTimes = count};
            if (kept_) {
                const std::size_t pixel = i * info.rowSize + x;
                kept = *kept_;
                kept.sums = advance(kept.sums, pixel);
                kept.squares = advance(kept.squares, pixel);
                kept.extremes = advance(kept.extremes, pixel * sizeof(T));
            }
            if (isMedian || statistic == ePST_Max || statistic == ePST_Min) {
                writeSelected(columns, statistic, kernel, output, kept, scratch.get(), pixels);
            } else {
                writeSums(columns, statistic, kernel, output, kept, pixels);
            }
        }
    }
    return {};
}

std::size_t ProjectionLevel::chooseChild() const
{
    const auto statistic = static_cast<std::size_t>(*find<InProjStatType>().get());
    return statistic < 7 ? statistic : 0;
}

std::size_t XProjection2dLvl1::getMinStripElements() const
{
    const image::BaseImage& image = value<InSubImg2d>();
    if (value<InProjStatType>() == ePST_Median) {
        return 128 / image.getPixelSize(); // columns: no narrower than two cache lines
    }
    // A strip leaves a number for every column: it has rows enough to be worth it, and there are not too many.
    return std::max<std::size_t>(64, image.getGeometry().y / 256);
}

namespace
{

const std::vector<double>& valuesOf(const Ptr<data::BaseDataItem>& part)
{
    return static_cast<const Doubles&>(*part).Values;
}

/// The sums of the strips' numbers: of the first of every `step` parts, or a later one.
std::vector<double> addUp(Merge::Parts parts, std::size_t first, std::size_t step, std::size_t size)
{
    std::vector<double> sums(size, 0);
    for (std::size_t i = first; i < parts.size(); i += step) {
        std::transform(sums.begin(), sums.end(), valuesOf(parts[i]).begin(), sums.begin(), std::plus{});
    }
    return sums;
}

/// Rows, one strip after the other.
struct Rows
{
    using Result = Doubles;
    using State = std::vector<double>;

    static void combine(State& into, const Doubles& part)
    {
        into.insert(into.end(), part.Values.begin(), part.Values.end());
    }
    static void finish(State& values, Doubles& merged) { merged.Values = std::move(values); }
};

} // namespace

core::ProcessingResult XProjection2dLvl1::postProcess()
{
    const image::BaseImage& image = value<InSubImg2d>();
    const image::ImageGeometry& size = image.getGeometry();
    const auto [lowest, highest] = image::getValueRange(image.getType());
    const auto n = static_cast<double>(size.y);
    std::vector<double>& values = value<OutProjStat>().Values;
    switch (value<InProjStatType>()) {
    case ePST_Median:
        values.clear();
        for (const auto& part : getParts()) {
            Rows::combine(values, static_cast<const Doubles&>(*part));
        }
        break;
    case ePST_Sum:
        values = addUp(getParts(), 0, 1, size.x);
        break;
    case ePST_Mean:
        values = addUp(getParts(), 0, 1, size.x);
        for (double& x : values) {
            x /= n;
        }
        break;
    case ePST_Var:
    case ePST_StdDev: {
        values = addUp(getParts(), 0, 2, size.x);
        const std::vector<double> squares = addUp(getParts(), 1, 2, size.x);
        for (std::size_t i = 0; i < values.size(); ++i) {
            // On purpose: no clamp. Rounding may make the variance negative, and the deviation NaN.
            values[i] = (squares[i] - values[i] * values[i] / n) / n;
            values[i] = value<InProjStatType>() == ePST_StdDev ? std::sqrt(values[i]) : values[i];
        }
        break;
    }
    case ePST_Min:
        values.assign(size.x, highest);
        for (const auto& part : getParts()) {
            std::transform(values.begin(), values.end(), valuesOf(part).begin(), values.begin(),
                           [](double m, double x) { return x < m ? x : m; });
        }
        break;
    default:
        values.assign(size.x, lowest);
        for (const auto& part : getParts()) {
            std::transform(values.begin(), values.end(), valuesOf(part).begin(), values.begin(),
                           [](double m, double x) { return x > m ? x : m; });
        }
        break;
    }
    return {};
}

core::ProcessingResult XProjection2dLvl1::runDerived(const RunContext& context)
{
    const image::BaseImage& image = value<InSubImg2d>();
    if (image.hasSource() && value<InProjStatType>() == ePST_Median) { // strips of columns have parts of all rows
        auto loaded = image::BaseImage::create(image.getType(), image.getGeometry());
        readInParallel(image, {{}, image.getGeometry()}, {loaded->getRow(0), loaded->getStrides()},
                       {{}, image.getGeometry()}, context);
        loaded_ = loaded;
    }
    return ProjectionLevel::runDerived(context);
}

void XProjection2dLvl1::prepareChild(BaseProcessor& child, std::size_t index)
{
    if (loaded_) {
        const attr::Share share = getShare(index);
        child.set<InXStrip2d>({loaded_, share.first, share.count});
    }
}

void XProjection2dLvl1::clearIntermediateDataDerived()
{
    ProjectionLevel::clearIntermediateDataDerived();
    loaded_.reset();
}

/// Gone through block by block: of some rows some times, then the next times of these rows. A median has all times at
/// once, other statistics keep sums, or the extremes, in between.
class SequenceLevel::Blocks final : public ActionProvider
{
public:
    Blocks(const SequenceLevel& level, const image::BaseImage& sequence, Ptr<image::BaseImage> output,
           eProjStatType statistic)
        : level_{level}, sequence_{sequence}, output_{std::move(output)}, statistic_{statistic}
    {
        const image::ImageGeometry& size = sequence_.getGeometry();
        const image::SourceLayout layout = sequence_.getLayout();
        const std::size_t rowBytes = size.x * sequence_.getPixelSize();
        const bool isMedian = statistic == ePST_Median;
        // Block by block of what is decoded together, where that fits.
        const auto whole = [](std::size_t most, std::size_t block, std::size_t all) {
            const std::size_t fits = most / block * block;
            return std::clamp<std::size_t>(fits != 0 ? fits : most, 1, all);
        };
        if (isMedian) {
            times_ = size.t;
            const std::size_t most = image::getLoadMemory(core::settings::getMachineMemory() / 4);
            rows_ = whole(most / (rowBytes * size.t), layout.block.y, size.y);
            return;
        }
        // Rows enough to be read fast, and times enough that what is kept is seldom touched.
        const std::size_t mostKept = std::size_t{layout.isSequential ? 256u : 64u} << 20;
        constexpr std::size_t mostAtOnce = std::size_t{64} << 20;
        constexpr std::size_t readFast = std::size_t{1} << 20;
        constexpr std::size_t enoughTimes = 16;
        const std::size_t keptPerPixel = keepsSquares() ? 16 : keepsSums() ? 8 : sequence_.getPixelSize();
        const std::size_t deepest = layout.block.t;
        const std::size_t fits = std::min(mostKept / (size.x * keptPerPixel), mostAtOnce / (rowBytes * deepest));
        const std::size_t enoughRows = layout.isSequential ? size.y : std::max(layout.block.y, readFast / rowBytes);
        rows_ = whole(std::min(fits, enoughRows), layout.block.y, size.y);
        times_ = whole(std::min(std::max(enoughTimes, deepest), mostAtOnce / (rowBytes * rows_)), deepest, size.t);
    }

    core::ProcessingResult process(const RunContext& context) override
    {
        const image::ImageGeometry& size = sequence_.getGeometry();
        const std::size_t kept = size.x * rows_;
        sums_.resize(keepsSums() ? kept : 0);
        squares_.resize(keepsSquares() ? kept : 0);
        extremes_.resize(!keepsSums() && statistic_ != ePST_Median ? kept * sequence_.getPixelSize() : 0);
        const auto block = image::BaseImage::create(sequence_.getType(), {size.x, rows_, 1, 1, times_});
        const std::size_t blocks = ((size.y + rows_ - 1) / rows_) * ((size.t + times_ - 1) / times_);
        core::ProcessingResult result;
        for (std::size_t y = 0; y < size.y; y += rows_) {
            for (std::size_t t = 0; t < size.t && result; t += times_) {
                const image::ImageGeometry part{size.x, std::min(rows_, size.y - y), 1, 1,
                                                std::min(times_, size.t - t)};
                readInParallel(sequence_, {{0, y, 0, 0, t}, part}, {block->getRow(0), block->getStrides()},
                               {{0, y}, {size.x, part.y, 1, 1, size.t}}, context);
                const auto pixels = image::BaseImage::wrap(std::as_const(*block).getRow(0), sequence_.getType(), part,
                                                           block->getStrides(), block);
                result =
                    context.cancelled()
                        ? core::ProcessingResult::failure(core::formatMessage(imaproc::eProcessorMessage::eCancelled))
                        : project(pixels, y, t, context);
                context.part(blocks).advance();
            }
        }
        return result;
    }

private:
    bool keepsSquares() const { return statistic_ == ePST_Var || statistic_ == ePST_StdDev; }
    bool keepsSums() const { return keepsSquares() || statistic_ == ePST_Sum || statistic_ == ePST_Mean; }

    /// Strip by strip; the block's first pixel lies in row `y` at time `t`.
    core::ProcessingResult project(const Ptr<const image::BaseImage>& block, std::size_t y, std::size_t t,
                                   const RunContext& context)
    {
        const image::ImageGeometry& size = sequence_.getGeometry();
        const StripCut cut = StripCut::of<image::SeqYStrip2d>(*block, level_.getDispatchPolicy().stripBytes, 1);
        const auto& levelClass = static_cast<const LevelClass&>(level_.getProcessorClass());
        const ProcessorClass& stripClass = *levelClass.getChild(level_.chooseChild()).processorClass;
        std::mutex mutex;
        core::ProcessingResult result;
        const auto run = [&](std::size_t begin, std::size_t end) {
            const auto strip = boost::static_pointer_cast<SeqProjectionStrip>(stripClass.getCreators().processor());
            (void)strip->init(eProcessorRulePolicy::eRP_CheckRules);
            for (std::size_t i = begin; i < end; ++i) {
                const std::size_t first = cut.begin(i);
                const std::size_t count = cut.begin(i + 1) - first;
                strip->set<InSeqYStrip2d>({block, first, count});
                strip->set<OutSingleYStrip2d>({output_, y + first, count});
                const std::size_t pixel = first * size.x;
                strip->continueSums({size.t, t == 0, t + block->getGeometry().t == size.t, advance(sums_.data(), pixel),
                                     advance(squares_.data(), pixel),
                                     advance(extremes_.data(), pixel * sequence_.getPixelSize())});
                if (core::ProcessingResult each = strip->execute({context.state, 0, context.priority}); !each) {
                    const std::lock_guard lock{mutex};
                    result = std::move(each);
                }
            }
        };
        executor::parallelFor(cut.size(), 1, context.priority, RangeBody{run});
        return result;
    }

    const SequenceLevel& level_;
    const image::BaseImage& sequence_;
    Ptr<image::BaseImage> output_;
    eProjStatType statistic_;
    std::size_t rows_ = 1; // of a block
    std::size_t times_ = 1;
    std::vector<double> sums_;
    std::vector<double> squares_;
    std::vector<std::byte> extremes_;
};

core::ProcessingResult SequenceLevel::preProcess()
{
    sequence_ = getSequence();
    return {};
}

core::ProcessingResult SequenceLevel::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    if (!sequence_->hasSource()) {
        return ProjectionLevel::retrieveProvider(priority, provider);
    }
    const auto& output = static_cast<const attr::StoredAttribute<Ptr<image::BaseImage>>&>(*getAttributes().back());
    provider = makePtr<Blocks>(*this, *sequence_, output.get(), *find<InProjStatType>().get());
    return {};
}

void SequenceLevel::prepareChild(BaseProcessor& child, std::size_t index)
{
    const attr::Share share = getShare(index);
    child.set<InSeqYStrip2d>({sequence_, share.first, share.count});
}

void SequenceLevel::clearIntermediateDataDerived()
{
    ProjectionLevel::clearIntermediateDataDerived();
    sequence_.reset();
}

AlgorithmClass XProjectionMax2dLvl3::processorClass = defineAlgorithm<XProjectionMax2dLvl3>(96);
AlgorithmClass XProjectionMean2dLvl3::processorClass = defineAlgorithm<XProjectionMean2dLvl3>(97);
AlgorithmClass XProjectionMedian2dLvl3::processorClass = defineAlgorithm<XProjectionMedian2dLvl3>(98);
AlgorithmClass XProjectionMin2dLvl3::processorClass = defineAlgorithm<XProjectionMin2dLvl3>(99);
AlgorithmClass XProjectionStdDev2dLvl3::processorClass = defineAlgorithm<XProjectionStdDev2dLvl3>(100);
AlgorithmClass XProjectionSum2dLvl3::processorClass = defineAlgorithm<XProjectionSum2dLvl3>(101);
AlgorithmClass XProjectionVar2dLvl3::processorClass = defineAlgorithm<XProjectionVar2dLvl3>(102);
LevelClass XProjection2dLvl1::processorClass =
    defineLevel<XProjection2dLvl1, XProjectionMax2dLvl3, XProjectionMean2dLvl3, XProjectionMedian2dLvl3,
                XProjectionMin2dLvl3, XProjectionStdDev2dLvl3, XProjectionSum2dLvl3, XProjectionVar2dLvl3>(94,
                                                                                                           byItself);

AlgorithmClass YProjectionMax2dLvl3::processorClass = defineAlgorithm<YProjectionMax2dLvl3>(104);
AlgorithmClass YProjectionMean2dLvl3::processorClass = defineAlgorithm<YProjectionMean2dLvl3>(105);
AlgorithmClass YProjectionMedian2dLvl3::processorClass = defineAlgorithm<YProjectionMedian2dLvl3>(106);
AlgorithmClass YProjectionMin2dLvl3::processorClass = defineAlgorithm<YProjectionMin2dLvl3>(107);
AlgorithmClass YProjectionStdDev2dLvl3::processorClass = defineAlgorithm<YProjectionStdDev2dLvl3>(108);
AlgorithmClass YProjectionSum2dLvl3::processorClass = defineAlgorithm<YProjectionSum2dLvl3>(109);
AlgorithmClass YProjectionVar2dLvl3::processorClass = defineAlgorithm<YProjectionVar2dLvl3>(110);
LevelClass YProjection2dLvl1::processorClass =
    defineLevel<YProjection2dLvl1, YProjectionMax2dLvl3, YProjectionMean2dLvl3, YProjectionMedian2dLvl3,
                YProjectionMin2dLvl3, YProjectionStdDev2dLvl3, YProjectionSum2dLvl3, YProjectionVar2dLvl3>(
        103, inOrder<Rows>);

AlgorithmClass SeqProjectionMaxImgLvl3::processorClass = defineAlgorithm<SeqProjectionMaxImgLvl3>(59);
AlgorithmClass SeqProjectionMeanImgLvl3::processorClass = defineAlgorithm<SeqProjectionMeanImgLvl3>(60);
AlgorithmClass SeqProjectionMedianImgLvl3::processorClass = defineAlgorithm<SeqProjectionMedianImgLvl3>(61);
AlgorithmClass SeqProjectionMinImgLvl3::processorClass = defineAlgorithm<SeqProjectionMinImgLvl3>(62);
AlgorithmClass SeqProjectionStdDevImgLvl3::processorClass = defineAlgorithm<SeqProjectionStdDevImgLvl3>(63);
AlgorithmClass SeqProjectionSumImgLvl3::processorClass = defineAlgorithm<SeqProjectionSumImgLvl3>(64);
AlgorithmClass SeqProjectionVarImgLvl3::processorClass = defineAlgorithm<SeqProjectionVarImgLvl3>(65);
LevelClass SeqProjectionImgLvl2::processorClass =
    defineLevel<SeqProjectionImgLvl2, SeqProjectionMaxImgLvl3, SeqProjectionMeanImgLvl3, SeqProjectionMedianImgLvl3,
                SeqProjectionMinImgLvl3, SeqProjectionStdDevImgLvl3, SeqProjectionSumImgLvl3, SeqProjectionVarImgLvl3>(
        58);
LevelClass SeqProjectionImgLvl1::processorClass = defineLevel<SeqProjectionImgLvl1, SeqProjectionImgLvl2>(57);
LevelClass ZProjectionImgLvl2::processorClass =
    defineLevel<ZProjectionImgLvl2, SeqProjectionMaxImgLvl3, SeqProjectionMeanImgLvl3, SeqProjectionMedianImgLvl3,
                SeqProjectionMinImgLvl3, SeqProjectionStdDevImgLvl3, SeqProjectionSumImgLvl3, SeqProjectionVarImgLvl3>(
        112);
LevelClass ZProjectionImgLvl1::processorClass = defineLevel<ZProjectionImgLvl1, ZProjectionImgLvl2>(111);

namespace
{

const MeasureRegistration registration{
    {"Projection",
     "project",
     "a statistic of every column (x), row (y), pixel over the planes (z) or pixel over the times (t)",
     "A maximum or minimum is that of the numbers among NaN. Numbers are rounded and limited to the pixel type of the "
     "output: sums want float32.",
     {&XProjection2dLvl1::processorClass, &YProjection2dLvl1::processorClass, &ZProjectionImgLvl1::processorClass,
      &SeqProjectionImgLvl1::processorClass}}};

} // namespace

} // namespace orlix::imaproc::glbmsr
