#pragma once

#include <framework/core/NumericLimits.hpp>
#include <framework/gpu/CudaTypes.hpp>

#include <cstdint>

/// The arithmetic of the statistics on a GPU: of the pixels of one thread, and of records of threads and blocks. Host
/// and device run the same text, but for the instructions that a device has for several pixels in a word.
namespace orlix::imaproc::glbmsr
{

/// What a measure on the GPU accumulates.
struct CudaStatsInfo
{
    std::uint64_t nbPixels = 0;
    double sum = 0;
    double sumSq = 0;
    double min = core::NumericLimits<double>::s_max;
    double max = core::NumericLimits<double>::s_min;
};

/// What a thread or a block of threads found; the first number is of no use.
struct CudaStatsRecord
{
    double unused;
    double sum;
    double sumSq;
    double min;
    double max;
};
static_assert(sizeof(CudaStatsRecord) == 40);

ORLIX_HOST_DEVICE inline void addRecord(CudaStatsRecord& to, const CudaStatsRecord& from)
{
    to.sum += from.sum;
    to.sumSq += from.sumSq;
    to.min = from.min < to.min ? from.min : to.min;
    to.max = from.max > to.max ? from.max : to.max;
}

namespace word
{

/// Lane k of a word of numbers.
template <class T>
ORLIX_HOST_DEVICE inline T lane(std::uint32_t word, unsigned k)
{
    return T(word >> (8 * sizeof(T) * k));
}

/// A word whose lanes are copies of a number.
template <class T>
ORLIX_HOST_DEVICE constexpr std::uint32_t fill(T number)
{
    return sizeof(T) == 2 ? (std::uint32_t(number) & 0xffffu) * 0x00010001u : std::uint32_t(number);
}

/// The lower and the higher numbers of two words; lanes have 16 or 32 bits.
template <class T>
ORLIX_HOST_DEVICE inline std::uint32_t minimum(std::uint32_t a, std::uint32_t b)
{
    if constexpr (sizeof(T) == 4) {
        return T(a) < T(b) ? a : b;
    } else {
#ifdef __CUDA_ARCH__
        return T(-1) < T(0) ? __vmins2(a, b) : __vminu2(a, b);
#else
        const std::uint32_t low = lane<T>(a, 0) < lane<T>(b, 0) ? a : b;
        const std::uint32_t high = lane<T>(a, 1) < lane<T>(b, 1) ? a : b;
        return (low & 0xffffu) | (high & 0xffff0000u);
#endif
    }
}
template <class T>
ORLIX_HOST_DEVICE inline std::uint32_t maximum(std::uint32_t a, std::uint32_t b)
{
    if constexpr (sizeof(T) == 4) {
        return T(a) > T(b) ? a : b;
    } else {
#ifdef __CUDA_ARCH__
        return T(-1) < T(0) ? __vmaxs2(a, b) : __vmaxu2(a, b);
#else
        const std::uint32_t low = lane<T>(a, 0) > lane<T>(b, 0) ? a : b;
        const std::uint32_t high = lane<T>(a, 1) > lane<T>(b, 1) ? a : b;
        return (low & 0xffffu) | (high & 0xffff0000u);
#endif
    }
}

/// sum + the products of the four bytes of a with those of b.
template <class T>
ORLIX_HOST_DEVICE inline std::uint32_t addProducts(std::uint32_t sum, std::uint32_t a, std::uint32_t b)
{
#ifdef __CUDA_ARCH__
    return T(-1) < T(0) ? std::uint32_t(__dp4a(int(a), int(b), int(sum))) : __dp4a(a, b, sum);
#else
    for (unsigned k = 0; k < 4; ++k) {
        sum += std::uint32_t(int(lane<T>(a, k)) * int(lane<T>(b, k)));
    }
    return sum;
#endif
}

} // namespace word

/// How the extremes of pixels of type T are kept. A GPU compares pairs of 16-bit numbers but not bytes, so these are
/// kept as unsigned numbers of 16 bits, signed ones with their highest bit flipped.
template <class T>
struct ExtremeOf
{
    using Number = T;
    static constexpr T lowest = T(-1) < T(0) ? T(T(1) << (8 * sizeof(T) - 1)) : T(0);
    static constexpr T highest = T(~lowest);
    ORLIX_HOST_DEVICE static constexpr T from(T pixel) { return pixel; }
    ORLIX_HOST_DEVICE static constexpr double toDouble(T number) { return double(number); }
};
template <class T>
requires(sizeof(T) == 1) struct ExtremeOf<T>
{
    using Number = std::uint16_t;
    static constexpr Number lowest = 0;
    static constexpr Number highest = 255;
    static constexpr Number flip = T(-1) < T(0) ? 0x80 : 0;
    ORLIX_HOST_DEVICE static constexpr Number from(T pixel) { return Number(std::uint8_t(pixel) ^ flip); }
    ORLIX_HOST_DEVICE static constexpr double toDouble(Number number) { return double(T(number ^ flip)); }
};

/// The pixels of one thread. Integers are summed exactly until finish(). At most `block` words may be added before
/// flush().
template <class T>
class CudaPixelSums
{
    using Extreme = ExtremeOf<T>;
    using Number = typename Extreme::Number;

public:
    static constexpr unsigned block = 16384;

    ORLIX_HOST_DEVICE void addWord(std::uint32_t pixels)
    {
        if constexpr (sizeof(T) == 1) {
            // A sum of squares of bytes gains at most 4 * 255^2 from a word: 16384 * 260100 < 2^32.
            sum_ = word::addProducts<T>(sum_, pixels, 0x01010101u);
            sumSq_ = word::addProducts<T>(sumSq_, pixels, pixels);
            const std::uint32_t bytes = pixels ^ Extreme::flip * 0x01010101u;
            extendRange(bytes & 0x00ff00ffu);
            extendRange(bytes >> 8 & 0x00ff00ffu);
        } else if constexpr (sizeof(T) == 2) {
            const auto low = std::uint32_t(std::int32_t(word::lane<T>(pixels, 0)));
            const auto high = std::uint32_t(std::int32_t(word::lane<T>(pixels, 1)));
            sum_ += low + high;
            totalSq_ += std::uint64_t(low * low); // right for negative pixels, too
            totalSq_ += std::uint64_t(high * high);
            extendRange(pixels);
        } else {
            add(T(pixels));
        }
    }
    ORLIX_HOST_DEVICE void add(T pixel)
    {
        const std::int64_t x = pixel;
        const std::uint64_t square = std::uint64_t(x) * std::uint64_t(x);
        total_ += x;
        totalSq_ += square;
        carries_ += totalSq_ < square; // beyond 2^64
        extendRange(word::fill<Number>(Extreme::from(pixel)));
    }
    ORLIX_HOST_DEVICE void flush()
    {
        total_ += T(-1) < T(0) ? std::int64_t(std::int32_t(sum_)) : std::int64_t(sum_);
        totalSq_ += sumSq_;
        sum_ = 0;
        sumSq_ = 0;
    }
    /// `none` is what threads without pixels keep.
    ORLIX_HOST_DEVICE CudaStatsRecord finish(const CudaStatsRecord& none)
    {
        flush();
        Number min = word::lane<Number>(min_, 0);
        Number max = word::lane<Number>(max_, 0);
        if constexpr (sizeof(Number) == 2) {
            const Number otherMin = word::lane<Number>(min_, 1);
            const Number otherMax = word::lane<Number>(max_, 1);
            min = otherMin < min ? otherMin : min;
            max = otherMax > max ? otherMax : max;
        }
        if (max < min) {
            return none;
        }
        return {0, double(total_), double(carries_) * 18446744073709551616.0 + double(totalSq_), Extreme::toDouble(min),
                Extreme::toDouble(max)};
    }

private:
    ORLIX_HOST_DEVICE void extendRange(std::uint32_t numbers)
    {
        min_ = word::minimum<Number>(min_, numbers);
        max_ = word::maximum<Number>(max_, numbers);
    }

    std::uint32_t sum_ = 0;
    std::uint32_t sumSq_ = 0;
    std::int64_t total_ = 0;
    std::uint64_t totalSq_ = 0;
    std::uint32_t carries_ = 0;
    std::uint32_t min_ = word::fill<Number>(Extreme::highest);
    std::uint32_t max_ = word::fill<Number>(Extreme::lowest);
};

/// In double. A NaN is no extreme.
template <>
class CudaPixelSums<float>
{
public:
    static constexpr unsigned block = 1u << 30;

    ORLIX_HOST_DEVICE void addWord(std::uint32_t word)
    {
#ifdef __CUDA_ARCH__
        add(__uint_as_float(word));
#else
        float pixel;
        __builtin_memcpy(&pixel, &word, sizeof pixel);
        add(pixel);
#endif
    }
    ORLIX_HOST_DEVICE void add(float pixel)
    {
        const double x = pixel;
        sum_ += x;
        sumSq_ += x * x; // the square of a float is exact
        min_ = pixel < min_ ? pixel : min_;
        max_ = pixel > max_ ? pixel : max_;
    }
    ORLIX_HOST_DEVICE void flush() {}
    /// The measures begin with the finite ends of a range, so that infinity is no minimum.
    ORLIX_HOST_DEVICE CudaStatsRecord finish(const CudaStatsRecord& none)
    {
        CudaStatsRecord record = none;
        addRecord(record, {0, sum_, sumSq_, double(min_), double(max_)});
        return record;
    }

private:
    static constexpr float infinity = __builtin_huge_valf();

    double sum_ = 0;
    double sumSq_ = 0;
    float min_ = infinity;
    float max_ = -infinity;
};

} // namespace orlix::imaproc::glbmsr
