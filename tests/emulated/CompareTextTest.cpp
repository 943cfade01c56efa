#include <support/EmulatedAvx512.hpp>
#include <support/HardPixels.hpp>
#include <support/Masks.hpp>

#include "../../src/ORLIX/Measures/Compare/CompareKernels.inl"
#include "../../src/ORLIX/Measures/Compare/SsimKernels.inl"

#include <gtest/gtest.h>

namespace orlix::test
{

using namespace measures;

namespace
{

/// What the texts of two domains make of a block; whether it fits is the same as well.
template <class Fill, class Here, class There>
void expectSame(Fill fill, Here here, There there)
{
    CompareFigures figures[2] = {};
    bool fits[2];
    for (int i = 0; i < 2; ++i) {
        PairBlock block{};
        const std::size_t size = fill(block);
        CompareFigures& f = figures[i];
        f.maxError = -1;
        std::fill_n(f.min, 2, std::numeric_limits<double>::infinity());
        std::fill_n(f.max, 2, -std::numeric_limits<double>::infinity());
        f.threshold[0] = 3;
        f.threshold[1] = -20.5;
        fits[i] = i == 0 ? here(block, size, f) : there(block, size, f);
    }
    EXPECT_EQ(figures[0].nbPairs, figures[1].nbPairs);
    EXPECT_EQ(figures[0].nbNaN, figures[1].nbNaN);
    EXPECT_EQ(figures[0].nbInfinite, figures[1].nbInfinite);
    if (fits[0] && fits[1]) {
        EXPECT_EQ(figures[0].maxError, figures[1].maxError);
        EXPECT_TRUE(figures[0].larger == figures[1].larger && figures[0].products == figures[1].products);
        for (int k = 0; k < 2; ++k) {
            EXPECT_TRUE(figures[0].sum[k] == figures[1].sum[k] && figures[0].squares[k] == figures[1].squares[k] &&
                        figures[0].coincident[k] == figures[1].coincident[k]);
            EXPECT_EQ(figures[0].min[k], figures[1].min[k]);
            EXPECT_EQ(figures[0].max[k], figures[1].max[k]);
        }
    }
}

} // namespace

TEST(EmulatedCompare, IsThatOfOtherDomains)
{
    const auto mask = makeMask(MaskPattern::Half, PairBlock::size);
    for (const std::size_t size : {5ul, 1000ul, PairBlock::size}) {
        const auto others = randomValues<float>(size, 3);
        for (auto hard : makeHardPixels<float>(size)) {
            const std::string& name = hard.name;
            auto& pixels = hard.pixels;
            SCOPED_TRACE(name);
            pixels[size / 3] = std::numeric_limits<float>::quiet_NaN();
            pixels[size / 5] = std::numeric_limits<float>::infinity();
            for (const bool isMasked : {false, true}) {
                const auto fill = [&](PairBlock& block) {
                    readFloats<float, Domain::eIS_AVX512>(pixels.data(), size, block.pixels[0]);
                    readFloats<float, Domain::eIS_AVX512>(others.data(), size, block.pixels[1]);
                    block.from[0] = block.pixels[0];
                    block.from[1] = block.pixels[1];
                    std::fill_n(block.counts, size, 1);
                    if (isMasked) {
                        std::copy_n(mask.data(), size, block.counts);
                    }
                    return size;
                };
                expectSame(fill, &comparePairs<Domain::eIS_AVX512>, &comparePairs<Domain::eIS_SSE2>);
            }
        }
        for (const std::int32_t bias : {0, 32768}) {
            const auto fill = [&](PairBlock& block) {
                for (std::size_t k = 0; k < 2; ++k) {
                    const auto words = randomValues<unsigned short>(size, static_cast<unsigned>(k));
                    std::vector<unsigned short> small;
                    for (const unsigned short word : words) {
                        small.push_back(static_cast<unsigned short>(word / 3));
                    }
                    readWords<unsigned short, Domain::eIS_AVX512>(small.data(), size, bias, block.words[k]);
                }
                block.bias = bias;
                std::copy_n(mask.data(), size, block.counts);
                return size;
            };
            expectSame(fill, &compareWords<Domain::eIS_AVX512>, &compareWords<Domain::eIS_SSE2>);
        }
    }
}

TEST(EmulatedSsim, IsThatOfOtherDomains)
{
    constexpr std::size_t size = 61;
    constexpr std::size_t window = 7;
    const auto numbers = randomValues<float>(2 * window * 128, 1);
    const std::vector<double> pixels{numbers.begin(), numbers.end()};
    std::vector<double> weights(window, 1.0);
    for (const bool isUniform : {true, false}) {
        weights[2] = isUniform ? 1.0 : 0.7;
        const auto measureAll = [&]<Domain::domain D>(std::integral_constant<Domain::domain, D>) {
            const SsimWeights shape{weights.data(), window, isUniform};
            std::vector<std::vector<double>> sums(nbSsimSums * window, std::vector<double>(128));
            for (std::size_t k = 0; k < window; ++k) {
                SsimRow row{shape, {pixels.data() + 2 * k * 128, pixels.data() + (2 * k + 1) * 128}, size, {}};
                for (std::size_t q = 0; q < nbSsimSums; ++q) {
                    row.sums[q] = sums[q * window + k].data();
                }
                sumRow<D>(row);
            }
            std::vector<const double*> rows;
            for (const auto& row : sums) {
                rows.push_back(row.data());
            }
            std::vector<double> values(128);
            SsimWindows windows{shape, {}, size, 49, 1.02, 7, 60, values.data(), 0, false};
            for (std::size_t q = 0; q < nbSsimSums; ++q) {
                windows.rows[q] = rows.data() + q * window;
            }
            measureWindows<D>(windows);
            values.resize(size);
            return std::tuple{values, windows.sum, windows.hasNaN};
        };
        EXPECT_EQ(measureAll(std::integral_constant<Domain::domain, Domain::eIS_AVX512>{}),
                  measureAll(std::integral_constant<Domain::domain, Domain::eIS_Generic>{}));
    }
}

} // namespace orlix::test
