// The sums of the correlations, once for every pixel type and instruction set. A pair of pixel types is composed: the
// deviations of one image are read into a buffer, those of the other are read on the way. Two images of one type need
// no buffer; of 8 and 16 bits not even deviations: sums over pixels are exact, and the means are taken off at the end.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/DeviationKernels.hpp>
#include <framework/kernel/ExactSums.hpp>
#include <framework/kernel/Prefetch.hpp>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// The pixel in single precision. (Machines without AVX-512 convert only signed numbers; of an unsigned one both
/// halves are exact, so their sum is rounded once.)
template <class T>
ORLIX_KERNEL float toFloat(T x)
{
    if constexpr (!isSigned<T> && sizeof(T) == 4) {
        return float(std::int32_t(x >> 16)) * 65536.f + float(std::int32_t(x & 0xffffu));
    } else {
        return float(x);
    }
}

template <class T>
void readFloats(DeviationsOf<T, float> of, std::size_t size, float* __restrict deviations)
{
    for (std::size_t i = 0; i < size; ++i) {
        deviations[i] = toFloat(of.pixels[i]) - of.mean;
    }
}

template <class T>
void readDoubles(DeviationsOf<T, double> of, std::size_t size, double* __restrict deviations)
{
    for (std::size_t i = 0; i < size; ++i) {
        deviations[i] = toDouble(of.pixels[i]) - of.mean;
    }
}

// Deviation i, and as many as a register holds from i on (two registers of doubles); of pixels, or as they were read.

template <class T>
ORLIX_KERNEL float at(DeviationsOf<T, float> of, std::size_t i)
{
    return toFloat(of.pixels[i]) - of.mean;
}
template <class T>
ORLIX_KERNEL double at(DeviationsOf<T, double> of, std::size_t i)
{
    return toDouble(of.pixels[i]) - of.mean;
}
template <class Number>
ORLIX_KERNEL Number at(const Number* deviations, std::size_t i)
{
    return deviations[i];
}

template <Domain::domain D, class T>
ORLIX_KERNEL Pack<float, D> floatsAt(DeviationsOf<T, float> of, std::size_t i)
{
    return loadAsFloats<D>(of.pixels + i) - of.mean;
}
template <Domain::domain D>
ORLIX_KERNEL Pack<float, D> floatsAt(const float* deviations, std::size_t i)
{
    return load<Pack<float, D>>(deviations + i);
}

template <Domain::domain D, class T>
ORLIX_KERNEL void doublesAt(DeviationsOf<T, double> of, std::size_t i, Pack<double, D> (&x)[2])
{
    if constexpr (isFloat<T>) {
        x[0] = loadAsDoubles<D>(of.pixels + i) - of.mean;
        x[1] = loadAsDoubles<D>(of.pixels + i + lanes<double, D>) - of.mean;
    } else if constexpr (sizeof(T) < 4) {
        const Pack<float, D> exact = loadAsFloats<D>(of.pixels + i);
        x[0] = toDoubles<D, false>(exact) - of.mean;
        x[1] = toDoubles<D, true>(exact) - of.mean;
    } else {
        x[0] = loadIntegersAsDoubles<D>(of.pixels + i) - of.mean;
        x[1] = loadIntegersAsDoubles<D>(of.pixels + i + lanes<double, D>) - of.mean;
    }
}
template <Domain::domain D>
ORLIX_KERNEL void doublesAt(const double* deviations, std::size_t i, Pack<double, D> (&x)[2])
{
    x[0] = load<Pack<double, D>>(deviations + i);
    x[1] = load<Pack<double, D>>(deviations + i + lanes<double, D>);
}

/// Asks for the pixels behind 16 deviations; those that were read are at hand.
template <class T, class Number>
ORLIX_KERNEL void ask(const Prefetch& prefetch, DeviationsOf<T, Number> of, std::size_t i)
{
    prefetch.step<16 * sizeof(T)>(of.pixels + i);
}
template <class Number>
ORLIX_KERNEL void ask(const Prefetch&, const Number*, std::size_t)
{}

/// Calls block(first, second, i) for every 16 deviations of both from i on. The last are filled up with zeros, which
/// add nothing.
template <class Number, class First, class Second, class Block>
ORLIX_KERNEL void forBlocks(First first, Second second, std::size_t size, Block block)
{
    const Prefetch prefetch{size * sizeof(float)};
    const std::size_t whole = size / 16 * 16;
    for (std::size_t i = 0; i < whole; i += 16) {
        ask(prefetch, first, i);
        ask(prefetch, second, i);
        block(first, second, i);
    }
    if (whole != size) {
        Number rest1[16] = {};
        Number rest2[16] = {};
        for (std::size_t k = 0; whole + k < size; ++k) {
            rest1[k] = at(first, whole + k);
            rest2[k] = at(second, whole + k);
        }
        block((const Number*)rest1, (const Number*)rest2, 0);
    }
}

/// Sixteen float lanes.
template <Domain::domain D>
struct FloatLanes
{
    using P = Pack<float, D>;
    static constexpr std::size_t packs = 16 / lanes<float, D>;

    ORLIX_KERNEL void addTo(double (&sums)[CrossSums::lanes]) const
    {
        using Doubles = Pack<double, D>;
        float lane[16];
        storeAll(pack, lane);
        for (std::size_t k = 0; k < CrossSums::lanes; k += lanes<double, D>) {
            const Doubles sum =
                load<Doubles>(sums + k) + (loadAsDoubles<D>(lane + k) + loadAsDoubles<D>(lane + k + CrossSums::lanes));
            store(sum, sums + k);
        }
    }

    P pack[packs]{};
};

template <>
struct FloatLanes<Domain::eIS_Generic>
{
    ORLIX_KERNEL void addTo(double (&sums)[CrossSums::lanes]) const
    {
        for (std::size_t k = 0; k < CrossSums::lanes; ++k) {
            sums[k] += double(pack[k]) + double(pack[k + CrossSums::lanes]);
        }
    }

    float pack[16]{};
};

template <Domain::domain D, class First, class Second>
void addCross(First first, Second second, std::size_t size, CrossSums& sums)
{
    FloatLanes<D> squares1;
    FloatLanes<D> squares2;
    FloatLanes<D> products;
    forBlocks<float>(
        first, second, size, [&](auto one, auto other, std::size_t i) __attribute__((always_inline)) {
            const auto add = [&](std::size_t k, auto x, auto y) __attribute__((always_inline))
            {
                squares1.pack[k] += x * x;
                squares2.pack[k] += y * y;
                products.pack[k] += x * y;
            };
            if constexpr (D == Domain::eIS_Generic) {
                for (std::size_t k = 0; k < 16; ++k) {
                    add(k, at(one, i + k), at(other, i + k));
                }
            } else {
#pragma GCC unroll 4
                for (std::size_t k = 0; k < FloatLanes<D>::packs; ++k) {
                    add(k, floatsAt<D>(one, i + k * lanes<float, D>), floatsAt<D>(other, i + k * lanes<float, D>));
                }
            }
        });
    squares1.addTo(sums.squares1);
    squares2.addTo(sums.squares2);
    products.addTo(sums.products);
}

template <Domain::domain D, class First, class Second>
void addProducts(First first, Second second, std::size_t size, ProductSums& sums)
{
    if constexpr (D == Domain::eIS_Generic) {
        forBlocks<double>(
            first, second, size, [&](auto one, auto other, std::size_t i) __attribute__((always_inline)) {
                for (std::size_t k = 0; k < 16; ++k) {
                    sums.products[k] += at(one, i + k) * at(other, i + k);
                }
            });
    } else {
        using P = Pack<double, D>;
        constexpr std::size_t step = lanes<double, D>;
        constexpr std::size_t packs = ProductSums::lanes / step;
        P products[packs];
        loadAll(products, sums.products);
        forBlocks<double>(
            first, second, size, [&](auto one, auto other, std::size_t i) __attribute__((always_inline)) {
#pragma GCC unroll 4
                for (std::size_t k = 0; k < packs; k += 2) {
                    P x[2];
                    P y[2];
                    doublesAt<D>(one, i + k * step, x);
                    doublesAt<D>(other, i + k * step, y);
                    products[k] += x[0] * y[0];
                    products[k + 1] += x[1] * y[1];
                }
            });
        storeAll(products, sums.products);
    }
}

/// Exact products of canonical pixels, as ExactSums.
template <class Y, Domain::domain D>
struct ExactProducts;

template <Domain::domain D>
struct ExactProducts<std::uint8_t, D>
{
    static constexpr std::size_t block = 8192;
    using Words = Pack<std::uint16_t, D>;

    ORLIX_KERNEL void add(Pack<std::uint8_t, D> a, Pack<std::uint8_t, D> b)
    {
        constexpr std::uint16_t low = 0xff;
        products +=
            multiplyAddPairs<D>((Words)a & low, (Words)b & low) + multiplyAddPairs<D>((Words)a >> 8, (Words)b >> 8);
    }
    ORLIX_KERNEL Int128 flush()
    {
        const auto sum = addLanes<std::uint32_t, std::uint64_t>(products);
        *this = {};
        return sum;
    }

    Pack<std::uint32_t, D> products{};
};

template <Domain::domain D>
struct ExactProducts<std::int16_t, D>
{
    static constexpr std::size_t block = 16384;
    using Pairs = Pack<std::uint32_t, D>;

    ORLIX_KERNEL void add(Pack<std::int16_t, D> a, Pack<std::int16_t, D> b)
    {
        // Two products sum to at most 2^31, and to more than -2^31: what is taken off fits a lane.
        const Pairs negated = Pairs{} - multiplyAddPairs<D>(a, b);
        wrapped += negated;
        high += (Pack<std::int32_t, D>)negated >> 16;
    }
    ORLIX_KERNEL Int128 flush()
    {
        const auto low = wrapped - ((Pairs)high << 16); // each lane less than 2^14 * 2^16
        const Int128 sum = -(Int128(addLanes<std::uint32_t, std::uint64_t>(low)) +
                             (Int128(addLanes<std::int32_t, std::int64_t>(high)) << 16));
        *this = {};
        return sum;
    }

    Pairs wrapped{};              ///< products, negated, modulo 2^32
    Pack<std::int32_t, D> high{}; ///< their high halves
};

template <class T, Domain::domain D, bool WithSquares>
void addTotals(Run<T> a, Run<T> b, PairTotals& pair)
{
    if constexpr (D == Domain::eIS_Generic) {
        constexpr std::size_t block = std::size_t{1} << 20; // of products of at most 2^32
        for (std::size_t i = 0; i < a.size;) {
            const std::size_t end = a.size - i < block ? a.size : i + block;
            std::int64_t sums[5] = {};
            for (; i < end; ++i) {
                const std::int64_t x = a.pixels[i];
                const std::int64_t y = b.pixels[i];
                sums[0] += x;
                sums[1] += y;
                sums[2] += WithSquares ? x * x : 0;
                sums[3] += WithSquares ? y * y : 0;
                sums[4] += x * y;
            }
            pair.sum1 += sums[0];
            pair.sum2 += sums[1];
            pair.squares1 += sums[2];
            pair.squares2 += sums[3];
            pair.products += sums[4];
        }
    } else {
        using Y = Canonical<T>;
        using Sums = ExactSums<Y, D>;
        using Products = ExactProducts<Y, D>;
        constexpr std::size_t step = lanes<T, D>;
        constexpr std::size_t block = Sums::block < Products::block ? Sums::block : Products::block;
        Totals totals[2];
        Sums sums[2];
        Products products;
        Int128 productTotal = 0;
        const auto take = [&](const T* pixels1, const T* pixels2) __attribute__((always_inline))
        {
            const auto x = loadCanonical<T, D>(pixels1);
            const auto y = loadCanonical<T, D>(pixels2);
            sums[0].add(x);
            sums[1].add(y);
            products.add(x, y);
        };
        const Prefetch prefetch{a.size * sizeof(T)};
        const std::size_t whole = a.size / step;
        std::size_t i = 0;
        do {
            const std::size_t end = whole - i < block ? whole : i + block - 1;
            for (; i < end; ++i) {
                prefetch.stepOf<step>(a, i * step);
                prefetch.stepOf<step>(b, i * step);
                take(a.pixels + i * step, b.pixels + i * step);
            }
            const std::size_t rest = a.size % step;
            if (end == whole && rest != 0) {
                T filled1[step];
                T filled2[step];
                for (std::size_t k = 0; k < step; ++k) {
                    filled1[k] = filled2[k] = T(bias<T>); // canonically 0
                }
                __builtin_memcpy(filled1, a.pixels + whole * step, rest * sizeof(T));
                __builtin_memcpy(filled2, b.pixels + whole * step, rest * sizeof(T));
                take(filled1, filled2);
            }
            sums[0].flush(totals[0]);
            sums[1].flush(totals[1]);
            productTotal += products.flush();
        } while (i < whole);

        constexpr Int128 shift = bias<T>;
        const Int128 shiftSquares = Int128(a.size) * shift * shift;
        pair.sum1 += totals[0].sum + Int128(a.size) * shift;
        pair.sum2 += totals[1].sum + Int128(a.size) * shift;
        if constexpr (WithSquares) {
            pair.squares1 += totals[0].sumSq + 2 * shift * totals[0].sum + shiftSquares;
            pair.squares2 += totals[1].sumSq + 2 * shift * totals[1].sum + shiftSquares;
        }
        pair.products += productTotal + shift * (totals[0].sum + totals[1].sum) + shiftSquares;
    }
}

template <class T, Domain::domain D>
constexpr DeviationKernel<T> makeDeviationKernel()
{
    using Floats = DeviationsOf<T, float>;
    using Doubles = DeviationsOf<T, double>;
    DeviationKernel<T> kernel{&readFloats<T>,
                              &readDoubles<T>,
                              {&addCross<D, Floats, const float*>, nullptr, nullptr},
                              {&addProducts<D, Doubles, const double*>, nullptr, nullptr}};
    if constexpr (sizeof(T) < 4) {
        kernel.cross.addPairExactly = &addTotals<T, D, true>;
        kernel.products.addPairExactly = &addTotals<T, D, false>;
    } else {
        kernel.cross.addPair = &addCross<D, Floats, Floats>;
        kernel.products.addPair = &addProducts<D, Doubles, Doubles>;
    }
    return kernel;
}

template <Domain::domain D>
constexpr DeviationKernels deviationKernels = makeKernels<DeviationKernel, D>([]<class T>(std::type_identity<T>) {
    return makeDeviationKernel<T, D>();
});

} // namespace

} // namespace orlix::imaproc::glbmsr
