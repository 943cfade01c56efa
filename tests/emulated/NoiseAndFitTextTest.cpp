#include <support/EmulatedAvx512.hpp>
#include <support/PixelTypes.hpp>
#include <support/TestImages.hpp>

#include <framework/process/KernelTables.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseKernels.inl"
#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidKernels.inl"
#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Percent/PercentKernels.inl"

#include <numeric>

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

template <class T>
class RowText : public testing::Test
{
};
TYPED_TEST_SUITE(RowText, PixelTypes);

// Noise and sums of rows: the same bits in every text.
TYPED_TEST(RowText, IsThatOfOtherDomains)
{
    using T = TypeParam;
    for (const std::size_t size : {1, 2, 15, 16, 33, 511, 544, 1023, 1024, 1025, 2100}) {
        SCOPED_TRACE(size);
        std::vector<T> rows[] = {randomValues<T>(size, 1), randomValues<T>(size, 2), randomValues<T>(size, 3)};
        std::vector<std::uint8_t> mask(size);
        for (std::size_t i = 0; i < size; ++i) {
            mask[i] = i % 3 == 0 ? 0 : static_cast<std::uint8_t>(i);
        }
        std::vector<double> columns(size + 16);
        std::iota(columns.begin(), columns.end(), 0.);
        const auto run = [&]<Domain::domain D>() {
            AbsResponses responses{};
            addResponses<T, D>(rows[0].data(), rows[1].data(), rows[2].data(), size, responses);
            std::vector<double> all(std::begin(responses.laneSums), std::end(responses.laneSums));
            all.push_back(static_cast<double>(responses.sum));
            const RowSums one = kernelOf<T>(paraboloidKernels<D>).sum({rows[0].data(), size}, columns.data());
            const RowSums two =
                kernelOf<T>(paraboloidKernels<D>).sumMasked({rows[0].data(), size, mask.data()}, columns.data());
            all.insert(all.end(),
                       {one.z, one.xz, one.x2z, two.z, two.xz, two.x2z, two.n, two.x, two.x2, two.x3, two.x4});
            return all;
        };
        const auto compare = [&] {
            const auto expected = run.template operator()<Domain::eIS_Generic>();
            EXPECT_EQ(run.template operator()<Domain::eIS_SSE2>(), expected);
            EXPECT_EQ(run.template operator()<Domain::eIS_AVX512>(), expected);
        };
        compare();
        if constexpr (std::is_integral_v<T>) { // the widest range, where lanes are fullest
            for (std::size_t i = 0; i < size; ++i) {
                rows[0][i] = rows[2][i] = i % 2 == 0 ? lowest<T> : highest<T>;
                rows[1][i] = i % 2 == 0 ? highest<T> : lowest<T>;
            }
            compare();
            rows[0].assign(size, highest<T>);
            compare();
            rows[0].assign(size, lowest<T>);
            compare();
        }
    }
}

TEST(LabelText, IsThatOfOtherDomains)
{
    for (const std::size_t size : {1, 63, 64, 65, 300, 5000}) {
        SCOPED_TRACE(size);
        const auto bytes = randomValues<std::uint8_t>(size, 1);
        const auto mask = randomValues<std::uint8_t>(size, 2);
        const auto words = randomValues<std::uint16_t>(size, 3);
        const auto numbers = randomValues<std::uint32_t>(size, 4);
        const auto run = [&](const PercentKernels& kernels) {
            return std::vector<std::uint64_t>{
                kernels.sum({bytes.data(), size}), kernels.sumSelected({bytes.data(), size, mask.data()}),
                kernels.uint8.largest({bytes.data(), size}), kernels.uint16.largest({words.data(), size}),
                kernels.uint32.largest({numbers.data(), size})};
        };
        std::uint64_t sum = 0;
        std::uint64_t selected = 0;
        for (std::size_t i = 0; i < size; ++i) {
            sum += bytes[i];
            selected += mask[i] != 0 ? bytes[i] : 0;
        }
        const std::vector<std::uint64_t> expected{sum, selected, *std::max_element(bytes.begin(), bytes.end()),
                                                  *std::max_element(words.begin(), words.end()),
                                                  *std::max_element(numbers.begin(), numbers.end())};
        EXPECT_EQ(run(percentKernels<Domain::eIS_Generic>), expected);
        EXPECT_EQ(run(percentKernels<Domain::eIS_SSE2>), expected);
        EXPECT_EQ(run(percentKernels<Domain::eIS_AVX512>), expected);
    }
}

} // namespace orlix::test
