#include <support/EmulatedAvx512.hpp>
#include <support/PixelTypes.hpp>
#include <support/ReferenceProjection.hpp>
#include <support/TestImages.hpp>

#include <framework/process/KernelTables.hpp>

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ColumnKernels.inl"
#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/PixelWriterKernels.inl"
#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.inl"

namespace orlix::test
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

constexpr Domain::domain texts[] = {Domain::eIS_SSE2, Domain::eIS_AVX512};

/// Calls `visit` with the kernels of a vector set.
template <template <class, Domain::domain> class Kernel, class T, class Visitor>
void forTexts(Visitor visit)
{
    for (const Domain::domain text : texts) {
        SCOPED_TRACE(text);
        visit(text == Domain::eIS_SSE2 ? Kernel<T, Domain::eIS_SSE2>::get() : Kernel<T, Domain::eIS_AVX512>::get());
    }
}

template <class T, Domain::domain D>
struct ColumnText
{
    static ColumnKernel<T> get() { return kernelOf<T>(columnKernels<D>); }
};

template <class T, Domain::domain D>
struct RowText
{
    static RowKernel<T> get() { return kernelOf<T>(rowKernels<D>); }
};

template <class T, Domain::domain D>
struct WriterText
{
    static PixelWriter<T> get() { return kernelOf<T>(pixelWriterKernels<D>); }
};

/// Noise with ties, extremes and, among floats, NaN.
template <class T>
std::vector<T> makePixels(std::size_t size)
{
    auto values = randomValues<T>(size, static_cast<unsigned>(size));
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t dice = static_cast<std::size_t>(values[size - 1 - i] < T{} ? 5 : 3) + i * 7;
        if (dice % 5 == 0) {
            values[i] = static_cast<T>(dice % 3);
        } else if (dice % 31 == 0) {
            values[i] = dice % 2 == 0 ? lowest<T> : highest<T>;
        } else if (std::is_same_v<T, float> && dice % 41 == 0) {
            values[i] = static_cast<T>(dice % 2 == 0 ? NAN : -NAN);
        }
    }
    return values;
}

template <class T>
std::vector<T> columnOf(const Columns<T>& columns, std::size_t x)
{
    std::vector<T> pixels;
    for (std::size_t i = 0; i < columns.count; ++i) {
        pixels.push_back(columns.row(i)[x]);
    }
    return pixels;
}

} // namespace

template <class T>
class ProjectionText : public testing::Test
{
};
TYPED_TEST_SUITE(ProjectionText, PixelTypes);

// Any width and any number of rows, on both sides of every limit of lanes, and in any cut into segments.
TYPED_TEST(ProjectionText, ReducesColumns)
{
    using T = TypeParam;
    for (const std::size_t width : {1, 7, 33, 64, 150}) {
        for (const std::size_t count : {1, 2, 5, 9, 32, 33, 254, 255, 300, 520}) {
            SCOPED_TRACE(testing::Message() << width << " columns of " << count);
            const std::size_t pitch = width + 5;
            const auto values = makePixels<T>(pitch * count);
            const Columns<T> columns{values.data(), width, count, static_cast<std::ptrdiff_t>(pitch * sizeof(T))};
            forTexts<ColumnText, T>([&](const ColumnKernel<T>& kernel) {
                std::vector<double> sums(width);
                std::vector<double> sumsToo(width);
                std::vector<double> squares(width);
                std::vector<T> least(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(width));
                std::vector<T> most = least;
                std::vector<T> medians(width);
                std::vector<unsigned char> scratch(kernel.scratchBytes(width, count));
                // Four segments: a cut across the columns and one along them.
                for (const auto& [x, w] : {std::pair{std::size_t{0}, width / 3}, {width / 3, width - width / 3}}) {
                    for (const auto& [y, h] : {std::pair{std::size_t{0}, count / 2}, {count / 2, count - count / 2}}) {
                        const Columns<T> part = columns.part(x, w, y, h);
                        kernel.sum(part, sums.data() + x);
                        kernel.squares(part, sumsToo.data() + x, squares.data() + x);
                        kernel.minimum(part, least.data() + x);
                        kernel.maximum(part, most.data() + x);
                    }
                    kernel.median(columns.part(x, w, 0, count), scratch.data(), medians.data() + x);
                }
                for (std::size_t x = 0; x < width; ++x) {
                    const auto pixels = columnOf(columns, x);
                    const auto expect = [&](double found, eProjStatType statistic) {
                        const double wanted = projectPixels(pixels, statistic, Begin::FirstPixel);
                        ASSERT_TRUE(isSame(found, wanted)) << x << ": " << found << " for " << wanted;
                    };
                    const auto n = static_cast<double>(count);
                    expect(sums[x], eProjStatType::ePST_Sum);
                    expect(sumsToo[x], eProjStatType::ePST_Sum);
                    expect((squares[x] - sums[x] * sums[x] / n) / n, eProjStatType::ePST_Var);
                    expect(least[x], eProjStatType::ePST_Min);
                    expect(most[x], eProjStatType::ePST_Max);
                    expect(medians[x], eProjStatType::ePST_Median);
                }
            });
        }
    }
}

TYPED_TEST(ProjectionText, ReducesRowsInAnySegments)
{
    using T = TypeParam;
    for (const std::size_t size : {1, 3, 15, 64, 65, 200, 1000, 20000}) {
        SCOPED_TRACE(size);
        auto pixels = makePixels<T>(size);
        forTexts<RowText, T>([&](const RowKernel<T>& kernel) {
            std::vector<unsigned char> scratch(rowScratchBytes<T>(size));
            const double median = kernel.median({pixels.data(), size}, scratch.data());
            EXPECT_TRUE(isSame(median, projectPixels(pixels, eProjStatType::ePST_Median)));
            Moments whole{};
            whole.min = INFINITY;
            whole.max = -INFINITY;
            Moments parts = whole;
            const Run<T> row{pixels.data(), size};
            kernel.sum(row, whole);
            kernel.extremes(row, whole);
            for (std::size_t i = 0; i < size; i += 37) {
                kernel.sum(part(row, i, std::min<std::size_t>(37, size - i)), parts);
                kernel.extremes(part(row, i, std::min<std::size_t>(37, size - i)), parts);
            }
            EXPECT_TRUE(isSame(whole.min, projectPixels(pixels, eProjStatType::ePST_Min)));
            EXPECT_TRUE(isSame(whole.max, projectPixels(pixels, eProjStatType::ePST_Max)));
            EXPECT_TRUE(isSame(parts.min, whole.min) && isSame(parts.max, whole.max));
            EXPECT_TRUE(parts.sum == whole.sum);
            for (std::size_t k = 0; k < Moments::lanes; ++k) {
                EXPECT_TRUE(isSame(parts.laneSums[k], whole.laneSums[k]));
            }
        });
    }
}

// Rounding half away from zero, and both ends of the range.
TYPED_TEST(ProjectionText, WritesPixels)
{
    using T = TypeParam;
    std::vector<double> numbers{0,        0.25,    0.5,  -0.5,  1.5, 2.5,      -2.5,
                                0.499999, -1e-300, 1e18, -1e18, NAN, INFINITY, -INFINITY};
    for (const double end : {static_cast<double>(lowest<T>), static_cast<double>(highest<T>)}) {
        for (const double off : {-1.0, -0.75, -0.5, -0.25, 0.0, 0.25, 0.5, 1.0}) {
            numbers.push_back(end + off);
        }
    }
    for (int i = 0; i < 700; ++i) {
        numbers.push_back(static_cast<double>(lowest<T>) + i * (static_cast<double>(highest<T>) / 350.25));
    }
    forTexts<WriterText, T>([&](const PixelWriter<T>& writer) {
        std::vector<T> pixels(numbers.size());
        writer.write(numbers.data(), numbers.size(), pixels.data());
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            EXPECT_TRUE(isSame(pixels[i], toPixelType<T>(numbers[i]))) << numbers[i] << ": " << +pixels[i];
        }
        std::vector<double> back(numbers.size());
        writer.read(pixels.data(), pixels.size(), back.data());
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            EXPECT_TRUE(isSame(back[i], static_cast<double>(pixels[i])));
        }
    });
}

} // namespace orlix::test
