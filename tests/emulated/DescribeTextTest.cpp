#include <support/EmulatedAvx512.hpp>
#include <support/HardPixels.hpp>
#include <support/Masks.hpp>
#include <support/PixelTypes.hpp>

#include "../../src/ORLIX/Measures/Count/CountKernels.inl"
#include "../../src/ORLIX/Measures/Describe/DescribeKernels.inl"

namespace orlix::test
{

using namespace measures;

namespace
{

template <Domain::domain D, class R>
DescribeFigures describeWith(const R& run)
{
    DescribeFigures figures{};
    figures.min = figures.max = std::numeric_limits<double>::quiet_NaN();
    figures.countsSaturated = true;
    describeRun<R, D>(run, figures);
    return figures;
}

/// Whether the AVX-512 text finds what the generic one does.
template <class R>
void expectSameFigures(const R& run)
{
    const auto here = describeWith<Domain::eIS_AVX512>(run);
    const auto there = describeWith<Domain::eIS_Generic>(run);
    EXPECT_EQ(here.nbNumbers, there.nbNumbers);
    EXPECT_EQ(here.nbNaN, there.nbNaN);
    EXPECT_EQ(here.nbPositiveInfinity, there.nbPositiveInfinity);
    EXPECT_EQ(here.nbNegativeInfinity, there.nbNegativeInfinity);
    EXPECT_EQ(here.nbSaturated, there.nbSaturated);
    EXPECT_TRUE(here.sum == there.sum && here.squares == there.squares);
    EXPECT_TRUE(here.min == there.min || std::isnan(there.min));
    EXPECT_TRUE(here.max == there.max || std::isnan(there.max));
    if constexpr (sizeof(typename R::Pixel) == 4) {
        const auto find = [&]<Domain::domain D>(std::integral_constant<Domain::domain, D>) {
            Prefixes prefixes{{}, 4, 24};
            std::fill_n(prefixes.prefix, Prefixes::most, 0x80u);
            std::copy_n(std::begin({0xbfu, 0x42u, 0xc4u}), 3, prefixes.prefix + 1);
            std::vector<std::uint32_t> found(run.size);
            found.resize(measures::find<R, D>(run, prefixes, found.data()));
            std::vector<std::uint32_t> table(65537);
            measures::countRun<R, D>(run, ValueTables{table.data(), false, 0, 65536, 0});
            table.pop_back();
            return std::pair{found, table};
        };
        EXPECT_EQ(find(std::integral_constant<Domain::domain, Domain::eIS_AVX512>{}),
                  find(std::integral_constant<Domain::domain, Domain::eIS_Generic>{}));
    }
}

} // namespace

template <class T>
class EmulatedDescribe : public testing::Test
{
};
TYPED_TEST_SUITE(EmulatedDescribe, PixelTypes);

TYPED_TEST(EmulatedDescribe, IsThatOfOtherDomains)
{
    using T = TypeParam;
    for (const std::size_t size : {1, 33, 5003}) {
        for (auto hard : makeHardPixels<T>(size)) {
            const std::string& name = hard.name;
            auto& pixels = hard.pixels;
            SCOPED_TRACE(name);
            if constexpr (std::is_same_v<T, float>) {
                pixels[size / 2] = std::numeric_limits<float>::quiet_NaN();
                pixels[size / 3] = -std::numeric_limits<float>::infinity();
            }
            expectSameFigures(Run<T>{pixels.data(), size});
            for (const MaskPattern pattern : allMaskPatterns) {
                const auto mask = makeMask(pattern, size);
                expectSameFigures(MaskedRun<T>{pixels.data(), size, mask.data()});
            }
        }
    }
}

} // namespace orlix::test
