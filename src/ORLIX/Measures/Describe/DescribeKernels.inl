// Number, exact sum, exact sum of squares, minimum and maximum, once for every pixel type and instruction set, and for
// runs with a mask and without. Everything is exact, so all instruction sets give the same bits.

#include <ORLIX/Measures/Describe/DescribeKernels.hpp>
#include <framework/kernel/FloatSums.hpp>
#include <framework/kernel/IntegerMoments.hpp>

namespace orlix::measures
{

namespace
{

/// Extremes of the block that begins at `at`.
ORLIX_KERNEL void extend(DescribeFigures& f, double lo, double hi, const void* at)
{
    if (!(f.min <= lo)) {
        f.min = lo;
        f.minBlock = at;
    }
    if (!(f.max >= hi)) {
        f.max = hi;
        f.maxBlock = at;
    }
}

template <class R>
ORLIX_KERNEL std::uint64_t countSaturated(R run)
{
    using T = typename R::Pixel;
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < run.size; ++i) {
        count += isSelected(run, i) && (run.pixels[i] == lowestOf<T> || run.pixels[i] == highestOf<T>);
    }
    return count;
}

template <Domain::domain D, class R>
void describeIntegers(R run, DescribeFigures& f)
{
    using T = typename R::Pixel;
    constexpr std::size_t block = extremeBlock / sizeof(T);
    struct
    {
        double min;
        double max;
        Int128 sum;
        Int128 sumSq;
        std::uint64_t selected;
    } m{};
    for (std::size_t i = 0; i < run.size; i += block) {
        const R pixels = part(run, i, run.size - i < block ? run.size - i : block);
        const std::uint64_t before = m.selected;
        m.min = __builtin_inf();
        m.max = -m.min;
        if constexpr (D == Domain::eIS_Generic) {
            accumulateIntegersOneByOne<Figures::All>(pixels, m);
        } else {
            accumulateIntegers<D, Figures::All>(pixels, m);
        }
        if (R::isMasked && m.selected == before) {
            continue;
        }
        extend(f, m.min, m.max, pixels.pixels);
        if (f.countsSaturated && (m.min == double(lowestOf<T>) || m.max == double(highestOf<T>))) {
            f.nbSaturated += countSaturated(pixels);
        }
    }
    f.nbNumbers += R::isMasked ? m.selected : run.size;
    addShifted(f.sum, m.sum, 0);
    addShifted(f.squares, m.sumSq, 0);
}

// The bits of a float without its sign grow with its magnitude.
inline constexpr std::int32_t infinityBits = 0x7f800000;

/// A block of whole steps.
template <Domain::domain D, class R>
struct FloatBlock
{
    using Floats = Pack<float, D>;
    using Bits = Pack<std::int32_t, D>;
    using Selection = LaneMask<float, D>;
    static constexpr std::size_t packs = 4; ///< of doubles
    static constexpr std::size_t lane = lanes<float, D>;
    static constexpr std::size_t step = packs / 2 * lane;
    static constexpr std::size_t size = Binades::additions * step;

    R run;

    ORLIX_KERNEL static Bits magnitudeBits(Floats x) { return (Bits)x & 0x7fffffff; }
    ORLIX_KERNEL Selection selected(std::size_t i) const
    {
        if constexpr (R::isMasked) {
            return loadLaneMask<float, D>(run.mask + i);
        } else {
            return ~Selection{};
        }
    }
    template <class Visit>
    ORLIX_KERNEL void forEachPack(Visit visit) const
    {
        for (std::size_t i = 0; i < run.size; i += step) {
#pragma GCC unroll 2
            for (std::size_t k = 0; k < packs / 2; ++k) {
                visit(k, load<Floats>(run.pixels + i + k * lane), selected(i + k * lane));
            }
        }
    }

    /// `at` is where the pixels come from.
    ORLIX_KERNEL void describe(const float* at, DescribeFigures& f) const
    {
        constexpr float infinity = __builtin_inff();
        const Floats none = splat<Floats>(infinity);
        Floats lo[2] = {none, none};
        Floats hi[2] = {-none, -none};
        LaneMaskCount<float, D> count;
        const Prefetch prefetch{run.size * sizeof(float)};
        for (std::size_t i = 0; i < run.size; i += step) {
            prefetch.template stepOf<step>(run, i);
#pragma GCC unroll 2
            for (std::size_t k = 0; k < packs / 2; ++k) {
                const Floats x = load<Floats>(run.pixels + i + k * lane);
                const Selection selection = selected(i + k * lane);
                if constexpr (R::isMasked) {
                    count.add(selection);
                }
                const Floats forLo = R::isMasked ? (Floats)(selection ? x : none) : x;
                const Floats forHi = R::isMasked ? (Floats)(selection ? x : -none) : x;
                lo[k] = minimum(forLo, lo[k]); // a NaN never replaces a number
                hi[k] = maximum(forHi, hi[k]);
            }
        }
        const std::uint64_t n = R::isMasked ? count.flush() : run.size;
        if (n == 0) {
            return;
        }
        f.nbNumbers += n;
        const float min = minimumLane<float>(minimum(lo[0], lo[1]));
        const float max = maximumLane<float>(maximum(hi[0], hi[1]));
        if (min <= max) {
            extend(f, min, max, at);
        }
        const std::int32_t greatest = bitsOf(max > -min ? max : -min) & 0x7fffffff;
        const Binades range = binadesBelow(greatest);
        const std::int32_t least = leastBits(range);
        if (min <= max && greatest < infinityBits && (least == 0 || findSmallest(min, max) >= least) &&
            sumRange(range, f)) {
            return;
        }
        sumCarefully(f);
    }

    /// The least bits of a magnitude that is not 0; of nothing but zeros the greatest number.
    ORLIX_KERNEL std::int32_t findSmallest(float min, float max) const
    {
        if (min > 0 || max < 0) {
            return bitsOf(min > 0 ? min : -max);
        }
        // Counted so that the smallest float comes first, and 0 last.
        Bits least[2] = {splat<Bits>(0x7fffffff), splat<Bits>(0x7fffffff)};
        forEachPack([&](std::size_t k, Floats x, Selection selection) __attribute__((always_inline)) {
            const auto fromOne = (Bits)((Pack<std::uint32_t, D>)magnitudeBits(x) + 0x7fffffffu);
            least[k] = minimum(R::isMasked ? (Bits)(selection ? fromOne : least[k]) : fromOne, least[k]);
        });
        const std::int32_t fromOne = minimumLane<std::int32_t>(minimum(least[0], least[1]));
        return fromOne == 0x7fffffff ? fromOne : std::int32_t(std::uint32_t(fromOne) - 0x7fffffffu);
    }

    ORLIX_KERNEL static std::int32_t bitsOf(float x)
    {
        std::int32_t bits;
        __builtin_memcpy(&bits, &x, sizeof bits);
        return bits;
    }

    struct Sums
    {
        UnitLanes<D, packs> sum;
        ProductLanes<D, packs> squares;

        ORLIX_KERNEL explicit Sums(Binades range) : sum{range.unit()}, squares{range, range} {}
        ORLIX_KERNEL void add(std::size_t k, Pack<double, D> x)
        {
            sum.add(x, k);
            squares.add(x, x, k);
        }
        ORLIX_KERNEL void flush(Binades range, DescribeFigures& f) const
        {
            sum.flush(range.unit(), f.sum, floatUnit);
            squares.flush(range, range, f.squares);
        }
    };

    /// Pixels that all lie in the range. Fails where one is NaN.
    ORLIX_KERNEL bool sumRange(Binades range, DescribeFigures& f) const
    {
        Sums sums{range};
        for (std::size_t i = 0; i < run.size; i += step) {
            // The next block, which the first loop would wait for while this one asks for nothing.
            if (run.size == size) {
#pragma GCC unroll 8
                for (std::size_t k = 0; k < step; k += 16) {
                    _mm_prefetch(reinterpret_cast<const char*>(run.pixels + size + i + k), _MM_HINT_T1);
                }
            }
#pragma GCC unroll 4
            for (std::size_t k = 0; k < packs; ++k) {
                const std::size_t at = i + k * lane / 2;
                if constexpr (R::isMasked) {
                    const Floats x = keep(selected(i + k / 2 * lane), load<Floats>(run.pixels + i + k / 2 * lane));
                    sums.add(k, k % 2 == 0 ? toDoubles<D, false>(x) : toDoubles<D, true>(x));
                } else {
                    sums.add(k, loadAsDoubles<D>(run.pixels + at));
                }
            }
        }
        const bool isFinite = sums.sum.isFinite(range.unit());
        if (isFinite) {
            sums.flush(range, f);
        }
        return isFinite;
    }

    /// Any pixels: range by range, from the greatest on.
    [[gnu::noinline]] void sumCarefully(DescribeFigures& f) const
    {
        LaneMaskCount<float, D> nan;
        LaneMaskCount<float, D> positive;
        LaneMaskCount<float, D> negative;
        Bits greatest{};
        forEachPack([&](std::size_t, Floats x, Selection selection) __attribute__((always_inline)) {
            const Bits bits = magnitudeBits(x);
            nan.add(selection & (bits > infinityBits));
            positive.add(selection & ((Bits)x == infinityBits));
            negative.add(selection & (bits == infinityBits) & ((Bits)x < 0));
            greatest = maximum((Selection)(selection & (bits < infinityBits)) ? bits : Bits{}, greatest);
        });
        const std::uint64_t nbNaN = nan.flush();
        f.nbNaN += nbNaN;
        f.nbNumbers -= nbNaN;
        f.nbPositiveInfinity += positive.flush();
        f.nbNegativeInfinity += negative.flush();
        std::int32_t limit = infinityBits;
        for (std::int32_t next = maximumLane<std::int32_t>(greatest); next != 0;) {
            const Binades range = binadesBelow(next);
            const std::int32_t least = leastBits(range);
            Sums sums{range};
            greatest = Bits{};
            forEachPack([&](std::size_t k, Floats x, Selection selection) __attribute__((always_inline)) {
                const Bits bits = magnitudeBits(x);
                const Floats counting = keep((Selection)(selection & (bits < limit) & (bits >= least)), x);
                greatest = maximum((Selection)(selection & (bits < least)) ? bits : Bits{}, greatest);
                sums.add(2 * k, toDoubles<D, false>(counting));
                sums.add(2 * k + 1, toDoubles<D, true>(counting));
            });
            sums.flush(range, f);
            limit = least;
            next = maximumLane<std::int32_t>(greatest);
        }
    }
};

template <Domain::domain D, class R>
void describeFloats(R run, DescribeFigures& f)
{
    using Block = FloatBlock<D, R>;
    const std::size_t whole = run.size / Block::step * Block::step;
    for (std::size_t i = 0; i < whole; i += Block::size) {
        Block{part(run, i, whole - i < Block::size ? whole - i : Block::size)}.describe(run.pixels + i, f);
    }
    if (whole != run.size) { // the last pixels, filled up with such as do not count
        float filled[Block::step] = {};
        std::uint8_t counts[Block::step] = {};
        for (std::size_t i = 0; i < run.size - whole; ++i) {
            filled[i] = run.pixels[whole + i];
            counts[i] = isSelected(run, whole + i);
        }
        using Masked = MaskedRun<float>;
        FloatBlock<D, Masked>{Masked{filled, Block::step, counts}}.describe(run.pixels + whole, f);
    }
}

/// One pixel after the other: the generic domain.
template <class R>
void describeFloatsOneByOne(R run, DescribeFigures& f)
{
    for (std::size_t i = 0; i < run.size; ++i) {
        if (!isSelected(run, i)) {
            continue;
        }
        const float x = run.pixels[i];
        if (x != x) {
            ++f.nbNaN;
            continue;
        }
        ++f.nbNumbers;
        extend(f, x, x, run.pixels + i);
        std::uint32_t bits;
        __builtin_memcpy(&bits, &x, sizeof bits);
        const std::uint32_t exponent = bits >> 23 & 0xff;
        if (exponent == 0xff) {
            ++(x > 0 ? f.nbPositiveInfinity : f.nbNegativeInfinity);
            continue;
        }
        const std::int64_t digits = (bits & 0x7fffff) | (exponent != 0 ? 0x800000 : 0);
        const unsigned shift = exponent != 0 ? exponent - 1 : 0;
        addShifted(f.sum, x < 0 ? -digits : digits, shift);
        addShifted(f.squares, digits * digits, 2 * shift);
    }
}

template <class R, Domain::domain D>
void describeRun(R run, DescribeFigures& f)
{
    if (run.size == 0) {
        return;
    }
    if constexpr (!isFloat<typename R::Pixel>) {
        describeIntegers<D>(run, f);
    } else if constexpr (D == Domain::eIS_Generic) {
        describeFloatsOneByOne(run, f);
    } else {
        describeFloats<D>(run, f);
    }
}

/// Whether a file has kernels for pixels of type T: one with an extension of AVX-512 has what that is good for.
template <class T>
constexpr bool isWorthwhile =
#if defined __AVX512VNNI__
    sizeof(T) < 4;
#elif defined __AVX512IFMA__
    std::is_integral_v<T> && sizeof(T) == 4;
#else
    true;
#endif

template <template <class> class Kernel, template <class> class R, Domain::domain D>
constexpr KernelsByType<Kernel> kernelsOf = makeKernels<Kernel, D>([]<class T>(std::type_identity<T>) -> Kernel<T> {
    if constexpr (isWorthwhile<T>) {
        return &describeRun<R<T>, D>;
    } else {
        return nullptr;
    }
});

template <Domain::domain D>
constexpr DescribeKernels describeKernels = kernelsOf<DescribeKernel, Run, D>;
template <Domain::domain D>
constexpr DescribeMaskKernels describeMaskKernels = kernelsOf<DescribeMaskKernel, MaskedRun, D>;

} // namespace

} // namespace orlix::measures
