// What is made of columns of pixels, once for every pixel type and instruction set.
//
// Sums are those of the pixels and of their squares as doubles, one after the other. Integers of 8 and 16 bits are
// summed in integer lanes over blocks of rows, which comes to the same: below 2^53 every sum is exact.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ColumnKernels.hpp>
#include <framework/kernel/Prefetch.hpp>
#include <framework/kernel/RankSelection.hpp>

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// Rows that are read side by side: more streams hide more of the memory's latency.
constexpr std::size_t rowsAtOnce = 8;

/// Calls `work(std::integral_constant-like<R>, row pointers)` for groups of rows.
template <std::size_t R>
struct RowCount
{
    static constexpr std::size_t value = R;
};

template <class T, class Work>
ORLIX_KERNEL void forRows(const Columns<T>& columns, Work work)
{
    std::size_t y = 0;
    for (; y + rowsAtOnce <= columns.count; y += rowsAtOnce) {
        const T* rows[rowsAtOnce];
        for (std::size_t r = 0; r < rowsAtOnce; ++r) {
            rows[r] = columns.row(y + r);
        }
        work(RowCount<rowsAtOnce>{}, rows);
    }
    for (; y < columns.count; ++y) {
        const T* const row = columns.row(y);
        work(RowCount<1>{}, &row);
    }
}

/// Calls `pack(row pointers, row count, x)` for packs of columns, and `single(...)` for those that fill none.
template <class T, std::size_t Lanes, class OfPack, class OfOne>
ORLIX_KERNEL void forPacksOfColumns(const Columns<T>& columns, OfPack pack, OfOne single)
{
    constexpr std::size_t line = 64 / sizeof(T);
    constexpr std::size_t step = Lanes < line ? line : Lanes;
    choosePrefetch(
        columns.width * columns.count * sizeof(T), [&](auto prefetch) __attribute__((always_inline)) {
            forRows(
                columns, [&](auto count, const T* const* rows) __attribute__((always_inline)) {
                    std::size_t x = 0;
                    for (; x + step <= columns.width; x += step) {
                        prefetch.template step<step * sizeof(T), count.value>(rows, x);
#pragma GCC unroll 8
                        for (std::size_t k = 0; k < step; k += Lanes) {
                            pack(rows, count, x + k);
                        }
                    }
                    for (; x < columns.width; ++x) {
                        single(rows, count, x);
                    }
                });
        });
}

/// m = better(x, m) for every pixel x of a column.
template <class T, Domain::domain D, class Better>
ORLIX_KERNEL void reduceColumns(const Columns<T>& columns, T* extremes, Better better)
{
    using P = Pack<T, D>;
    const auto reduceOne = [&](const T* const* rows, auto count, std::size_t x) __attribute__((always_inline))
    {
        T m = extremes[x];
        for (std::size_t r = 0; r < count.value; ++r) {
            m = better(rows[r][x], m);
        }
        extremes[x] = m;
    };
    if constexpr (D == Domain::eIS_Generic) {
        forPacksOfColumns<T, 1>(columns, reduceOne, reduceOne);
    } else {
        forPacksOfColumns<T, lanes<T, D>>(
            columns,
            [&](const T* const* rows, auto count, std::size_t x) __attribute__((always_inline)) {
                auto m = load<P>(extremes + x);
#pragma GCC unroll 8
                for (std::size_t r = 0; r < count.value; ++r) {
                    m = better(load<P>(rows[r] + x), m);
                }
                store(m, extremes + x);
            },
            reduceOne);
    }
}

template <class T, Domain::domain D>
void columnMinimum(Columns<T> columns, T* extremes)
{
    reduceColumns<T, D>(
        columns, extremes, [](auto x, auto m) __attribute__((always_inline)) { return x < m ? x : m; });
}

template <class T, Domain::domain D>
void columnMaximum(Columns<T> columns, T* extremes)
{
    reduceColumns<T, D>(
        columns, extremes, [](auto x, auto m) __attribute__((always_inline)) { return x > m ? x : m; });
}

/// One row after the other.
template <bool Squares, class T, Domain::domain D>
ORLIX_KERNEL void addAsDoubles(const Columns<T>& columns, double* sums, double* squares)
{
    const auto addOne = [&](const T* const* rows, auto count, std::size_t x) __attribute__((always_inline))
    {
        double sum = sums[x];
        double sumSq = Squares ? squares[x] : 0;
        for (std::size_t r = 0; r < count.value; ++r) {
            const double v = toDouble(rows[r][x]);
            sum += v;
            sumSq += v * v;
        }
        sums[x] = sum;
        if constexpr (Squares) {
            squares[x] = sumSq;
        }
    };
    if constexpr (D == Domain::eIS_Generic || sizeof(T) < 4) {
        forPacksOfColumns<T, 1>(columns, addOne, addOne);
    } else {
        using P = Pack<double, D>;
        forPacksOfColumns<T, lanes<double, D>>(
            columns,
            [&](const T* const* rows, auto count, std::size_t x) __attribute__((always_inline)) {
                P sum = load<P>(sums + x);
                P sumSq{};
                if constexpr (Squares) {
                    sumSq = load<P>(squares + x);
                }
#pragma GCC unroll 8
                for (std::size_t r = 0; r < count.value; ++r) {
                    P v;
                    if constexpr (isFloat<T>) {
                        v = loadAsDoubles<D>(rows[r] + x);
                    } else {
                        v = loadIntegersAsDoubles<D>(rows[r] + x);
                    }
                    sum += v;
                    sumSq += v * v;
                }
                store(sum, sums + x);
                if constexpr (Squares) {
                    store(sumSq, squares + x);
                }
            },
            addOne);
    }
}

/// Sums of numbers of n bits, two to a lane of 2 n: `both` adds up lower + 2^n upper and wraps, but `upper` tells how
/// much of it were the upper ones. Good for 2^n of them.
template <class Lane, Domain::domain D>
struct PairSums
{
    using Lanes = Pack<Lane, D>;
    static constexpr int shift = 4 * sizeof(Lane);

    template <class P>
    ORLIX_KERNEL void add(P x)
    {
        both += (Lanes)x;
        upper += (Lanes)x >> shift;
    }
    ORLIX_KERNEL Lanes lower() const { return both - (upper << shift); }

    Lanes both{};
    Lanes upper{};
};

template <std::size_t Size>
struct PairLane;
template <>
struct PairLane<1>
{
    using Type = std::uint16_t;
};
template <>
struct PairLane<2>
{
    using Type = std::uint32_t;
};

/// The high halves of the products of 16-bit lanes with themselves.
template <Domain::domain D, class P>
ORLIX_KERNEL P squareHigh(P x)
{
    if constexpr (D == Domain::eIS_SSE2) {
        return (P)_mm_mulhi_epu16((__m128i)x, (__m128i)x);
    } else if constexpr (D == Domain::eIS_AVX512) {
        return (P)_mm512_mulhi_epu16((__m512i)x, (__m512i)x);
    } else {
        return (P)_mm256_mulhi_epu16((__m256i)x, (__m256i)x);
    }
}

/// Sums over one pack of columns of unsigned pixels of 8 or 16 bits.
template <class U, Domain::domain D, bool Squares>
struct PackSums
{
    using Sums = PairSums<typename PairLane<sizeof(U)>::Type, D>;
    static constexpr std::size_t rows = std::size_t{1} << (8 * sizeof(U));

    ORLIX_KERNEL void add(Pack<U, D> x)
    {
        sums.add(x);
        if constexpr (Squares && sizeof(U) == 1) {
            using Words = Pack<std::uint16_t, D>;
            const Words even = (Words)x & splat<Words>(std::uint16_t{0xff});
            const Words odd = (Words)x >> 8;
            squares[0].add(even * even);
            squares[1].add(odd * odd);
        } else if constexpr (Squares) {
            squares[0].add(x * x);
            squares[1].add(squareHigh<D>(x));
        }
    }

    /// Adds the sums over `count` rows to those of the columns, whose pixels are x - offset. Every number here is whole
    /// and below 2^53.
    ORLIX_KERNEL void flush(std::size_t count, double offset, double* __restrict to, double* __restrict toSquares) const
    {
        using Lane = typename PairLane<sizeof(U)>::Type;
        constexpr std::size_t pairs = lanes<Lane, D>;
        const auto n = double(count);
        const Sums* const all[] = {&sums, &squares[0], &squares[Squares ? 1 : 0]};
        alignas(64) Lane part[6][pairs]; // lower and upper of each
        for (std::size_t k = 0; k < (Squares ? 3 : 1); ++k) {
            const auto lower = all[k]->lower();
            __builtin_memcpy(part[2 * k], &lower, sizeof part[0]);
            __builtin_memcpy(part[2 * k + 1], &all[k]->upper, sizeof part[0]);
        }
        for (std::size_t i = 0; i < pairs; ++i) {
            const double sum[2] = {toDouble(part[0][i]), toDouble(part[1][i])};
            to[2 * i] += sum[0] - n * offset;
            to[2 * i + 1] += sum[1] - n * offset;
            if constexpr (Squares) {
                // A square of a byte is a pair of bytes itself. That of a word is too long: its low and its high words
                // are summed apart.
                constexpr bool bytes = sizeof(U) == 1;
                const double sumSq[2] = {bytes ? toDouble(part[2][i]) + 256 * toDouble(part[3][i])
                                               : toDouble(part[2][i]) + 65536 * toDouble(part[4][i]),
                                         bytes ? toDouble(part[4][i]) + 256 * toDouble(part[5][i])
                                               : toDouble(part[3][i]) + 65536 * toDouble(part[5][i])};
                toSquares[2 * i] += sumSq[0] - 2 * offset * sum[0] + n * offset * offset;
                toSquares[2 * i + 1] += sumSq[1] - 2 * offset * sum[1] + n * offset * offset;
            }
        }
    }

    Sums sums;
    Sums squares[Squares ? 2 : 1];
};

/// The sums of so many packs of columns, over at most PackSums::rows rows.
template <bool Squares, class T, Domain::domain D>
ORLIX_KERNEL void sumPacks(const Columns<T>& columns, PackSums<Unsigned<T>, D, Squares>* packSums, std::size_t packs)
{
    using U = Unsigned<T>;
    using Sums = PackSums<U, D, Squares>;
    constexpr std::size_t step = lanes<T, D>;
    constexpr std::uint32_t offset = isSigned<T> ? 1u << (8 * sizeof(T) - 1) : 0;
    choosePrefetch(
        packs * packBytes<D> * columns.count, [&](auto prefetch) __attribute__((always_inline)) {
            forRows(
                columns, [&](auto count, const T* const* row) __attribute__((always_inline)) {
                    for (std::size_t k = 0; k < packs; ++k) {
                        prefetch.template step<packBytes<D>, count.value>(row, k * step);
                        Sums s = packSums[k];
#pragma GCC unroll 8
                        for (std::size_t r = 0; r < count.value; ++r) {
                            const auto x = load<Pack<U, D>>(row[r] + k * step);
                            s.add(x ^ splat<Pack<U, D>>(U(offset)));
                        }
                        packSums[k] = s;
                    }
                });
        });
}

template <bool Squares, class T, Domain::domain D>
void addInPacks(Columns<T> columns, double* sums, double* squares)
{
    using Sums = PackSums<Unsigned<T>, D, Squares>;
    constexpr std::size_t step = lanes<T, D>;
    constexpr std::size_t tile = 1024 / step;
    constexpr double offset = isSigned<T> ? 1u << (8 * sizeof(T) - 1) : 0;
    const std::size_t packs = columns.width / step;
    Sums packSums[tile];
    for (std::size_t first = 0; first < packs; first += tile) {
        const std::size_t size = packs - first < tile ? packs - first : tile;
        for (std::size_t y = 0; y < columns.count;) {
            const std::size_t rows = columns.count - y < Sums::rows ? columns.count - y : Sums::rows;
            for (std::size_t k = 0; k < size; ++k) {
                packSums[k] = Sums{};
            }
            sumPacks<Squares, T, D>(columns.part(first * step, size * step, y, rows), packSums, size);
            for (std::size_t k = 0; k < size; ++k) {
                const std::size_t x = (first + k) * step;
                packSums[k].flush(rows, offset, sums + x, Squares ? squares + x : nullptr);
            }
            y += rows;
        }
    }
    const std::size_t done = packs * step;
    addAsDoubles<Squares, T, D>(columns.part(done, columns.width - done, 0, columns.count), sums + done,
                                Squares ? squares + done : nullptr);
}

template <bool Squares, class T, Domain::domain D>
ORLIX_KERNEL void addColumns(Columns<T> columns, double* sums, double* squares)
{
    if constexpr (D != Domain::eIS_Generic && sizeof(T) < 4) {
        addInPacks<Squares, T, D>(columns, sums, squares);
    } else {
        addAsDoubles<Squares, T, D>(columns, sums, squares);
    }
}

template <class T, Domain::domain D>
void columnSum(Columns<T> columns, double* sums)
{
    addColumns<false, T, D>(columns, sums, nullptr);
}

template <class T, Domain::domain D>
void columnSquares(Columns<T> columns, double* sums, double* sumsOfSquares)
{
    addColumns<true, T, D>(columns, sums, sumsOfSquares);
}

/// A row of so many columns, or of fewer, which are then followed by anything.
template <std::size_t Width, class T>
ORLIX_KERNEL const T* loadRow(const Columns<T>& columns, std::size_t i, T (&padded)[Width])
{
    if (columns.width == Width) {
        return columns.row(i);
    }
    __builtin_memcpy(padded, columns.row(i), columns.width * sizeof(T));
    return padded;
}

/// So few pixels that comparing them is faster than counting.
constexpr std::size_t fewPixels = 32;

/// Columns of few pixels, one pack of columns or fewer.
template <class T, Domain::domain D>
ORLIX_KERNEL void medianOfFew(const Columns<T>& columns, T* medians)
{
    Pack<Key<T>, D> keys[fewPixels];
    T padded[lanes<T, D>] = {};
    for (std::size_t i = 0; i < columns.count; ++i) {
        keys[i] = toKeys<T>(load<Pack<T, D>>(loadRow(columns, i, padded)));
    }
    const auto pixels = toPixels<T>(selectAmongFew(keys, columns.count, columns.count / 2));
    __builtin_memcpy(medians, &pixels, columns.width * sizeof(T));
}

/// How many columns of many pixels are worked at: at least those of a cache line.
template <class T, Domain::domain D>
struct ManyPixels
{
    using Group = KeyGroup<Key<T>, D>;
    static constexpr std::size_t groups = sizeof(T) * packBytes<D> < 64 ? 64 / (sizeof(T) * packBytes<D>) : 1;
    static constexpr std::size_t width = groups * packBytes<D>;
    static constexpr std::size_t scratchBytes = groups * sizeof(Group) + packBytes<D>;
};

template <class T, Domain::domain D>
ORLIX_KERNEL void medianOfMany(const Columns<T>& columns, unsigned char* scratch, T* medians)
{
    using Many = ManyPixels<T, D>;
    using Group = typename Many::Group;
    auto* const groups = reinterpret_cast<Group*>(scratch);
    T padded[Many::width] = {};
    for (std::size_t i = 0; i < columns.count; ++i) {
        const T* row = loadRow(columns, i, padded);
        for (std::size_t g = 0; g < Many::groups; ++g) {
            for (auto& keys : groups[g * columns.count + i].keys) {
                keys = toKeys<T>(load<Pack<T, D>>(row));
                row += lanes<T, D>;
            }
        }
    }
    Pack<T, D> pixels[Many::groups * Group::packs];
    for (std::size_t g = 0; g < Many::groups; ++g) {
        const Group middle = selectKeys<Key<T>, D, Ranking::ofLanes>(
            groups + g * columns.count, columns.count, columns.count / 2,
            reinterpret_cast<Pack<signed char, D>*>(groups + Many::groups * columns.count));
        for (std::size_t k = 0; k < Group::packs; ++k) {
            pixels[g * Group::packs + k] = toPixels<T>(middle.keys[k]);
        }
    }
    __builtin_memcpy(medians, pixels, columns.width * sizeof(T));
}

/// So few columns that each is selected by itself, as a row.
constexpr std::size_t fewColumns = 8;

template <class T, Domain::domain D>
std::size_t columnScratchBytes(std::size_t width, std::size_t count)
{
    if (count <= fewPixels) {
        return 0;
    }
    const std::size_t asRow = 64 + count * sizeof(T) + rowScratchBytes<T>(count);
    const std::size_t together = count * ManyPixels<T, D>::scratchBytes + 64;
    return width <= fewColumns || asRow > together ? asRow : together;
}

template <class T, Domain::domain D>
void columnMedian(Columns<T> columns, unsigned char* scratch, T* medians)
{
    scratch = alignScratch(scratch);
    const bool few = columns.count <= fewPixels;
    const std::size_t step = few ? lanes<T, D> : ManyPixels<T, D>::width;
    for (std::size_t x = 0; x < columns.width; x += step) {
        const std::size_t width = columns.width - x < step ? columns.width - x : step;
        const Columns<T> some = columns.part(x, width, 0, columns.count);
        if (few) {
            medianOfFew<T, D>(some, medians + x);
        } else if (width > fewColumns) {
            medianOfMany<T, D>(some, scratch, medians + x);
        } else {
            auto* const row = reinterpret_cast<T*>(scratch);
            for (std::size_t k = 0; k < width; ++k) {
                for (std::size_t i = 0; i < some.count; ++i) {
                    row[i] = some.row(i)[k];
                }
                medians[x + k] =
                    medianOfRow<T, D>({row, some.count}, reinterpret_cast<unsigned char*>(row + some.count));
            }
        }
    }
}

/// One column after the other.
template <class T>
void columnMedianGeneric(Columns<T> columns, unsigned char* scratch, T* medians)
{
    auto* const keys = reinterpret_cast<Key<T>*>(scratch);
    auto* const middle = keys + columns.count / 2;
    for (std::size_t x = 0; x < columns.width; ++x) {
        for (std::size_t i = 0; i < columns.count; ++i) {
            keys[i] = toKey(columns.row(i)[x]);
        }
        std::nth_element(keys, middle, keys + columns.count);
        medians[x] = toPixel<T>(*middle);
    }
}

template <class T>
std::size_t scratchBytesGeneric(std::size_t, std::size_t count)
{
    return count * sizeof(T);
}

template <Domain::domain D>
constexpr ColumnKernels columnKernels = makeKernels<ColumnKernel, D>([]<class T>(std::type_identity<T>) {
    ColumnKernel<T> kernel{&columnSum<T, D>, &columnSquares<T, D>, &columnMinimum<T, D>, &columnMaximum<T, D>, {}, {}};
    if constexpr (D == Domain::eIS_Generic) {
        kernel.median = &columnMedianGeneric<T>;
        kernel.scratchBytes = &scratchBytesGeneric<T>;
    } else if constexpr (D != Domain::eIS_AVX) {
        kernel.median = &columnMedian<T, D>;
        kernel.scratchBytes = &columnScratchBytes<T, D>;
    }
    return kernel;
});

} // namespace

} // namespace orlix::imaproc::glbmsr
