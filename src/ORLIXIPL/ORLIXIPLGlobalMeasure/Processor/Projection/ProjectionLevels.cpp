#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionLevels.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ColumnKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/PixelWriterKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/MomentSums.hpp>

#include <framework/core/NumericLimits.hpp>
#include <framework/process/KernelTables.hpp>

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

template <eProjStatType Statistic>
void XProjectionStrip<Statistic>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels<XProjectionStrip>(selector, 1, []<class T>(std::type_identity<T>, auto domain) {
        return Statistic == ePST_Median ? domain == core::eInstructionSet::eIS_Generic
                                        : kernelOf<T>(getColumnKernels().of(domain)).sum != nullptr;
    });
}

template <eProjStatType Statistic>
template <class T>
core::ProcessingResult XProjectionStrip<Statistic>::genericProcessFunction(ProcessingInfo)
{
    const image::PixelBox& box = getParser(0).getBox();
    const Columns<T> columns{reinterpret_cast<const T*>(box.origin), box.x, box.y, box.strideY};
    const auto kernel = kernelOf<T>(getColumnKernels().of(getDomain()));
    if constexpr (Statistic == ePST_StdDev || Statistic == ePST_Var) {
        std::vector<double>& sums = static_cast<Doubles&>(*getAttributes()[1]->getRecord()).Values;
        std::vector<double>& squares = output<Doubles>().Values;
        sums.assign(box.x, 0);
        squares.assign(box.x, 0);
        kernel.squares(columns, sums.data(), squares.data());
        return {};
    } else {
        std::vector<double>& values = output<Doubles>().Values;
        if constexpr (Statistic == ePST_Mean || Statistic == ePST_Sum) {
            values.assign(box.x, 0);
            kernel.sum(columns, values.data());
            return {};
        }
        std::vector<T> pixels(box.x);
        if constexpr (Statistic == ePST_Median) {
            const auto median = kernelOf<T>(getColumnKernels().of(chooseMedianSet(getEffectiveSets())));
            const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(median.scratchBytes(box.x, box.y));
            median.median(columns, scratch.get(), pixels.data());
        } else if constexpr (Statistic == ePST_Min) {
            pixels.assign(box.x, core::NumericLimits<T>::s_max);
            kernel.least(columns, pixels.data());
        } else {
            pixels.assign(box.x, core::NumericLimits<T>::s_min);
            kernel.most(columns, pixels.data());
        }
        values.assign(pixels.begin(), pixels.end());
        return {};
    }
}

template <eProjStatType Statistic>
void YProjectionStrip<Statistic>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels<YProjectionStrip>(selector, 1, []<class T>(std::type_identity<T>, auto domain) {
        return Statistic == ePST_Median ? domain == core::eInstructionSet::eIS_Generic
                                        : kernelOf<T>(getRowKernels().of(domain)).sum != nullptr;
    });
}

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

template <eProjStatType Statistic, class T>
double reduceRow(Run<T> row, const RowKernel<T>& kernel)
{
    Moments moments{};
    const auto n = static_cast<double>(row.size);
    if constexpr (Statistic == ePST_Sum || Statistic == ePST_Mean) {
        kernel.sum(row, moments);
        return Statistic == ePST_Sum ? getSum<T>(moments) : getSum<T>(moments) / n;
    } else if constexpr (Statistic == ePST_Var || Statistic == ePST_StdDev) {
        kernel.squares(row, moments);
        const double sum = getSum<T>(moments);
        // On purpose: no clamp. Rounding may make the variance negative, and the deviation NaN.
        const double variance = (getSumOfSquares<T>(moments) - sum * sum / n) / n;
        return Statistic == ePST_Var ? variance : std::sqrt(variance);
    } else {
        constexpr double worst = Statistic == ePST_Min ? infinity : -infinity;
        moments.min = infinity;
        moments.max = -infinity;
        kernel.extremes(row, moments);
        const double extreme = Statistic == ePST_Min ? moments.min : moments.max;
        // Nothing but NaN, perhaps.
        return extreme == worst && std::all_of(row.pixels, row.pixels + row.size, [](T x) { return x != x; })
                   ? static_cast<double>(row.pixels[0])
                   : extreme;
    }
}

} // namespace

template <eProjStatType Statistic>
template <class T>
core::ProcessingResult YProjectionStrip<Statistic>::genericProcessFunction(ProcessingInfo)
{
    const image::PixelBox& box = getParser(0).getBox();
    std::vector<double>& values = output<Doubles>().Values;
    values.resize(box.y);
    const auto row = [&](std::size_t y) {
        return Run<T>{reinterpret_cast<const T*>(box.origin + static_cast<std::ptrdiff_t>(y) * box.strideY), box.x};
    };
    if constexpr (Statistic == ePST_Median) {
        const auto kernel = kernelOf<T>(getRowKernels().of(chooseMedianSet(getEffectiveSets())));
        const auto scratch = std::make_unique_for_overwrite<unsigned char[]>(rowScratchBytes<T>(box.x));
        for (std::size_t y = 0; y < box.y; ++y) {
            values[y] = kernel.median(row(y), scratch.get());
        }
    } else {
        const auto kernel = kernelOf<T>(getRowKernels().of(getDomain()));
        for (std::size_t y = 0; y < box.y; ++y) {
            values[y] = reduceRow<Statistic, T>(row(y), kernel);
        }
    }
    return {};
}

template <eProjStatType Statistic>
void SeqProjectionStrip<Statistic>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerPairKernels<SeqProjectionStrip>(
        selector, [](auto, core::eInstructionSet::domain domain) { return domain != core::eInstructionSet::eIS_AVX; });
}

namespace
{

/// Pixels that are worked at together, so that their sums stay in the cache.
constexpr std::size_t chunk = 1024;

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

template <eProjStatType Statistic, class T>
void writeSums(const Columns<T>& columns, const ColumnKernel<T>& kernel, const Output& output, std::byte* to)
{
    const auto n = static_cast<double>(columns.count);
    double sums[chunk];
    std::fill_n(sums, columns.width, 0.0);
    if constexpr (Statistic == ePST_Sum || Statistic == ePST_Mean) {
        kernel.sum(columns, sums);
        if constexpr (Statistic == ePST_Mean) {
            output.writers.finish.mean(sums, columns.width, n);
        }
    } else {
        double squares[chunk];
        std::fill_n(squares, columns.width, 0.0);
        kernel.squares(columns, sums, squares);
        const auto finish = Statistic == ePST_Var ? output.writers.finish.variance : output.writers.finish.deviation;
        finish(sums, squares, columns.width, n);
    }
    output.write(sums, columns.width, to);
}

template <eProjStatType Statistic, class T>
void selectPixels(const Columns<T>& columns, const ColumnKernel<T>& kernel, unsigned char* scratch, T* to)
{
    if constexpr (Statistic == ePST_Median) {
        kernel.median(columns, scratch, to);
    } else {
        std::memcpy(to, columns.pixels, columns.width * sizeof(T));
        const Columns<T> others = columns.part(0, columns.width, 1, columns.count - 1);
        (Statistic == ePST_Min ? kernel.least : kernel.most)(others, to);
    }
}

template <eProjStatType Statistic, class T>
void writeSelected(const Columns<T>& columns, const ColumnKernel<T>& kernel, const Output& output,
                   unsigned char* scratch, std::byte* to)
{
    T pixels[chunk]; // not the output itself, which may be a plane of the input
    double numbers[chunk];
    selectPixels<Statistic>(columns, kernel, scratch, pixels);
    if (output.type == image::imageBufferTypeOf<T>) {
        std::memcpy(to, pixels, columns.width * sizeof(T));
        return;
    }
    kernelOf<T>(output.writers).read(pixels, columns.width, numbers);
    output.write(numbers, columns.width, to);
}

} // namespace

template <eProjStatType Statistic>
template <class T>
core::ProcessingResult SeqProjectionStrip<Statistic>::genericProcessFunction(ProcessingInfo info)
{
    const image::BaseImage& sequence = *getAttributes()[0]->getImage();
    const image::BaseImage& target = *getAttributes()[1]->getImage();
    const auto kernel = kernelOf<T>(getColumnKernels().of(getDomain()));
    const Output output{getPixelWriterKernels().of(getDomain()), target.getType()};
    const std::size_t count = sequence.getGeometry().t;
    std::unique_ptr<unsigned char[]> scratch;
    if constexpr (Statistic == ePST_Median) {
        scratch =
            std::make_unique_for_overwrite<unsigned char[]>(kernel.scratchBytes(std::min(chunk, info.rowSize), count));
    }
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        const Columns<T> run{getParser(0).run<T>(i, info.rowSize), info.rowSize, count, sequence.getStrides().t};
        std::byte* const to = getParser(1).outputRun<std::byte>(i, info.rowSize);
        for (std::size_t x = 0; x < run.width; x += chunk) {
            const Columns<T> columns = run.part(x, std::min(chunk, run.width - x), 0, count);
            std::byte* const pixels = to + x * target.getPixelSize();
            if constexpr (Statistic == ePST_Max || Statistic == ePST_Min || Statistic == ePST_Median) {
                writeSelected<Statistic>(columns, kernel, output, scratch.get(), pixels);
            } else {
                writeSums<Statistic>(columns, kernel, output, pixels);
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

/// The numbers of strips, one after the other.
std::vector<double> concatenate(Merge::Parts parts)
{
    std::vector<double> all;
    for (const auto& part : parts) {
        all.insert(all.end(), valuesOf(part).begin(), valuesOf(part).end());
    }
    return all;
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
        values = concatenate(getParts());
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

void ZProjectionImgLvl2::prepareChild(BaseProcessor& child, std::size_t index)
{
    const attr::Share share = getShare(index);
    child.set<InSeqYStrip2d>({value<InSubImg3d>().getPlanesAsSequence(), share.first, share.count});
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

} // namespace orlix::imaproc::glbmsr
