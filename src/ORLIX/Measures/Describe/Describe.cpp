#include <ORLIX/Measures/Describe.hpp>

#include <ORLIX/Measures/Counts.hpp>
#include <ORLIX/Measures/Exact.hpp>
#include <ORLIX/Measures/Figures.hpp>
#include <ORLIX/Measures/KeyIndex.hpp>
#include <ORLIX/Measures/Pieces.hpp>
#include <ORLIX/Measures/StateImplementation.hpp>

#include <framework/process/MeasureList.hpp>

#include <cmath>
#include <limits>

namespace orlix::measures
{

using image::eImageBufferType;

std::span<const char* const> namesOf(NanPolicy)
{
    static constexpr const char* names[] = {"omit", "propagate", "fail"};
    return names;
}
std::span<const char* const> namesOf(PercentileDefinition)
{
    static constexpr const char* names[] = {"linear", "lower", "higher", "nearest"};
    return names;
}
std::span<const char* const> namesOf(EntropyPolicy)
{
    static constexpr const char* names[] = {"auto", "always", "never"};
    return names;
}

void DescribeOptions::visitFields(data::FieldVisitor& field)
{
    field({.name = "per", .help = "what one result covers"}, per);
    field({.name = "nan", .help = "what NaN pixels do", .option = "nan"}, nan);
    field({.name = "percentiles",
           .help = "which percentiles; none: no median either",
           .unit = "percent",
           .option = "percentiles",
           .lowest = 0,
           .highest = 100},
          percentiles);
    field({.name = "definition", .help = "of a percentile between two pixels", .option = "definition"}, definition);
    field({.name = "ddof",
           .help = "the variance is the sum of squared deviations over NbPixels less this",
           .option = "ddof",
           .lowest = 0,
           .highest = 1},
          ddof);
    field({.name = "moments", .help = "4: skewness and kurtosis, too", .option = "moments", .lowest = 2, .highest = 4},
          moments);
    field({.name = "saturated", .help = "count pixels at the limits of their type", .option = "saturated"}, saturated);
    field({.name = "entropy",
           .help = "auto: of integer pixels of 8 and 16 bits; always: of 32 bits, too",
           .option = "entropy"},
          entropy);
}

void Description::visitFields(data::FieldVisitor& field)
{
    static constexpr const char* axes[] = {"x", "y", "z", "c", "t"};
    static constexpr const char* percentile[] = {"percent", "value"};
    field({"NbPixels", "number of the pixels that are measured: inside the mask, and no NaN", "pixels"}, NbPixels);
    field({"NbNaN", "number of NaN pixels", "pixels"}, NbNaN);
    field({"NbPositiveInfinity", "number of pixels that are infinity", "pixels"}, NbPositiveInfinity);
    field({"NbNegativeInfinity", "number of pixels that are minus infinity", "pixels"}, NbNegativeInfinity);
    field({"NbSaturated", "number of integer pixels at the limits of their type", "pixels"}, NbSaturated);
    field({"Sum", "sum of the pixels", "grey levels"}, Sum);
    field({"Mean", "mean of the pixels", "grey levels"}, Mean);
    field({"Variance", "mean squared deviation from the mean", "grey levels squared"}, Variance);
    field({"StdDev", "standard deviation: the root of the variance", "grey levels"}, StdDev);
    field({"Min", "lowest pixel", "grey levels"}, Min);
    field({.name = "MinPosition", .help = "where the first lowest pixel lies", .columnNames = axes}, MinPosition);
    field({"Max", "highest pixel", "grey levels"}, Max);
    field({.name = "MaxPosition", .help = "where the first highest pixel lies", .columnNames = axes}, MaxPosition);
    field({"Median", "the middle pixel of all in their order", "grey levels"}, Median);
    field({.name = "Percentiles",
           .help = "the pixels that so many percent of all are not above",
           .unit = "grey levels",
           .columns = 2,
           .columnNames = percentile},
          Percentiles);
    field({"Skewness", "the third standardised moment"}, Skewness);
    field({"Kurtosis", "excess kurtosis: the fourth standardised moment, less 3"}, Kurtosis);
    field({"Entropy", "Shannon entropy of the pixel values", "nats"}, Entropy);
}

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

bool isFloatType(eImageBufferType type)
{
    return type == eImageBufferType::eIBT_Float32;
}
bool isSmall(eImageBufferType type)
{
    return image::getPixelSize(type) < 4;
}

/// Sums of the third and fourth powers: of float pixels in units of 2^-447 and 2^-596, of others in ones.
struct PowerSums
{
    Words<14> cubes{};
    Words<19> fourths{};

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(cubes.word), stream(fourths.word);
    }
};

/// What the options ask for of pixels of a type.
struct Wanted
{
    bool counts = false;    ///< by value, of 8 and 16 bits
    bool ranks = false;     ///< counts by upper halves, and passes after them, of 32 bits
    bool values = false;    ///< counts by value, of 32-bit integers
    bool powers = false;    ///< sums of them, where there are no counts to get them from
    bool saturated = false; ///< to be counted by the kernel

    Wanted(const DescribeOptions& options, eImageBufferType type)
    {
        const bool hasEntropy = options.entropy != EntropyPolicy::Never && isSmall(type);
        counts = isSmall(type) && (!options.percentiles.empty() || options.moments > 2 || hasEntropy);
        ranks = !isSmall(type) && !options.percentiles.empty();
        values = options.entropy == EntropyPolicy::Always && !isSmall(type) && !isFloatType(type);
        powers = options.moments > 2 && !isSmall(type);
        saturated = options.saturated && !counts && !isFloatType(type);
    }
};

/// Pixels as integers of a unit, of which they are so many: float pixels of 2^-149, less a shift to the left.
struct Digits
{
    std::int64_t value;
    unsigned shift;
};
template <class T>
Digits digitsOf(T pixel)
{
    if constexpr (std::is_same_v<T, float>) {
        const auto bits = std::bit_cast<std::uint32_t>(pixel);
        const std::uint32_t exponent = bits >> 23 & 0xff;
        const std::int64_t digits = (bits & 0x7fffff) | (exponent != 0 ? 0x800000 : 0);
        return {pixel < 0 ? -digits : digits, exponent != 0 ? exponent - 1 : 0};
    } else {
        return {pixel, 0};
    }
}

/// The places in the order of n pixels that a percentile lies between.
struct Place
{
    std::uint64_t lower;
    std::uint64_t upper;
    double part; ///< of the way between them

    /// In the order of operations that NumPy has.
    Place(double percent, std::uint64_t n, PercentileDefinition definition)
    {
        const double last = static_cast<double>(n - 1);
        double at = last * (percent / 100);
        switch (definition) {
        case PercentileDefinition::Lower:
            at = std::floor(at);
            break;
        case PercentileDefinition::Higher:
            at = std::ceil(at);
            break;
        case PercentileDefinition::Nearest:
            at = std::nearbyint(at);
            break;
        default:
            break;
        }
        lower = std::min(static_cast<std::uint64_t>(at), n - 1);
        upper = std::min(lower + 1, n - 1);
        part = at - static_cast<double>(lower);
    }
};

double interpolate(double a, double b, double part)
{
    if (part == 0 || a == b) {
        return a;
    }
    const double span = b - a;
    return part >= 0.5 ? b - span * (1 - part) : a + span * part;
}

/// The places that the options ask for, among n pixels.
std::vector<std::uint64_t> listRanks(const DescribeOptions& options, std::uint64_t n)
{
    std::vector<std::uint64_t> ranks;
    if (n == 0) {
        return ranks;
    }
    const auto add = [&](const Place& place) {
        ranks.push_back(place.lower);
        if (place.part != 0) {
            ranks.push_back(place.upper);
        }
    };
    add(Place{50, n, PercentileDefinition::Linear});
    for (const double percent : options.percentiles) {
        add(Place{percent, n, options.definition});
    }
    std::sort(ranks.begin(), ranks.end());
    ranks.erase(std::unique(ranks.begin(), ranks.end()), ranks.end());
    return ranks;
}

double getEntropy(const ValueCounts& counts, std::uint64_t n)
{
    double sum = 0;
    for (const ValueCounts::Entry& entry : counts.getEntries()) {
        const auto count = static_cast<double>(entry.count);
        sum += count * std::log(count);
    }
    const auto all = static_cast<double>(n);
    return std::max(0.0, std::log(all) - sum / all);
}

struct DescribeModel
{
    using Options = DescribeOptions;
    using Result = Description;

    struct Part
    {
        Figures figures;
        PowerSums powers;
        ValueCounts counts; ///< by value, or by upper half
        ValueCounts values;
        RankSearch search;

        std::shared_ptr<ValueCounter> counter;
        std::shared_ptr<KeyCounter> valueCounter;

        template <class Stream>
        void pass(Stream& stream)
        {
            stream(figures), stream(powers), stream(counts), stream(values), stream(search);
        }
    };

    static const StateMeasure& getMeasure()
    {
        static const StateMeasure measure{
            .name = "Description",
            .verb = "describe",
            .help = "numbers that are exact: sum, mean, deviation, extremes and where, percentiles, moments",
            .remark = "Sum, mean, variance and deviation are the doubles nearest to the exact values.",
            .inputs = {{"Image"}},
            .takesMask = true,
            .entry = stateEntry<DescribeModel>,
            .passReason = "percentiles of 32-bit pixels"};
        return measure;
    }

    static void check(const Options& options, const PixelTypeList&)
    {
        const auto fail = [](const std::string& text) { throw MeasureException{text, ORLIX_HERE}; };
        if (options.ddof > 1) {
            fail("ddof is 0 or 1, not " + std::to_string(options.ddof));
        }
        if (options.moments != 2 && options.moments != 4) {
            fail("moments is 2 or 4, not " + std::to_string(options.moments));
        }
        constexpr std::size_t most = 1001;
        if (options.percentiles.size() > most) {
            fail("there are more than " + std::to_string(most) + " percentiles");
        }
        for (const double percent : options.percentiles) {
            if (!(percent >= 0 && percent <= 100)) {
                fail("a percentile lies from 0 to 100, not at " + std::to_string(percent));
            }
        }
    }

    static void consume(const Options& options, const Piece& piece, Part& part)
    {
        const eImageBufferType type = piece.types[0];
        if (part.search.nbKnownBits() != 0) {
            part.search.add(piece);
            return;
        }
        const Wanted wanted{options, type};
        part.figures.add(piece, wanted.saturated);
        if (wanted.powers) {
            withPixelType(type, [&]<class T>(std::type_identity<T>) { addPowers<T>(piece, part.powers); });
        }
        if ((wanted.counts || wanted.ranks) && !std::isnan(part.figures.min.value)) {
            if (!part.counter) {
                part.counter = std::make_shared<ValueCounter>(type);
            }
            part.counter->add(piece, part.figures.min.value, part.figures.max.value);
        }
        if (wanted.values) {
            if (!part.valueCounter) {
                part.valueCounter = std::make_shared<KeyCounter>();
            }
            part.valueCounter->add(piece);
        }
    }

    static void settle(Part& part)
    {
        if (part.counter) {
            part.counts.merge(part.counter->take());
            part.counter.reset();
        }
        if (part.valueCounter) {
            part.values.merge(part.valueCounter->take());
            part.valueCounter.reset();
        }
        part.search.settle();
    }

    static void combine(const Options&, Part& into, Part from)
    {
        if (into.search.nbKnownBits() != 0) {
            into.search.merge(std::move(from.search));
            return;
        }
        into.figures.combine(from.figures);
        imaproc::add(into.powers.cubes, from.powers.cubes);
        imaproc::add(into.powers.fourths, from.powers.fourths);
        into.counts.merge(std::move(from.counts));
        into.values.merge(std::move(from.values));
    }

    static unsigned countPasses(const Options& options, const PixelTypeList& types)
    {
        constexpr unsigned most = 3; // 16 bits, and the others in one step or in two
        return Wanted{options, types[0]}.ranks ? most : 1;
    }

    static bool needsPass(const Options& options, const PixelTypeList& types, const Part& part)
    {
        return !types.empty() && Wanted{options, types[0]}.ranks && part.figures.nbNumbers != 0 &&
               part.figures.min.value != part.figures.max.value && !part.search.isComplete();
    }

    static void nextPass(const Options& options, const PixelTypeList&, Part& part)
    {
        const std::vector<std::uint64_t> ranks = listRanks(options, part.figures.nbNumbers);
        if (part.search.nbKnownBits() == 0) {
            part.search.start(part.counts, ranks);
        } else {
            part.search.next(ranks);
        }
    }

    static Part fork(const Part& part)
    {
        Part empty;
        empty.search = part.search.fork();
        return empty;
    }

    static bool isAlike(const Part& a, const Part& b) { return a.search.isAlike(b.search); }

    static Result finish(const Options& options, const PixelTypeList& types, const Part& part, const ResultPlace& place)
    {
        if (options.nan == NanPolicy::Fail && part.figures.nbNaN != 0) {
            throw MeasureException{std::to_string(part.figures.nbNaN) + " pixels are NaN", ORLIX_HERE};
        }
        const auto type = types.empty() ? eImageBufferType::eIBT_UInt8 : types[0];
        Result result;
        result.NbPixels = part.figures.nbNumbers;
        result.NbNaN = part.figures.nbNaN;
        result.NbPositiveInfinity = part.figures.nbPositiveInfinity;
        result.NbNegativeInfinity = part.figures.nbNegativeInfinity;
        result.NbSaturated = part.figures.nbSaturated;
        finishMoments(options, type, part, result);
        result.Min = part.figures.min.value;
        result.Max = part.figures.max.value;
        if (part.figures.nbNumbers != 0) {
            result.MinPosition = place.list(part.figures.min.at);
            result.MaxPosition = place.list(part.figures.max.at);
        }
        finishCounts(options, type, part, result);
        if (options.nan == NanPolicy::Propagate && part.figures.nbNaN != 0) {
            propagate(result);
        }
        return result;
    }

    static std::vector<std::string> getNotes(const Result& result)
    {
        std::vector<std::string> notes;
        if (result.NbNaN != 0) {
            notes.push_back("pixels that are NaN: " + std::to_string(result.NbNaN));
        }
        if (result.NbPixels == 0) {
            notes.emplace_back("no pixel was measured: there is no mean, minimum or maximum");
        }
        return notes;
    }

private:
    template <class T>
    static void addPowers(const Piece& piece, PowerSums& sums)
    {
        for (std::size_t i = 0; i < piece.nbRuns(); ++i) {
            const T* const pixels = piece.images[0].run<T>(i, piece.runSize);
            const std::uint8_t* const mask = piece.maskRun(i);
            for (std::size_t k = 0; k < piece.runSize; ++k) {
                if ((mask == nullptr || mask[k] != 0) && std::isfinite(static_cast<double>(pixels[k]))) {
                    addPower(digitsOf(pixels[k]), 1, sums);
                }
            }
        }
    }
    static void addPower(const Digits& digits, std::uint64_t count, PowerSums& sums)
    {
        const Int128 square = Int128{digits.value} * digits.value; // up to 2^64
        addProduct(sums.cubes, square * digits.value, count, 3 * digits.shift);
        const auto low = static_cast<std::uint64_t>(square & 0xffffffff);
        addProduct(sums.fourths, square * low, count, 4 * digits.shift);
        addProduct(sums.fourths, square * (square >> 32), count, 4 * digits.shift + 32);
    }
    /// sum += value * count * 2^shift, where |value| < 2^97
    template <std::size_t N>
    static void addProduct(Words<N>& sum, Int128 value, std::uint64_t count, unsigned shift)
    {
        constexpr unsigned step = 24;
        for (; count != 0; count >>= step, shift += step) {
            addShifted(sum, value * static_cast<std::int64_t>(count & ((1u << step) - 1)), shift);
        }
    }

    static void finishMoments(const Options& options, eImageBufferType type, const Part& part, Result& result)
    {
        const std::uint64_t nbInfinite = part.figures.nbPositiveInfinity + part.figures.nbNegativeInfinity;
        const bool isFourth = options.moments > 2;
        if (part.figures.nbNumbers == 0 || nbInfinite != 0) {
            const bool isSigned = part.figures.nbNumbers != 0 && nbInfinite == part.figures.nbPositiveInfinity;
            result.Sum = part.figures.nbNumbers == 0                     ? 0
                         : isSigned                                      ? infinity
                         : nbInfinite == part.figures.nbNegativeInfinity ? -infinity
                                                                         : nan;
            result.Mean = part.figures.nbNumbers == 0 ? nan : result.Sum;
            result.Variance = result.StdDev = nan;
            if (isFourth) {
                result.Skewness = result.Kurtosis = nan;
            }
            return;
        }
        const int unit = Figures::getUnit(type);
        const Integer n = part.figures.nbNumbers;
        const Integer sum = toInteger(part.figures.sum);
        const Integer squares = toInteger(part.figures.squares);
        const Integer deviations = n * squares - sum * sum; // n^2 times the variance
        const Integer divisor = n * (n - options.ddof);
        result.Sum = roundQuotient(sum, 1, unit);
        result.Mean = roundQuotient(sum, n, unit);
        result.Variance = roundQuotient(deviations, divisor, 2 * unit);
        result.StdDev = roundRoot(deviations, divisor, 2 * unit);
        if (isFourth) {
            PowerSums powers = part.powers;
            if (isSmall(type)) {
                for (const ValueCounts::Entry& entry : part.counts.getEntries()) {
                    addPower({static_cast<std::int64_t>(valueOf(entry.key, type)), 0}, entry.count, powers);
                }
            }
            const Integer cubes = toInteger(powers.cubes);
            const Integer fourths = toInteger(powers.fourths);
            // n^3 and n^4 times the central moments; units cancel.
            const Integer third = n * n * cubes - 3 * n * sum * squares + 2 * sum * sum * sum;
            const Integer fourth =
                n * n * n * fourths - 4 * n * n * sum * cubes + 6 * n * sum * sum * squares - 3 * sum * sum * sum * sum;
            const double skewness = roundRoot(third * third, deviations * deviations * deviations);
            result.Skewness = third < 0 ? -skewness : skewness;
            result.Kurtosis = roundQuotient(fourth - 3 * deviations * deviations, deviations * deviations);
        }
    }

    static void finishCounts(const Options& options, eImageBufferType type, const Part& part, Result& result)
    {
        const Wanted wanted{options, type};
        if (!options.percentiles.empty()) {
            RankSearch search = part.search;
            if (search.nbKnownBits() != 0) {
                search.next(listRanks(options, part.figures.nbNumbers));
            }
            const auto pixelOf = [&](std::uint64_t rank) {
                if (part.figures.min.value == part.figures.max.value) {
                    return part.figures.min.value;
                }
                if (wanted.ranks) {
                    return valueOf(search.find(rank), type);
                }
                std::uint64_t below = 0;
                for (const ValueCounts::Entry& entry : part.counts.getEntries()) {
                    below += entry.count;
                    if (rank < below) {
                        return valueOf(entry.key, type);
                    }
                }
                throw MeasureException{"the counts of the state are not those of its pixels", ORLIX_HERE};
            };
            const auto percentile = [&](double percent, PercentileDefinition definition) {
                if (part.figures.nbNumbers == 0) {
                    return nan;
                }
                const Place at{percent, part.figures.nbNumbers, definition};
                const double lower = pixelOf(at.lower);
                return at.part == 0 ? lower : interpolate(lower, pixelOf(at.upper), at.part);
            };
            result.Median = percentile(50, PercentileDefinition::Linear);
            for (const double percent : options.percentiles) {
                result.Percentiles.insert(result.Percentiles.end(), {percent, percentile(percent, options.definition)});
            }
        }
        if (wanted.counts && options.saturated) {
            const std::uint32_t last = image::getPixelSize(type) == 1 ? 0xff : 0xffff;
            for (const ValueCounts::Entry& entry : part.counts.getEntries()) {
                result.NbSaturated += entry.key == 0 || entry.key == last ? entry.count : 0;
            }
        }
        if (options.entropy != EntropyPolicy::Never && (isSmall(type) || wanted.values)) {
            result.Entropy = part.figures.nbNumbers == 0
                                 ? nan
                                 : getEntropy(isSmall(type) ? part.counts : part.values, part.figures.nbNumbers);
        }
    }

    static void propagate(Result& result)
    {
        for (double* const figure :
             {&result.Sum, &result.Mean, &result.Variance, &result.StdDev, &result.Min, &result.Max}) {
            *figure = nan;
        }
        for (std::optional<double>* const figure : {&result.Median, &result.Skewness, &result.Kurtosis}) {
            *figure = figure->has_value() ? std::optional{nan} : std::nullopt;
        }
        for (std::size_t i = 1; i < result.Percentiles.size(); i += 2) {
            result.Percentiles[i] = nan;
        }
        result.MinPosition.clear();
        result.MaxPosition.clear();
    }
};

const MeasureRegistration registration{&DescribeModel::getMeasure()};

} // namespace

template <>
struct ModelOf<Describe>
{
    using Type = DescribeModel;
};

template class State<Describe>;

Results<Description> describe(const ImageView& image, const DescribeOptions& options)
{
    return measure<Describe>(options, {image}, options.mask);
}

} // namespace orlix::measures
