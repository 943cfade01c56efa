#include <support/EmulatedAvx512.hpp>
#include <support/Masks.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Histogram/HistogramKernels.inl"

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

/// What a run leaves in the tables.
template <class R, Domain::domain D>
std::vector<std::uint32_t> countRun(const R& run, BinCounts counts)
{
    std::vector<std::uint32_t> tables(8 * BinCounts::stride + counts.size, 0);
    counts.tables = tables.data();
    count<R, D>(run, counts);
    const std::size_t nbTables = counts.eight ? 8 : counts.distance != 0 ? 2 : 1;
    std::vector<std::uint32_t> sums(sizeof(typename R::Pixel) == 1 ? 256 : counts.size, 0);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        for (std::size_t k = 0; k < nbTables; ++k) {
            sums[i] += tables[k * counts.distance + i];
        }
    }
    return sums;
}

template <class R>
void expectSameCounts(const R& run, const BinCounts& counts)
{
    const auto here = countRun<R, Domain::eIS_AVX512>(run, counts);
    const auto there = countRun<R, Domain::eIS_Generic>(run, counts);
    EXPECT_EQ(here, there);
}

} // namespace

template <class T>
class EmulatedHistogram : public testing::Test
{
};
TYPED_TEST_SUITE(EmulatedHistogram, PixelTypes);

// By bin and by value, into one table, two and eight; noise and runs.
TYPED_TEST(EmulatedHistogram, IsThatOfOtherDomains)
{
    using T = TypeParam;
    auto noise = randomValues<T>(3001);
    auto runs = noise;
    for (std::size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<T>(static_cast<int>(noise[i]) % 127);
        runs[i] = static_cast<T>(i / 19 % 120);
    }
    const auto mask = makeMask(MaskPattern::Half, noise.size());
    BinCounts counts{};
    counts.rule = {3, 1.7, 3, 99, 58};
    counts.approximate = true;
    counts.base = 3;
    counts.inverse = 1 / 1.7f;
    for (const std::size_t distance : {std::size_t{0}, std::size_t{200}, BinCounts::stride}) {
        counts.distance = distance;
        counts.eight = distance == BinCounts::stride;
        if (sizeof(T) == 1 && !counts.eight) {
            continue;
        }
        for (const bool byValue : {false, true}) {
            if (byValue && std::is_same_v<T, float>) {
                continue;
            }
            SCOPED_TRACE(testing::Message() << distance << (byValue ? " by value" : " by class"));
            counts.byValue = byValue;
            counts.first = 5;
            counts.size = byValue ? 97 : 58;
            for (const auto* const values : {&noise, &runs}) {
                expectSameCounts(Run<T>{values->data(), values->size()}, counts);
                expectSameCounts(MaskedRun<T>{values->data(), values->size(), mask.data()}, counts);
            }
        }
    }
}

} // namespace orlix::test
