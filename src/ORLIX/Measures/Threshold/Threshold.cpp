#include <ORLIX/Measures/Threshold.hpp>

#include <ORLIX/Measures/Bins.hpp>
#include <ORLIX/Measures/Counts.hpp>
#include <ORLIX/Measures/Exact.hpp>
#include <ORLIX/Measures/Figures.hpp>
#include <ORLIX/Measures/Pieces.hpp>
#include <ORLIX/Measures/StateImplementation.hpp>

#include <framework/process/MeasureList.hpp>

#include <cmath>
#include <limits>
#include <numeric>

namespace orlix::measures
{

using image::eImageBufferType;

std::span<const char* const> namesOf(ThresholdMethod)
{
    static constexpr const char* names[] = {"otsu", "triangle", "isodata", "li", "yen", "minerror", "mean"};
    return names;
}

void ThresholdOptions::visitFields(data::FieldVisitor& field)
{
    field({.name = "per", .help = "what one result covers"}, per);
    field({.name = "method", .help = "how the threshold is found", .option = "method"}, method);
}

void FoundThreshold::visitFields(data::FieldVisitor& field)
{
    field({"Method", "how the threshold was found"}, Method);
    field({"Threshold", "pixels above it are foreground", "grey levels"}, Threshold);
}

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr unsigned nbFineBins = 65536;
constexpr unsigned nbBins = 256;

/// How many pixels are about a grey level, from the lowest that occurs to the highest; there are two, at least.
struct LevelCounts
{
    std::vector<double> counts;
    std::vector<double> levels; ///< in the middle of classes
    std::vector<double> lowest; ///< of a class
    double width = 1;           ///< between two levels

    std::size_t size() const { return counts.size(); }
};

/// Sums from the start up to each element.
std::vector<double> accumulate(const std::vector<double>& values)
{
    std::vector<double> sums(values.size());
    std::partial_sum(values.begin(), values.end(), sums.begin());
    return sums;
}

/// Counts times levels, each to a power.
std::vector<double> weigh(const LevelCounts& h, int power)
{
    std::vector<double> weighted(h.size());
    for (std::size_t i = 0; i < h.size(); ++i) {
        weighted[i] = h.counts[i] * std::pow(h.levels[i] - h.levels[0], power);
    }
    return weighted;
}

/// The level before the last for which a criterion is greatest; NaN values are passed over.
template <class Criterion>
double findGreatest(const LevelCounts& h, Criterion criterion)
{
    double best = -std::numeric_limits<double>::infinity();
    double level = nan;
    for (std::size_t i = 0; i + 1 < h.size(); ++i) {
        if (const double value = criterion(i); value > best) {
            best = value;
            level = h.levels[i];
        }
    }
    return level;
}

double findOtsu(const LevelCounts& h)
{
    const std::vector<double> below = accumulate(h.counts);
    const std::vector<double> sums = accumulate(weigh(h, 1));
    return findGreatest(h, [&](std::size_t i) {
        const double above = below.back() - below[i];
        const double apart = sums[i] / below[i] - (sums.back() - sums[i]) / above;
        return below[i] * above * apart * apart;
    });
}

double findTriangle(const LevelCounts& h)
{
    std::vector<double> counts = h.counts;
    std::size_t peak = static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
    const std::size_t last = counts.size() - 1;
    const bool isFlipped = peak < last - peak; // the longer tail is on the left then
    if (isFlipped) {
        std::reverse(counts.begin(), counts.end());
        peak = last - peak;
    }
    const double height = counts[peak];
    const auto width = static_cast<double>(peak);
    const double norm = std::sqrt(height * height + width * width);
    std::size_t best = 0;
    double farthest = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < peak; ++i) {
        const double distance = height / norm * static_cast<double>(i) - width / norm * counts[i];
        if (distance > farthest) {
            farthest = distance;
            best = i;
        }
    }
    return h.levels[isFlipped ? last - best : best];
}

double findIsodata(const LevelCounts& h)
{
    const std::vector<double> below = accumulate(h.counts);
    const std::vector<double> sums = accumulate(weigh(h, 1));
    for (std::size_t i = 0; i + 1 < h.size(); ++i) {
        const double lower = sums[i] / below[i];
        const double higher = (sums.back() - sums[i]) / (below.back() - below[i]);
        const double distance = (lower + higher) / 2 - (h.levels[i] - h.levels[0]);
        if (distance >= 0 && distance < h.width) {
            return h.levels[i];
        }
    }
    return nan;
}

double findLi(const LevelCounts& h, double mean)
{
    const double lowest = h.lowest[0];
    const double tolerance = h.width / 2;
    double next = mean - lowest;
    double current = -2 * tolerance;
    while (std::fabs(next - current) > tolerance) {
        current = next;
        double sums[2] = {};
        double counts[2] = {};
        for (std::size_t i = 0; i < h.size(); ++i) {
            const bool isAbove = h.lowest[i] - lowest > current; // a pixel that is the threshold is not
            sums[isAbove] += h.counts[i] * (h.levels[i] - lowest);
            counts[isAbove] += h.counts[i];
        }
        const double below = sums[0] / counts[0];
        const double above = sums[1] / counts[1];
        if (below == 0 || counts[1] == 0) {
            break;
        }
        next = (below - above) / (std::log(below) - std::log(above));
    }
    return next + lowest;
}

double findYen(const LevelCounts& h)
{
    const double n = std::accumulate(h.counts.begin(), h.counts.end(), 0.0);
    std::vector<double> shares(h.size());
    std::vector<double> squares(h.size());
    for (std::size_t i = 0; i < h.size(); ++i) {
        shares[i] = h.counts[i] / n;
        squares[i] = shares[i] * shares[i];
    }
    const std::vector<double> below = accumulate(shares);
    const std::vector<double> squaresBelow = accumulate(squares);
    std::reverse(squares.begin(), squares.end());
    const std::vector<double> squaresAbove = accumulate(squares);
    return findGreatest(h, [&](std::size_t i) {
        const double share = below[i] * (1 - below[i]);
        return std::log(share * share / (squaresBelow[i] * squaresAbove[h.size() - 2 - i]));
    });
}

/// J. Kittler, J. Illingworth, Minimum error thresholding, Pattern Recognition 19 (1986), equation 15, with its sign
/// changed.
double findMinimumError(const LevelCounts& h)
{
    const std::vector<double> below = accumulate(h.counts);
    const std::vector<double> sums = accumulate(weigh(h, 1));
    const std::vector<double> squares = accumulate(weigh(h, 2));
    const auto part = [&](double n, double sum, double square) {
        const double share = n / below.back();
        const double variance = square / n - sum / n * (sum / n);
        // A side of one level has no variance, and no error.
        return variance > 0 && share > 0 ? share * std::log(variance) / 2 - share * std::log(share) : nan;
    };
    return findGreatest(h, [&](std::size_t i) {
        return -(part(below[i], sums[i], squares[i]) +
                 part(below.back() - below[i], sums.back() - sums[i], squares.back() - squares[i]));
    });
}

struct ThresholdModel
{
    using Options = ThresholdOptions;
    using Result = FoundThreshold;

    struct Part
    {
        Figures figures;
        bool isSecondPass = false;
        ValueCounts counts; ///< by value, or by fine bins

        std::shared_ptr<ValueCounter> counter;
        std::shared_ptr<Bins> bins;
        std::vector<std::uint64_t> fine;

        template <class Stream>
        void pass(Stream& stream)
        {
            stream(figures), stream(isSecondPass), stream(counts);
        }
    };

    static const StateMeasure& getMeasure()
    {
        static const StateMeasure measure{
            .name = "Threshold",
            .verb = "threshold",
            .help = "a grey level that parts foreground from background",
            .remark = "Pixels above the threshold are foreground. Float pixels are sorted into 256 classes first.",
            .inputs = {{"Image"}},
            .takesMask = true,
            .entry = stateEntry<ThresholdModel>,
            .passReason = "the histogram of 32-bit pixels"};
        return measure;
    }

    static void check(const Options&, const PixelTypeList&) {}

    static void consume(const Options& options, const Piece& piece, Part& part)
    {
        if (part.isSecondPass) {
            addFine(piece, part);
            return;
        }
        part.figures.add(piece);
        const bool isSmall = image::getPixelSize(piece.types[0]) < 4;
        if (isSmall && options.method != ThresholdMethod::Mean && !std::isnan(part.figures.min.value)) {
            if (!part.counter) {
                part.counter = std::make_shared<ValueCounter>(piece.types[0]);
            }
            part.counter->add(piece, part.figures.min.value, part.figures.max.value);
        }
    }

    static void settle(Part& part)
    {
        if (part.counter) {
            part.counts.merge(part.counter->take());
            part.counter.reset();
        }
        ValueCounts found;
        for (std::uint32_t bin = 0; bin < part.fine.size(); ++bin) {
            if (part.fine[bin] != 0) {
                found.append(bin, part.fine[bin]);
            }
        }
        part.counts.merge(std::move(found));
        part.fine = {};
        part.bins.reset();
    }

    static void combine(const Options&, Part& into, Part from)
    {
        into.counts.merge(std::move(from.counts));
        if (!into.isSecondPass) {
            into.figures.combine(from.figures);
        }
    }

    static unsigned countPasses(const Options& options, const PixelTypeList& types)
    {
        return image::getPixelSize(types[0]) == 4 && options.method != ThresholdMethod::Mean ? 2 : 1;
    }

    static bool needsPass(const Options& options, const PixelTypeList& types, const Part& part)
    {
        const Figures& f = part.figures;
        return !types.empty() && image::getPixelSize(types[0]) == 4 && options.method != ThresholdMethod::Mean &&
               f.nbNumbers != 0 && f.min.value != f.max.value && std::isfinite(f.max.value - f.min.value) &&
               (!part.isSecondPass || part.counts.getEntries().empty());
    }

    static void nextPass(const Options&, const PixelTypeList&, Part& part)
    {
        part.isSecondPass = true;
        part.counts = {};
    }

    static Part fork(const Part& part)
    {
        Part empty;
        empty.isSecondPass = true;
        empty.figures.min = part.figures.min;
        empty.figures.max = part.figures.max;
        return empty;
    }

    static bool isAlike(const Part& a, const Part& b)
    {
        return a.figures.nbNumbers == b.figures.nbNumbers && a.figures.min.value == b.figures.min.value &&
               a.figures.max.value == b.figures.max.value;
    }

    static Result finish(const Options& options, const PixelTypeList& types, const Part& part, const ResultPlace&)
    {
        const Figures& f = part.figures;
        if (f.nbPositiveInfinity + f.nbNegativeInfinity != 0) {
            throw MeasureException{std::to_string(f.nbPositiveInfinity + f.nbNegativeInfinity) +
                                       " pixels are infinite: a histogram has no place for them",
                                   ORLIX_HERE};
        }
        return {options.method, f.nbNumbers == 0 ? nan : find(options.method, types[0], part), f.nbNaN, {}};
    }

    static std::vector<std::string> getNotes(const Result& result)
    {
        std::vector<std::string> notes;
        if (result.NbNaN != 0) {
            notes.push_back(std::to_string(result.NbNaN) + " pixels are NaN and were left out");
        }
        if (std::isnan(result.Threshold)) {
            notes.emplace_back("the method finds no threshold");
        }
        return notes;
    }

private:
    /// Whether each value has a bin of its own.
    static bool isByValue(eImageBufferType type, const Figures& figures)
    {
        return type != eImageBufferType::eIBT_Float32 && figures.max.value - figures.min.value < nbFineBins;
    }

    static void addFine(const Piece& piece, Part& part)
    {
        const double min = part.figures.min.value;
        const bool isByValueOf = isByValue(piece.types[0], part.figures);
        if (part.fine.empty()) {
            part.fine.resize(nbFineBins);
            part.bins = std::make_shared<Bins>(min, part.figures.max.value, nbFineBins);
        }
        withPixelType(piece.types[0], [&]<class T>(std::type_identity<T>) {
            for (std::size_t run = 0; run < piece.nbRuns(); ++run) {
                const T* const pixels = piece.images[0].run<T>(run, piece.runSize);
                const std::uint8_t* const mask = piece.maskRun(run);
                for (std::size_t i = 0; i < piece.runSize; ++i) {
                    const double pixel = pixels[i];
                    if ((mask == nullptr || mask[i] != 0) && !std::isnan(pixel)) {
                        const auto bin = isByValueOf ? static_cast<std::uint32_t>(pixel - min) : part.bins->find(pixel);
                        ++part.fine.at(bin);
                    }
                }
            }
        });
    }

    static double find(ThresholdMethod method, eImageBufferType type, const Part& part)
    {
        const Figures& f = part.figures;
        const double mean = roundQuotient(toInteger(f.sum), f.nbNumbers, Figures::getUnit(type));
        if (method == ThresholdMethod::Mean || f.min.value == f.max.value) {
            return method == ThresholdMethod::Mean ? mean : f.min.value;
        }
        if (part.counts.getTotal() != f.nbNumbers) {
            throw MeasureException{"the pixels that entered in this pass are not those of the pass before", ORLIX_HERE};
        }
        const LevelCounts histogram = makeHistogram(method, type, part);
        switch (method) {
        case ThresholdMethod::Triangle:
            return findTriangle(histogram);
        case ThresholdMethod::Isodata:
            return findIsodata(histogram);
        case ThresholdMethod::Li:
            return findLi(histogram, mean);
        case ThresholdMethod::Yen:
            return findYen(histogram);
        case ThresholdMethod::MinimumError:
            return findMinimumError(histogram);
        default:
            return findOtsu(histogram);
        }
    }

    static LevelCounts makeHistogram(ThresholdMethod method, eImageBufferType type, const Part& part)
    {
        const double min = part.figures.min.value;
        const double max = part.figures.max.value;
        LevelCounts h;
        const auto count = [&](auto binOf) {
            for (const ValueCounts::Entry& entry : part.counts.getEntries()) {
                h.counts.at(binOf(entry.key)) += static_cast<double>(entry.count);
            }
        };
        if (isByValue(type, part.figures)) {
            h.counts.resize(static_cast<std::size_t>(max - min) + 1);
            h.levels.resize(h.counts.size());
            std::iota(h.levels.begin(), h.levels.end(), min);
            h.lowest = h.levels;
            const bool isFine = part.isSecondPass;
            count([&](std::uint32_t key) {
                return isFine ? std::size_t{key} : static_cast<std::size_t>(valueOf(key, type) - min);
            });
            return h;
        }
        const bool isCoarse = type == eImageBufferType::eIBT_Float32 && method != ThresholdMethod::Li;
        const unsigned size = isCoarse ? nbBins : nbFineBins;
        const Bins bins{min, max, size};
        h.counts.resize(size);
        for (std::uint32_t bin = 0; bin < size; ++bin) {
            h.levels.push_back(bins.getCentre(bin));
            h.lowest.push_back(bins.getLowest(bin));
        }
        h.width = h.levels[1] - h.levels[0];
        count([&](std::uint32_t key) { return std::size_t{key / (nbFineBins / size)}; });
        return h;
    }
};

const MeasureRegistration registration{&ThresholdModel::getMeasure()};

} // namespace

template <>
struct ModelOf<MeasureThreshold>
{
    using Type = ThresholdModel;
};

template class State<MeasureThreshold>;

Results<FoundThreshold> threshold(const ImageView& image, const ThresholdOptions& options)
{
    return measure<MeasureThreshold>(options, {image}, options.mask);
}

} // namespace orlix::measures
