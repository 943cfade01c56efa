#include <support/EmulatedAvx512.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/DeviationKernel.inl"
#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrKernel.inl"

namespace orlix::test
{

using namespace imaproc::glbmsr;

template <class T>
class CorrelationText : public testing::Test
{
};
TYPED_TEST_SUITE(CorrelationText, PixelTypes);

// Sums of deviations, of pairs of one type and of two, whole and in parts: the same bits in every text.
TYPED_TEST(CorrelationText, IsThatOfOtherDomains)
{
    using T = TypeParam;
    for (const std::size_t size : {1, 31, 32, 33, 64, 100, 1000}) {
        SCOPED_TRACE(size);
        const auto a = randomValues<T>(size, 1);
        const auto b = randomValues<T>(size, 2);
        const auto run = [&](const DeviationKernel<T>& kernel, std::size_t first, bool isPair) {
            CrossSums cross{};
            ProductSum products{};
            for (const auto& [i, n] : {std::pair{std::size_t{0}, first}, {first, size - first}}) {
                const DeviationsOf<T, float> floats1{a.data() + i, 3.7f};
                const DeviationsOf<T, float> floats2{b.data() + i, -1.1f};
                const DeviationsOf<T, double> doubles1{a.data() + i, 3.7};
                const DeviationsOf<T, double> doubles2{b.data() + i, -1.1};
                if (isPair) {
                    kernel.addCrossOfPair(floats1, floats2, n, cross);
                    kernel.addProductsOfPair(doubles1, doubles2, n, products);
                } else {
                    std::vector<float> floats(n);
                    std::vector<double> doubles(n);
                    kernel.readFloats(floats2, n, floats.data());
                    kernel.readDoubles(doubles2, n, doubles.data());
                    kernel.addCross(floats1, floats.data(), n, cross);
                    kernel.addProducts(doubles1, doubles.data(), n, products);
                }
            }
            std::vector<double> all(std::begin(products.products), std::end(products.products));
            for (const auto* const lanes : {&cross.squares1, &cross.squares2, &cross.products}) {
                all.insert(all.end(), std::begin(*lanes), std::end(*lanes));
            }
            return all;
        };
        const auto expected = run(deviationKernel<T, Domain::eIS_Generic>, 0, true);
        for (const std::size_t first : {std::size_t{0}, size / 2 / CrossSums::lanes * CrossSums::lanes}) {
            for (const bool isPair : {false, true}) {
                EXPECT_EQ(run(deviationKernel<T, Domain::eIS_SSE2>, first, isPair), expected);
                EXPECT_EQ(run(deviationKernel<T, Domain::eIS_AVX512>, first, isPair), expected);
            }
        }
    }
}

template <class T>
class SimilarityText : public testing::Test
{
};
TYPED_TEST_SUITE(SimilarityText, PixelTypes);

TYPED_TEST(SimilarityText, IsThatOfOtherDomains)
{
    using T = TypeParam;
    const auto run = [](SimilarityKernel<T> kernel, const std::vector<T>& a, const std::vector<T>& b) {
        SquaredDifferences differences{};
        const std::size_t half = a.size() / 2;
        kernel({a.data(), half}, {b.data(), half}, differences);
        kernel({a.data() + half, a.size() - half}, {b.data() + half, a.size() - half}, differences);
        std::vector<double> all(std::begin(differences.laneSums), std::end(differences.laneSums));
        all.push_back(static_cast<double>(differences.sum));
        return all;
    };
    const auto compare = [&](const std::vector<T>& a, const std::vector<T>& b) {
        constexpr auto other = std::is_same_v<T, float> ? Domain::eIS_SSE2 : Domain::eIS_Generic;
        const auto expected = run(&addSquares<T, other>, a, b);
        EXPECT_EQ(run(&addSquares<T, Domain::eIS_AVX512>, a, b), expected);
        EXPECT_EQ(run(&addSquares<T, Domain::eIS_SSE2>, a, b), expected);
    };
    for (const std::size_t size : {1, 15, 63, 64, 65, 200, 5003}) {
        SCOPED_TRACE(size);
        compare(randomValues<T>(size, 1), randomValues<T>(size, 2));
    }
    if constexpr (std::is_integral_v<T>) {
        // The largest differences, until every lane would overflow.
        const std::size_t size = 2 * (16384 * 64 / sizeof(T) + 65);
        compare(std::vector<T>(size, lowest<T>), std::vector<T>(size, highest<T>));
    }
}

} // namespace orlix::test
