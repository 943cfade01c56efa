// The structural similarity of a row of windows: sums of columns, then of rows of them, each in the order of its terms.

#include <ORLIX/Measures/Compare/SsimKernels.hpp>
#include <framework/kernel/Pack.hpp>

#include <type_traits>

namespace orlix::measures
{

namespace
{

template <Domain::domain D>
void measureRow(const SsimRow& r)
{
    constexpr std::size_t step = SsimRow::step;
    const std::size_t nbColumns = r.size + r.window - 1;
    for (std::size_t x = 0; x < nbColumns; x += step) {
        double sums[5][step] = {};
        for (std::size_t k = 0; k < r.window; ++k) {
            const double* const a = r.rows[0][k] + x;
            const double* const b = r.rows[1][k] + x;
            const double weight = r.weights[k];
            for (std::size_t i = 0; i < step; ++i) {
                const double weighted = weight * a[i];
                const double weighted2 = weight * b[i];
                sums[0][i] += weighted;
                sums[1][i] += weighted2;
                sums[2][i] += weighted * a[i];
                sums[3][i] += weighted2 * b[i];
                sums[4][i] += weighted * b[i];
            }
        }
        for (std::size_t q = 0; q < 5; ++q) {
            __builtin_memcpy(r.columns[q] + x, sums[q], sizeof sums[q]);
        }
    }
    for (std::size_t x = 0; x < r.size; x += step) {
        double sums[5][step] = {};
        for (std::size_t q = 0; q < 5; ++q) {
            for (std::size_t k = 0; k < r.window; ++k) {
                const double* const column = r.columns[q] + x + k;
                const double weight = r.weights[k];
                for (std::size_t i = 0; i < step; ++i) {
                    sums[q][i] += weight * column[i];
                }
            }
        }
        for (std::size_t i = 0; i < step; ++i) {
            const double a = sums[0][i];
            const double b = sums[1][i];
            const double squares = a * a + b * b;
            const double product = a * b;
            const double above = (2 * product + r.c1) * (2 * r.factor * (r.n * sums[4][i] - product) + r.c2);
            const double below = (squares + r.c1) * (r.factor * (r.n * (sums[2][i] + sums[3][i]) - squares) + r.c2);
            r.values[x + i] = above / below;
        }
    }
}

template <Domain::domain D>
constexpr SsimKernels ssimKernels = makeKernels<SsimKernel, D>([]<class T>(std::type_identity<T>) -> SsimKernel<T> {
    if constexpr (isFloat<T>) {
        return &measureRow<D>;
    } else {
        return nullptr;
    }
});

} // namespace

} // namespace orlix::measures
