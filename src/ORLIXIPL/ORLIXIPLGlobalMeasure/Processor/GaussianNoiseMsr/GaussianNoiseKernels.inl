// Absolute responses to the mask (1 -2 1, -2 4 -2, 1 -2 1), once for every pixel type and instruction set.
//
// The mask is the product of (1 -2 1) down and along: first v = above - 2 at + below for a segment of a row, then
// v[x-1] - 2 v[x] + v[x+1]. A response is at most 8 times the range of the pixels:
// those of 8 bits fit 16, those of 16 bits fit 32, and those of 32 bits fit a double; so all integer sums are exact.
// Float responses are formed and added in double, in 16 lanes; so all sets give the same bits.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseKernels.hpp>
#include <framework/kernel/Prefetch.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// What responses to pixels of type T are formed in.
template <class T>
struct ResponseOf
{
    using Type = double;
};
template <class T>
requires(sizeof(T) == 1) struct ResponseOf<T>
{
    using Type = std::int16_t;
};
template <class T>
requires(sizeof(T) == 2) struct ResponseOf<T>
{
    using Type = std::int32_t;
};

template <class V, class T>
ORLIX_KERNEL V toNumber(T pixel)
{
    if constexpr (sizeof(V) == 8) {
        return toDouble(pixel);
    } else {
        return V(pixel);
    }
}

template <class V, Domain::domain D, class T>
ORLIX_KERNEL Pack<V, D> loadNumbers(const T* pixels)
{
    if constexpr (isFloat<T>) {
        return loadAsDoubles<D>(pixels);
    } else if constexpr (sizeof(T) == 4) {
        return loadIntegersAsDoubles<D>(pixels);
    } else {
        return loadWidened<D>(pixels);
    }
}

template <class V, Domain::domain D>
ORLIX_KERNEL Pack<V, D> absolute(Pack<V, D> x)
{
    if constexpr (isFloat<V>) {
        using Bits = Pack<std::int64_t, D>;
        return (Pack<V, D>)((Bits)x & 0x7fffffffffffffff);
    } else {
        return maximum(x, -x);
    }
}

/// The sum of |v[x-1] - 2 v[x] + v[x+1]| over whole packs from x = 0 on, of one segment. Sixteen lanes of doubles go
/// on; integers are added up.
template <class V, Domain::domain D>
ORLIX_KERNEL void addSegment(const V* v, std::size_t size, AbsResponses& responses, bool isExact)
{
    const auto at = [&](std::size_t x) __attribute__((always_inline))
    {
        const auto middle = load<Pack<V, D>>(v + x);
        const auto sides = load<Pack<V, D>>(v + x - 1) + load<Pack<V, D>>(v + x + 1);
        return absolute<V, D>(sides - (middle + middle));
    };
    constexpr std::size_t step = lanes<V, D>;
    if constexpr (isFloat<V>) {
        constexpr std::size_t packs = AbsResponses::lanes / step;
        Pack<V, D> sums[packs];
        double lane[AbsResponses::lanes] = {};
        loadAll(sums, isExact ? lane : responses.laneSums);
        for (std::size_t x = 0; x < size; x += AbsResponses::lanes) {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < packs; ++k) {
                sums[k] += at(x + k * step);
            }
        }
        if (isExact) {
            storeAll(sums, lane);
            double sum = 0;
            for (const double x : lane) {
                sum += x;
            }
            responses.sum += std::int64_t(sum);
        } else {
            storeAll(sums, responses.laneSums);
        }
    } else if constexpr (sizeof(V) == 2) {
        Pack<std::int32_t, D> sum{};
        for (std::size_t x = 0; x < size; x += step) {
            sum = addPairs<D>(sum, at(x));
        }
        responses.sum += addLanes<std::int32_t, std::int64_t>(sum);
    } else {
        Pack<std::int32_t, D> sum{};
        for (std::size_t x = 0; x < size; x += step) {
            sum += at(x);
        }
        responses.sum += addLanes<std::int32_t, std::int64_t>(sum);
    }
}

/// One response after the other.
template <class V>
ORLIX_KERNEL void addSegmentOneByOne(const V* v, std::size_t size, AbsResponses& responses, bool isExact)
{
    std::int64_t sum = 0;
    for (std::size_t x = 0; x < size; ++x) {
        const V* const at = v + x;
        const auto response = at[-1] + at[1] - 2 * at[0];
        const auto magnitude = response < 0 ? -response : response;
        if (isExact) {
            sum += std::int64_t(magnitude);
        } else {
            responses.laneSums[x % AbsResponses::lanes] += double(magnitude);
        }
    }
    responses.sum += sum;
}

template <class T, Domain::domain D>
void addResponses(const T* above, const T* at, const T* below, std::size_t size, AbsResponses& responses)
{
    using V = typename ResponseOf<T>::Type;
    constexpr std::size_t segment = 1024;                    // of which no lane of integers overflows
    constexpr std::size_t margin = sizeof(V) == 2 ? 32 : 16; // of columns that a last block of lanes may need
    V buffer[margin + segment + margin];
    V* const v = buffer + margin;
    const Prefetch prefetch{size * sizeof(T)};
    const auto down = [&](std::size_t x) __attribute__((always_inline))
    {
        const V middle = toNumber<V>(at[x]);
        return V(toNumber<V>(above[x]) + toNumber<V>(below[x]) - (middle + middle));
    };
    for (std::size_t begin = 0; begin < size; begin += segment) {
        const std::size_t n = size - begin < segment ? size - begin : segment;
        std::size_t x = 0;
        if constexpr (D != Domain::eIS_Generic) {
            constexpr std::size_t step = lanes<V, D>;
            for (; x + step <= n; x += step) {
                prefetch.step<step * sizeof(T)>(below + begin + x); // the other two rows were read before
                const auto middle = loadNumbers<V, D>(at + begin + x);
                store(loadNumbers<V, D>(above + begin + x) + loadNumbers<V, D>(below + begin + x) - (middle + middle),
                      v + x);
            }
        }
        for (; x < n; ++x) {
            v[x] = down(begin + x);
        }
        v[-1] = begin == 0 ? v[0] : down(begin - 1);
        v[n] = begin + n == size ? v[n - 1] : down(begin + n);
        if constexpr (D == Domain::eIS_Generic) {
            addSegmentOneByOne(v, n, responses, !isFloat<T>);
        } else {
            // A last pack is filled up with columns that go on, whose response is 0. Whole segments need none.
            for (std::size_t k = 1; n != segment && k < margin; ++k) {
                v[n + k] = v[n];
            }
            addSegment<V, D>(v, n, responses, !isFloat<T>);
        }
    }
}

template <Domain::domain D>
constexpr GaussianNoiseKernels gaussianNoiseKernels =
    makeKernels<GaussianNoiseKernel, D>([]<class T>(std::type_identity<T>) { return &addResponses<T, D>; });

} // namespace

} // namespace orlix::imaproc::glbmsr
