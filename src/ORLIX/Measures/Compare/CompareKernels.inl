// Sums over pairs of pixels, exact, so that all instruction sets give the same bits. Pixels of any type are read as
// floats, block by block, and one arithmetic serves all pairs of types.

#include <ORLIX/Measures/Compare/CompareKernels.hpp>
#include <framework/kernel/FloatSums.hpp>
#include <framework/kernel/IntegerMoments.hpp>

namespace orlix::measures
{

namespace
{

template <class T, Domain::domain D>
bool readFloats(const T* from, std::size_t size, float* to)
{
    bool isExact = true;
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using Floats = Pack<float, D>;
        using Bits = Pack<std::uint32_t, D>;
        constexpr std::size_t lane = lanes<float, D>;
        [[maybe_unused]] Bits excess{};
        for (; i + lane <= size; i += lane) {
            if constexpr (!isFloat<T> && sizeof(T) == 4) {
                constexpr std::uint32_t limit = 1u << 24; // signed numbers are moved up by it
                const Bits x = load<Bits>(from + i) + (isSigned<T> ? limit : 0u);
                excess |= (Bits)(x >> (isSigned<T> ? 25 : 24));
            }
            store(Floats(loadAsFloats<D>(from + i)), to + i);
        }
        if constexpr (!isFloat<T> && sizeof(T) == 4) {
            isExact = addLanes<std::uint32_t, std::uint64_t>(excess) == 0;
        }
    }
    for (; i < size; ++i) {
        to[i] = float(from[i]);
        if constexpr (!isFloat<T> && sizeof(T) == 4) {
            isExact &= std::int64_t(from[i]) >= -(1 << 24) && std::int64_t(from[i]) < (1 << 24);
        }
    }
    return isExact;
}

inline constexpr std::int32_t infinityBits = 0x7f800000;

template <Domain::domain D>
struct Pairs
{
    using Floats = Pack<float, D>;
    using Bits = Pack<std::int32_t, D>;
    using Selection = LaneMask<float, D>;
    using Doubles = Pack<double, D>;
    static constexpr std::size_t lane = lanes<float, D>;
    static constexpr std::size_t step = lanes<double, D>;

    PairBlock& block;
    std::size_t begin;
    std::size_t end;

    /// Counts the selected lanes.
    struct Count
    {
        Pack<std::uint32_t, D> count{};
        ORLIX_KERNEL void add(Selection selection) { count -= (Pack<std::uint32_t, D>)selection; }
        ORLIX_KERNEL std::uint64_t flush() const { return addLanes<std::uint32_t, std::uint64_t>(count); }
    };

    /// Sets to 0 what does not count. Returns the least bits of the magnitudes that are not 0, and the greatest.
    ORLIX_KERNEL void clean(CompareFigures& f, std::int32_t (&least)[2], std::int32_t (&greatest)[2]) const
    {
        constexpr float infinity = __builtin_inff();
        Count nan, infinite, good;
        Floats lo[2] = {splat<Floats>(infinity), splat<Floats>(infinity)};
        Floats hi[2] = {splat<Floats>(-infinity), splat<Floats>(-infinity)};
        // Counted so that the smallest float comes first, and 0 last.
        Bits first[2] = {splat<Bits>(0x7fffffff), splat<Bits>(0x7fffffff)};
        for (std::size_t i = begin; i < end; i += lane) {
            const Selection counts = loadLaneMask<float, D>(block.counts + i);
            Floats x[2];
            Bits bits[2];
            for (int k = 0; k < 2; ++k) {
                x[k] = load<Floats>(block.from[k] + i);
                bits[k] = (Bits)x[k] & 0x7fffffff;
            }
            const Selection isNumber = (bits[0] <= infinityBits) & (bits[1] <= infinityBits);
            const Selection isFinite = (bits[0] < infinityBits) & (bits[1] < infinityBits);
            const Selection enters = counts & isFinite;
            nan.add(counts & ~isNumber);
            infinite.add(counts & isNumber & ~isFinite);
            good.add(enters);
            for (int k = 0; k < 2; ++k) {
                store(keep(enters, x[k]), block.pixels[k] + i);
                lo[k] = minimum((Floats)(enters ? x[k] : splat<Floats>(infinity)), lo[k]);
                hi[k] = maximum((Floats)(enters ? x[k] : splat<Floats>(-infinity)), hi[k]);
                const auto fromOne = (Bits)((Pack<std::uint32_t, D>)(bits[k] & enters) + 0x7fffffffu);
                first[k] = minimum(fromOne, first[k]);
            }
        }
        f.nbNaN += nan.flush();
        const std::uint64_t nbInfinite = infinite.flush();
        f.nbInfinite += nbInfinite;
        f.nbPairs += nbInfinite + good.flush();
        for (int k = 0; k < 2; ++k) {
            const float min = minimumLane<float>(lo[k]);
            const float max = maximumLane<float>(hi[k]);
            f.min[k] = f.min[k] < min ? f.min[k] : min;
            f.max[k] = f.max[k] > max ? f.max[k] : max;
            const float most = max > -min ? max : -min;
            __builtin_memcpy(&greatest[k], &most, sizeof most);
            greatest[k] = min <= max ? greatest[k] & 0x7fffffff : 0;
            const std::int32_t fromOne = minimumLane<std::int32_t>(first[k]);
            least[k] = fromOne == 0x7fffffff ? fromOne : std::int32_t(std::uint32_t(fromOne) - 0x7fffffffu);
        }
    }

    ORLIX_KERNEL void sum(Binades (&range)[2], CompareFigures& f) const
    {
        using Wide = Pack<std::int64_t, D>;
        UnitLanes<D> sums[2] = {UnitLanes<D>{range[0].unit()}, UnitLanes<D>{range[1].unit()}};
        UnitLanes<D> larger[2] = {sums[0], sums[1]};
        UnitLanes<D> coincident[2] = {sums[0], sums[1]};
        ProductLanes<D> aa{range[0], range[0]};
        ProductLanes<D> bb{range[1], range[1]};
        ProductLanes<D> ab{range[0], range[1]};
        Doubles most{};
        const Doubles thresholds[2] = {splat<Doubles>(f.threshold[0]), splat<Doubles>(f.threshold[1])};
        for (std::size_t i = begin; i < end; i += step) {
            // The next block, for which nothing asks while this one is summed up.
            for (int k = 0; k < 2; ++k) {
                _mm_prefetch(reinterpret_cast<const char*>(block.from[k] + PairBlock::size + i), _MM_HINT_T1);
            }
            const Doubles a = loadAsDoubles<D>(block.pixels[0] + i);
            const Doubles b = loadAsDoubles<D>(block.pixels[1] + i);
            const Wide isLess = a < b;
            sums[0].add(a);
            sums[1].add(b);
            larger[0].add((Doubles)(~isLess & (Wide)a));
            larger[1].add((Doubles)(isLess & (Wide)b));
            coincident[0].add((Doubles)((Wide)(b > thresholds[1]) & (Wide)a));
            coincident[1].add((Doubles)((Wide)(a > thresholds[0]) & (Wide)b));
            aa.add(a, a);
            bb.add(b, b);
            ab.add(a, b);
            most = maximum((Doubles)((Wide)(a - b) & 0x7fffffffffffffff), most);
        }
        for (int k = 0; k < 2; ++k) {
            sums[k].flush(range[k].unit(), f.sum[k], floatUnit);
            larger[k].flush(range[k].unit(), f.larger, floatUnit);
            coincident[k].flush(range[k].unit(), f.coincident[k], floatUnit);
        }
        aa.flush(range[0], range[0], f.squares[0]);
        bb.flush(range[1], range[1], f.squares[1]);
        ab.flush(range[0], range[1], f.products);
        const double error = maximumLane<double>(most);
        f.maxError = f.maxError > error ? f.maxError : error;
    }
};

/// Pairs up to a whole number of packs; they do not count.
ORLIX_KERNEL void fill(PairBlock& block, std::size_t size, std::size_t whole)
{
    for (std::size_t i = size; i < whole; ++i) {
        block.pixels[0][i] = block.pixels[1][i] = 0;
        block.words[0][i] = block.words[1][i] = 0;
        block.counts[i] = 0;
    }
}

/// Part by part, as lanes take them. Where a part has too many binades, those that have not are 0 in the end.
template <Domain::domain D>
bool comparePairs(PairBlock& block, std::size_t size, CompareFigures& f)
{
    constexpr std::size_t most = Binades::additions * lanes<double, D>;
    constexpr std::size_t part = most < PairBlock::size ? most : PairBlock::size;
    const std::size_t whole = (size + 15) / 16 * 16;
    fill(block, size, whole);
    std::uint32_t done = 0;
    std::uint32_t all = 0;
    for (std::size_t i = 0; i < whole; i += part) {
        const Pairs<D> pairs{block, i, whole - i < part ? whole : i + part};
        const std::uint32_t bit = 1u << i / part;
        all |= bit;
        const std::uint64_t before = f.nbPairs - f.nbInfinite;
        std::int32_t least[2];
        std::int32_t greatest[2];
        pairs.clean(f, least, greatest);
        Binades range[2] = {binadesBelow(greatest[0]), binadesBelow(greatest[1])};
        if (f.nbPairs - f.nbInfinite == before) {
            done |= bit;
        } else if (least[0] >= leastBits(range[0]) && least[1] >= leastBits(range[1])) {
            pairs.sum(range, f);
            done |= bit;
        }
    }
    for (std::size_t i = 0; i < whole && done != all; ++i) {
        if ((done >> i / part & 1) != 0) {
            block.pixels[0][i] = block.pixels[1][i] = 0;
        }
    }
    return done == all;
}

template <class T, Domain::domain D>
void readWords(const T* from, std::size_t size, std::int32_t bias, std::int16_t* to)
{
    std::size_t i = 0;
    if constexpr (D != Domain::eIS_Generic) {
        using Words = Pack<std::int16_t, D>;
        constexpr std::size_t lane = lanes<std::int16_t, D>;
        const Words turn = splat<Words>(std::int16_t(bias));
        for (; i + lane <= size; i += lane) {
            if constexpr (sizeof(T) == 1) {
                store(Words(loadWidened<D>(from + i) - turn), to + i);
            } else {
                store(Words(load<Words>(from + i) - turn), to + i);
            }
        }
    }
    for (; i < size; ++i) {
        to[i] = std::int16_t(std::int32_t(from[i]) - bias);
    }
}

/// The same sums of words a, b, by way of their differences, which must fit words too: 2 a b = a^2 + b^2 - (a - b)^2.
template <Domain::domain D>
bool compareWords(PairBlock& block, std::size_t size, CompareFigures& f)
{
    using Words = Pack<std::int16_t, D>;
    using Selection = LaneMask<std::int16_t, D>;
    constexpr std::size_t lane = lanes<std::int16_t, D>;
    constexpr std::int16_t lowest = -32768;
    constexpr std::int16_t highest = 32767;
    const std::size_t whole = (size + 31) / 32 * 32;
    fill(block, size, whole);

    Words threshold[2]; // the greatest word that is not above it
    bool isBelowAll[2];
    for (int k = 0; k < 2; ++k) {
        const double t = f.threshold[k] - block.bias;
        isBelowAll[k] = t < lowest;
        const std::int32_t cut = t < lowest ? lowest : t > highest ? highest : std::int32_t(t);
        threshold[k] = splat<Words>(std::int16_t(cut > t && cut > lowest ? cut - 1 : cut));
    }
    ExactSums<std::int16_t, D> sums[2];
    ExactSums<std::int16_t, D> errors;
    Pack<std::int32_t, D> magnitudes{};
    Pack<std::int32_t, D> coincident[2] = {};
    LaneMaskCount<std::int16_t, D> pairs;
    LaneMaskCount<std::int16_t, D> coincidences[2];
    Words most{};
    Words lo[2] = {splat<Words>(highest), splat<Words>(highest)};
    Words hi[2] = {splat<Words>(lowest), splat<Words>(lowest)};
    for (std::size_t i = 0; i < whole; i += lane) {
        const Selection selection = loadLaneMask<std::int16_t, D>(block.counts + i);
        pairs.add(selection);
        Words x[2];
        for (int k = 0; k < 2; ++k) {
            const Words word = load<Words>(block.words[k] + i);
            lo[k] = minimum((Words)(selection ? word : splat<Words>(highest)), lo[k]);
            hi[k] = maximum((Words)(selection ? word : splat<Words>(lowest)), hi[k]);
            x[k] = keep(selection, word);
            sums[k].add(x[k]);
        }
        const Words error = x[0] - x[1];
        const Words magnitude = maximum(error, (Words)-error);
        errors.add(error);
        magnitudes = addPairs<D>(magnitudes, magnitude);
        most = maximum(magnitude, most);
        for (int k = 0; k < 2; ++k) {
            const Selection isAbove =
                isBelowAll[1 - k] ? selection : (Selection)(selection & (x[1 - k] > threshold[1 - k]));
            coincident[k] = addPairs<D>(coincident[k], keep(isAbove, x[k]));
            coincidences[k].add(isAbove);
        }
    }
    const std::uint64_t n = pairs.flush();
    if (n == 0) {
        return true;
    }
    std::int32_t min[2];
    std::int32_t max[2];
    for (int k = 0; k < 2; ++k) {
        min[k] = minimumLane<std::int16_t>(lo[k]);
        max[k] = maximumLane<std::int16_t>(hi[k]);
    }
    if (max[0] - min[1] > highest || max[1] - min[0] > highest) {
        return false;
    }
    constexpr unsigned unit = -floatUnit;
    const Int128 bias = block.bias;
    Totals totals[2];
    Totals ofErrors;
    errors.flush(ofErrors);
    for (int k = 0; k < 2; ++k) {
        sums[k].flush(totals[k]);
        addShifted(f.sum[k], totals[k].sum + n * bias, unit);
        addShifted(f.squares[k], totals[k].sumSq + 2 * bias * totals[k].sum + n * bias * bias, 2 * unit);
        const Int128 part = addLanes<std::int32_t, std::int64_t>(coincident[k]);
        addShifted(f.coincident[k], part + coincidences[k].flush() * bias, unit);
        f.min[k] = f.min[k] < min[k] + block.bias ? f.min[k] : min[k] + block.bias;
        f.max[k] = f.max[k] > max[k] + block.bias ? f.max[k] : max[k] + block.bias;
    }
    const Int128 both = totals[0].sum + totals[1].sum;
    const Int128 products = (totals[0].sumSq + totals[1].sumSq - ofErrors.sumSq) / 2;
    addShifted(f.products, products + bias * both + n * bias * bias, 2 * unit);
    const Int128 apart = addLanes<std::int32_t, std::int64_t>(magnitudes);
    addShifted(f.larger, (both + apart) / 2 + n * bias,
               unit); // the larger one is half of what both and their distance make
    const double error = maximumLane<std::int16_t>(most);
    f.maxError = f.maxError > error ? f.maxError : error;
    f.nbPairs += n;
    return true;
}

/// The generic domain: it cleans the block, so that what counts are pairs of finite pixels, and leaves the sums to
/// those who add up anything.
template <Domain::domain D>
bool cleanPairs(PairBlock& block, std::size_t size, CompareFigures& f)
{
    for (std::size_t i = 0; i < size; ++i) {
        const float a = block.pixels[0][i] = block.from[0][i];
        const float b = block.pixels[1][i] = block.from[1][i];
        const bool isNumber = a == a && b == b;
        const bool isFinite = a - a == 0 && b - b == 0;
        const bool counts = block.counts[i] != 0;
        f.nbNaN += counts && !isNumber;
        f.nbInfinite += counts && isNumber && !isFinite;
        f.nbPairs += counts && isNumber;
        for (int k = 0; k < 2; ++k) {
            block.counts[i] = counts && isFinite;
            if (counts && isFinite) {
                const double x = block.pixels[k][i];
                f.min[k] = f.min[k] < x ? f.min[k] : x;
                f.max[k] = f.max[k] > x ? f.max[k] : x;
            } else {
                block.pixels[k][i] = 0;
            }
        }
    }
    return false;
}

template <Domain::domain D>
constexpr ReadKernels readKernels = makeKernels<ReadKernel, D>([]<class T>(std::type_identity<T>) {
    return &readFloats<T, D>;
});

template <Domain::domain D>
constexpr ReadWordsKernels
    readWordsKernels = makeKernels<ReadWordsKernel, D>([]<class T>(std::type_identity<T>) -> ReadWordsKernel<T> {
        if constexpr (sizeof(T) < 4) {
            return &readWords<T, D>;
        } else {
            return nullptr;
        }
    });

template <Domain::domain D>
constexpr CompareKernels
    compareKernels = makeKernels<CompareKernel, D>([]<class T>(std::type_identity<T>) -> CompareKernel<T> {
        constexpr bool isGeneric = D == Domain::eIS_Generic;
        if constexpr (isFloat<T> && isGeneric) {
            return &cleanPairs<D>;
        } else if constexpr (isFloat<T>) {
            return &comparePairs<D>;
        } else if constexpr (isSigned<T> && sizeof(T) == 2 && !isGeneric) {
            return &compareWords<D>;
        } else {
            return nullptr;
        }
    });

} // namespace

} // namespace orlix::measures
