#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2dLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

#include <framework/maths/Cholesky.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass ParaboloidImgFit2dLvl2::processorClass = declare<ParaboloidImgFit2dLvl2>("ParaboloidImgFit2dLvl2", 48);

ParaboloidImgFit2dLvl2::ParaboloidImgFit2dLvl2() = default;
ParaboloidImgFit2dLvl2::~ParaboloidImgFit2dLvl2() = default;

namespace
{

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

} // namespace

core::ProcessingResult ParaboloidImgFit2dLvl2::postProcess()
{
    std::array<double, 21> sums{};
    for (const Ptr<Doubles>& part : getParts()) {
        for (std::size_t i = 0; i < part->Values.size(); ++i) {
            sums[i] += part->Values[i];
        }
    }
    std::array<double, 15> moments;
    if (attribute<InOptMaskSubImg2d>().isSet()) {
        std::copy_n(sums.begin() + 6, 15, moments.begin());
    } else {
        moments = gridMoments(value<InSubImg2d>().getGeometry());
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
    ParaboloidParams3d& params = value<OutParaboloidParams3d>();
    std::tie(params.a, params.b, params.c, params.d, params.e, params.f) = std::tuple_cat(fit);
    return {};
}

} // namespace orlix::imaproc::glbmsr
