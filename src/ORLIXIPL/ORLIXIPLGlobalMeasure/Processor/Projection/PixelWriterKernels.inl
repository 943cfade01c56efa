// From sums to pixels, once for every pixel type and instruction set; mostly plain loops, which compilers make vectors
// of.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/PixelWriterKernels.hpp>
#include <framework/kernel/Pack.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// Rounded half away from zero and limited to the range of T; not yet cut off. P is a double or a pack of them.
template <class T, class P>
ORLIX_KERNEL P roundAndLimit(P x)
{
    const P zero{};
    x = x == x ? x : zero;
    x = maximum(x, zero + double(lowestOf<T>));
    x = minimum(x, zero + double(highestOf<T>));
    return x + (x < zero ? zero - 0.5 : zero + 0.5);
}

/// Cuts off what is behind the point; vectors convert only to signed numbers.
template <class T, Domain::domain D>
ORLIX_KERNEL void writeBlock(const double* numbers, std::size_t size, T* __restrict pixels)
{
    constexpr std::size_t step = lanes<double, D>;
    constexpr bool isWide = !isSigned<T> && sizeof(T) == 4;
    constexpr double upperHalf = 2147483648.0;
    std::int32_t whole[256];
    std::int32_t isUpper[isWide ? 256 : 1];
    for (std::size_t i = 0; i < size; i += step) {
        auto x = roundAndLimit<T>(load<Pack<double, D>>(numbers + i));
        if constexpr (isWide) {
            const auto half = x >= upperHalf ? splat<Pack<double, D>>(upperHalf) : Pack<double, D>{};
            storeTruncated<D>(half / upperHalf, isUpper + i);
            x -= half;
        }
        storeTruncated<D>(x, whole + i);
    }
    for (std::size_t i = 0; i < size; ++i) {
        if constexpr (isWide) {
            pixels[i] = T(whole[i]) + (T(isUpper[i]) << 31);
        } else {
            pixels[i] = T(whole[i]);
        }
    }
}

template <class T, Domain::domain D>
void writePixels(const double* __restrict numbers, std::size_t size, T* __restrict pixels)
{
    std::size_t i = 0;
    if constexpr (isFloat<T>) {
        for (; i < size; ++i) {
            pixels[i] = T(numbers[i]);
        }
    } else {
        if constexpr (D != Domain::eIS_Generic) {
            for (; i + 256 <= size; i += 256) {
                writeBlock<T, D>(numbers + i, 256, pixels + i);
            }
            constexpr std::size_t step = lanes<double, D>;
            writeBlock<T, D>(numbers + i, (size - i) / step * step, pixels + i);
            i += (size - i) / step * step;
        }
        for (; i < size; ++i) {
            pixels[i] = T(roundAndLimit<T>(numbers[i]));
        }
    }
}

template <class T>
void readPixels(const T* __restrict pixels, std::size_t size, double* __restrict numbers)
{
    for (std::size_t i = 0; i < size; ++i) {
        numbers[i] = toDouble(pixels[i]);
    }
}

inline void divide(double* sums, std::size_t size, double count)
{
    for (std::size_t i = 0; i < size; ++i) {
        sums[i] /= count;
    }
}

inline void makeVariances(double* __restrict sums, const double* __restrict squares, std::size_t size, double count)
{
    for (std::size_t i = 0; i < size; ++i) {
        sums[i] = (squares[i] - sums[i] * sums[i] / count) / count;
    }
}

inline void makeDeviations(double* __restrict sums, const double* __restrict squares, std::size_t size, double count)
{
    for (std::size_t i = 0; i < size; ++i) {
        sums[i] = __builtin_sqrt((squares[i] - sums[i] * sums[i] / count) / count);
    }
}

template <Domain::domain D>
constexpr PixelWriterKernels pixelWriterKernels{makeKernels<PixelWriter, D>([]<class T>(std::type_identity<T>) {
                                                    return PixelWriter<T>{&writePixels<T, D>, &readPixels<T>};
                                                }),
                                                {&divide, &makeVariances, &makeDeviations}};

} // namespace

} // namespace orlix::imaproc::glbmsr
