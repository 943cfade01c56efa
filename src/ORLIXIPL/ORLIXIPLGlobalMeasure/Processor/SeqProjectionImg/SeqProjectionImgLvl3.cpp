#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImgLvl3.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ProjectionTables.hpp>

#include <algorithm>
#include <cstring>
#include <memory>

namespace orlix::imaproc::glbmsr
{

using enum eProjStatType;

template <class Self>
void SeqProjectionStrip<Self>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    SeqProjectionStrip::registerPairKernels(
        selector, []<class T>(std::type_identity<T>, auto domain) { return domain != core::eInstructionSet::eIS_AVX; });
}

namespace
{

/// Pixels that are worked at together, so that their sums stay in the cache.
constexpr std::size_t chunk = 1024;

/// Where the pixels of a strip go, whatever their type.
struct Output
{
    const PixelWriters& writers;
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

template <class Self>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult SeqProjectionStrip<Self>::genericProcessFunction(ProcessingInfo info)
{
    const image::BaseImage& sequence = *this->template attribute<InSeqYStrip2d>().get().image;
    const image::BaseImage& target = *this->template attribute<OutSingleYStrip2d>().get().image;
    const auto kernel = kernelOf<T>(getColumnKernels().of(D));
    const Output output{getPixelWriters().of(D), target.getType()};
    const std::size_t count = sequence.getGeometry().t;
    std::unique_ptr<unsigned char[]> scratch;
    if constexpr (Self::statistic == ePST_Median) {
        scratch =
            std::make_unique_for_overwrite<unsigned char[]>(kernel.scratchBytes(std::min(chunk, info.rowSize), count));
    }
    for (std::size_t i = 0; i < info.nbRuns(); ++i) {
        const Columns<T> run{this->getParser(0).template run<T>(i, info.rowSize), info.rowSize, count,
                             sequence.getStrides().t};
        std::byte* const to = this->getParser(1).template outputRun<std::byte>(i, info.rowSize);
        for (std::size_t x = 0; x < run.width; x += chunk) {
            const Columns<T> columns = run.part(x, std::min(chunk, run.width - x), 0, count);
            std::byte* const pixels = to + x * target.getPixelSize();
            if constexpr (Self::statistic == ePST_Max || Self::statistic == ePST_Min ||
                          Self::statistic == ePST_Median) {
                writeSelected<Self::statistic>(columns, kernel, output, scratch.get(), pixels);
            } else {
                writeSums<Self::statistic>(columns, kernel, output, pixels);
            }
        }
    }
    return {};
}

AlgorithmClass SeqProjectionMaxImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionMaxImgLvl3>("SeqProjectionMaxImgLvl3", 59);
SeqProjectionMaxImgLvl3::SeqProjectionMaxImgLvl3() = default;
SeqProjectionMaxImgLvl3::~SeqProjectionMaxImgLvl3() = default;

AlgorithmClass SeqProjectionMeanImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionMeanImgLvl3>("SeqProjectionMeanImgLvl3", 60);
SeqProjectionMeanImgLvl3::SeqProjectionMeanImgLvl3() = default;
SeqProjectionMeanImgLvl3::~SeqProjectionMeanImgLvl3() = default;

AlgorithmClass SeqProjectionMedianImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionMedianImgLvl3>("SeqProjectionMedianImgLvl3", 61);
SeqProjectionMedianImgLvl3::SeqProjectionMedianImgLvl3() = default;
SeqProjectionMedianImgLvl3::~SeqProjectionMedianImgLvl3() = default;

AlgorithmClass SeqProjectionMinImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionMinImgLvl3>("SeqProjectionMinImgLvl3", 62);
SeqProjectionMinImgLvl3::SeqProjectionMinImgLvl3() = default;
SeqProjectionMinImgLvl3::~SeqProjectionMinImgLvl3() = default;

AlgorithmClass SeqProjectionStdDevImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionStdDevImgLvl3>("SeqProjectionStdDevImgLvl3", 63);
SeqProjectionStdDevImgLvl3::SeqProjectionStdDevImgLvl3() = default;
SeqProjectionStdDevImgLvl3::~SeqProjectionStdDevImgLvl3() = default;

AlgorithmClass SeqProjectionSumImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionSumImgLvl3>("SeqProjectionSumImgLvl3", 64);
SeqProjectionSumImgLvl3::SeqProjectionSumImgLvl3() = default;
SeqProjectionSumImgLvl3::~SeqProjectionSumImgLvl3() = default;

AlgorithmClass SeqProjectionVarImgLvl3::processorClass =
    declareAlgorithm<SeqProjectionVarImgLvl3>("SeqProjectionVarImgLvl3", 65);
SeqProjectionVarImgLvl3::SeqProjectionVarImgLvl3() = default;
SeqProjectionVarImgLvl3::~SeqProjectionVarImgLvl3() = default;

} // namespace orlix::imaproc::glbmsr
