#include <support/EmulatedAvx512.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include <framework/process/KernelTables.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationKernels.inl"
#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityKernels.inl"

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

template <class T>
class CorrelationText : public testing::Test
{
};
TYPED_TEST_SUITE(CorrelationText, PixelTypes);

// Sums of deviations, of pairs of one type and of two, and exact ones: the same bits in every text.
TYPED_TEST(CorrelationText, IsThatOfOtherDomains)
{
    using T = TypeParam;
    for (const std::size_t size : {1, 15, 16, 17, 64, 100, 1000}) {
        SCOPED_TRACE(size);
        const auto a = randomValues<T>(size, 1);
        const auto b = randomValues<T>(size, 2);
        const auto run = [&](const DeviationKernel<T>& kernel, bool isPair) {
            CrossSums cross{};
            ProductSums products{};
            // In two parts: as if they were rows.
            for (const auto& [i, n] : {std::pair{std::size_t{0}, size / 3}, {size / 3, size - size / 3}}) {
                const DeviationsOf<T, float> floats1{a.data() + i, 3.7f};
                const DeviationsOf<T, float> floats2{b.data() + i, -1.1f};
                const DeviationsOf<T, double> doubles1{a.data() + i, 3.7};
                const DeviationsOf<T, double> doubles2{b.data() + i, -1.1};
                if (isPair) {
                    kernel.cross.addPair(floats1, floats2, n, cross);
                    kernel.products.addPair(doubles1, doubles2, n, products);
                } else {
                    std::vector<float> floats(n);
                    std::vector<double> doubles(n);
                    kernel.readFloats(floats2, n, floats.data());
                    kernel.readDoubles(doubles2, n, doubles.data());
                    kernel.cross.add(floats1, floats.data(), n, cross);
                    kernel.products.add(doubles1, doubles.data(), n, products);
                }
            }
            std::vector<double> all(std::begin(products.products), std::end(products.products));
            for (const auto* const lanes : {&cross.squares1, &cross.squares2, &cross.products}) {
                all.insert(all.end(), std::begin(*lanes), std::end(*lanes));
            }
            return all;
        };
        const auto expected = run(kernelOf<T>(deviationKernels<Domain::eIS_Generic>), false);
        EXPECT_EQ(run(kernelOf<T>(deviationKernels<Domain::eIS_SSE2>), false), expected);
        EXPECT_EQ(run(kernelOf<T>(deviationKernels<Domain::eIS_AVX512>), false), expected);
        if constexpr (sizeof(T) == 4) {
            EXPECT_EQ(run(kernelOf<T>(deviationKernels<Domain::eIS_Generic>), true), expected);
            EXPECT_EQ(run(kernelOf<T>(deviationKernels<Domain::eIS_SSE2>), true), expected);
            EXPECT_EQ(run(kernelOf<T>(deviationKernels<Domain::eIS_AVX512>), true), expected);
        }
    }
    if constexpr (sizeof(T) < 4) {
        const auto exactly = [](const auto& kernel, const std::vector<T>& a, const std::vector<T>& b) {
            PairTotals totals{};
            const std::size_t third = a.size() / 3;
            kernel.addPairExactly({a.data(), third}, {b.data(), third}, totals);
            kernel.addPairExactly({a.data() + third, a.size() - third}, {b.data() + third, a.size() - third}, totals);
            return std::vector<double>{static_cast<double>(totals.sum1), static_cast<double>(totals.sum2),
                                       static_cast<double>(totals.products), static_cast<double>(totals.squares1),
                                       static_cast<double>(totals.squares2)};
        };
        const auto compare = [&](const std::vector<T>& a, const std::vector<T>& b) {
            const auto& generic = kernelOf<T>(deviationKernels<Domain::eIS_Generic>);
            const auto& sse2 = kernelOf<T>(deviationKernels<Domain::eIS_SSE2>);
            const auto& avx512 = kernelOf<T>(deviationKernels<Domain::eIS_AVX512>);
            EXPECT_EQ(exactly(sse2.cross, a, b), exactly(generic.cross, a, b));
            EXPECT_EQ(exactly(avx512.cross, a, b), exactly(generic.cross, a, b));
            EXPECT_EQ(exactly(sse2.products, a, b), exactly(generic.products, a, b));
            EXPECT_EQ(exactly(avx512.products, a, b), exactly(generic.products, a, b));
        };
        for (const std::size_t size : {1, 31, 65, 5003}) {
            SCOPED_TRACE(size);
            compare(randomValues<T>(size, 1), randomValues<T>(size, 2));
        }
        // The largest products of either sign, until every lane would overflow.
        const std::size_t size = 3 * (16384 * 64 / sizeof(T) + 65);
        const std::vector<T> low(size, lowest<T>);
        const std::vector<T> high(size, highest<T>);
        compare(low, low);
        compare(low, high);
        compare(high, high);
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
