#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2d.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Define.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidKernels.hpp>

#include <framework/maths/Cholesky.hpp>
#include <framework/process/CallingForms.hpp>
#include <framework/process/KernelTables.hpp>

#include <algorithm>
#include <numeric>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// Adds the sums of row y, in the order of OutMatrixSums.
void addRow(const RowSums& row, double y, std::vector<double>& sums)
{
    const double y2 = y * y;
    const double pixels[] = {row.x2z, y2 * row.z, y * row.xz, row.xz, y * row.z, row.z};
    const double moments[] = {row.x4,     row.x2 * y2,     row.x3 * y,     row.x3,     row.x2 * y,
                              row.x2,     row.n * y2 * y2, row.x * y2 * y, row.x * y2, row.n * y2 * y,
                              row.n * y2, row.x * y,       row.x,          row.n * y,  row.n};
    for (std::size_t i = 0; i < 6; ++i) {
        sums[i] += pixels[i];
    }
    for (std::size_t i = 6; i < sums.size(); ++i) {
        sums[i] += moments[i - 6];
    }
}

/// The sums of x^i over x = 0 ... size - 1, for i = 0 ... 4 (Faulhaber).
std::array<double, 5> sumPowers(std::size_t size)
{
    const auto n = static_cast<double>(size);
    const double p = n - 1;
    const double sum = p * (p + 1) / 2;
    return {n, sum, (2 * p + 1) * p * (p + 1) / 6, sum * sum, (6 * p * p * p + 9 * p * p + p - 1) * p * (p + 1) / 30};
}

/// The 15 moments of a whole grid, in the order of OutMatrixSums.
std::array<double, 15> gridMoments(const image::ImageGeometry& size)
{
    const std::array<double, 5> x = sumPowers(size.x);
    const std::array<double, 5> y = sumPowers(size.y);
    return {x[4] * y[0], x[2] * y[2], x[3] * y[1], x[3] * y[0], x[2] * y[1], x[2] * y[0], x[0] * y[4], x[1] * y[3],
            x[1] * y[2], x[0] * y[3], x[0] * y[2], x[1] * y[1], x[1] * y[0], x[0] * y[1], x[0] * y[0]};
}

/// The sums of strips, in the order of OutMatrixSums, and what fits them best.
struct Paraboloid
{
    using Part = Doubles;
    using Result = ParaboloidParams3d;
    using State = std::array<double, 21>;

    static void combine(State& into, const Doubles& part)
    {
        std::transform(part.Values.begin(), part.Values.end(), into.begin(), into.begin(),
                       [](double x, double sum) { return sum + x; });
    }

    static void finish(const State& sums, ParaboloidParams3d& params, const BaseProcessor& level)
    {
        std::array<double, 15> moments;
        if (level.getAttributes()[1]->isSet()) {
            std::copy_n(sums.begin() + 6, 15, moments.begin());
        } else {
            moments = gridMoments(level.getAttributes()[0]->getImage()->getGeometry());
        }
        const auto& [x4, x2y2, x3y, x3, x2y, x2, y4, xy3, xy2, y3, y2, xy, x, y, n] = moments;
        maths::Matrix<6> matrix{{{x4, x2y2, x3y, x3, x2y, x2}, // the basis is x^2, y^2, x y, x, y, 1
                                 {x2y2, y4, xy3, xy2, y3, y2},
                                 {x3y, xy3, x2y2, x2y, xy2, xy},
                                 {x3, xy2, x2y, x2, xy, x},
                                 {x2y, y3, xy2, xy, y2, y},
                                 {x2, y2, xy, x, y, n}}};
        maths::Vector<6> side;
        std::copy_n(sums.begin(), 6, side.begin());
        if (n > 0) {
            for (std::size_t i = 0; i < 6; ++i) {
                side[i] /= n;
                for (double& entry : matrix[i]) {
                    entry /= n;
                }
            }
        }
        const maths::Vector<6> fit = maths::choleskySolve(maths::choleskyDecomposition(matrix), side);
        std::tie(params.a, params.b, params.c, params.d, params.e, params.f) = std::tuple_cat(fit);
    }
};

} // namespace

void ParaboloidImgFit2dLvl3::functionRegistration(AlgorithmFunctionSelector& selector)
{
    registerKernels<ParaboloidImgFit2dLvl3>(selector, 1, []<class T>(std::type_identity<T>, auto set) {
        return kernelOf<T>(getParaboloidKernels().of(set)).sum != nullptr;
    });
}

core::ProcessingResult ParaboloidImgFit2dLvl3::preProcess()
{
    value<OutMatrixSums>().Values.assign(attribute<InOptMaskYStrip2d>().isSet() ? 21 : 6, 0);
    return {};
}

template <class T>
core::ProcessingResult ParaboloidImgFit2dLvl3::genericProcessFunction(ProcessingInfo info)
{
    if (info.size == 0) {
        return {};
    }
    const image::YStrip2d& strip = attribute<InYStrip2d>().get();
    const std::size_t width = strip.image->getGeometry().x;
    const std::size_t whole = (width + 15) / 16 * 16; // kernels read blocks
    if (columns_.size() < whole) {
        columns_.resize(whole);
        std::iota(columns_.begin(), columns_.end(), 0.0);
    }
    std::vector<double>& sums = value<OutMatrixSums>().Values;
    const auto kernel = kernelOf<T>(getParaboloidKernels().of(getDomain()));
    const bool isMasked = attribute<InOptMaskYStrip2d>().isSet();
    for (std::size_t i = 0; i < strip.count; ++i) {
        const T* const pixels = getParser(0).run<T>(i, width);
        const RowSums row =
            isMasked ? kernel.sumMasked({pixels, width, getParser(1).run<std::uint8_t>(i, width)}, columns_.data())
                     : kernel.sum({pixels, width}, columns_.data());
        addRow(row, static_cast<double>(strip.first + i), sums);
    }
    return {};
}

LevelClass ParaboloidImgFit2dLvl1::processorClass = defineLevel<ParaboloidImgFit2dLvl1, ParaboloidImgFit2dLvl2>(47);
LevelClass ParaboloidImgFit2dLvl2::processorClass =
    defineLevel<ParaboloidImgFit2dLvl2, ParaboloidImgFit2dLvl3>(48, inOrder<Paraboloid>);
AlgorithmClass ParaboloidImgFit2dLvl3::processorClass = defineAlgorithm<ParaboloidImgFit2dLvl3>(49);

namespace
{

const MeasureRegistration registration{{"Paraboloid",
                                        "paraboloid",
                                        "the surface a x^2 + b y^2 + c x y + d x + e y + f that fits each plan best",
                                        "",
                                        {&ParaboloidImgFit2dLvl1::processorClass}}};

} // namespace

Ptr<ParaboloidParams3d> paraboloidImgFit2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::single<InImg>(image);
}

Ptr<ParaboloidParams3d> paraboloidImgFit2d(const Ptr<const image::BaseImage>& image,
                                           const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::single<InImg, InOptMaskImg>(image, mask);
}

Ptr<ParaboloidImgFit2dLvl1> paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::singleAsync<InImg>(image);
}

Ptr<ParaboloidImgFit2dLvl1> paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image,
                                                     const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::singleAsync<InImg, InOptMaskImg>(image, mask);
}

Ptr<PlanIndexedParaboloidParams3d> multiSlice_paraboloidImgFit2d(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::everyPlan<InImg>(image);
}

Ptr<PlanIndexedParaboloidParams3d> multiSlice_paraboloidImgFit2d(const Ptr<const image::BaseImage>& image,
                                                                 const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::everyPlan<InImg, InOptMaskImg>(image, mask);
}

Ptr<ParaboloidImgFit2dLvl1> multiSlice_paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::everyPlanAsync<InImg>(image);
}

Ptr<ParaboloidImgFit2dLvl1> multiSlice_paraboloidImgFit2d_async(const Ptr<const image::BaseImage>& image,
                                                                const Ptr<const image::BaseImage>& mask)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::everyPlanAsync<InImg, InOptMaskImg>(image, mask);
}

Ptr<ParaboloidParams3d> getAsyncProcessorOutput(const Ptr<ParaboloidImgFit2dLvl1>& processor)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::output(processor);
}

Ptr<PlanIndexedParaboloidParams3d> getAsyncProcessorMultiSliceOutput(const Ptr<ParaboloidImgFit2dLvl1>& processor)
{
    return CallingForms<ParaboloidImgFit2dLvl1>::multiSliceOutput(processor);
}

} // namespace orlix::imaproc::glbmsr
