#include <ORLIX/Measures/Regions.hpp>

#include <ORLIX/Measures/Exact.hpp>
#include <ORLIX/Measures/KeyIndex.hpp>
#include <ORLIX/Measures/Pieces.hpp>
#include <ORLIX/Measures/Regions/RegionsKernels.hpp>
#include <ORLIX/Measures/StateImplementation.hpp>

#include <framework/kernel/FloatSums.hpp>
#include <framework/process/MeasureList.hpp>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

namespace orlix::measures
{

using image::eImageBufferType;

void RegionsOptions::visitFields(data::FieldVisitor& field)
{
    field({.name = "per", .help = "what one result covers"}, per);
    field({.name = "nan", .help = "what NaN pixels do", .option = "nan"}, nan);
    field({.name = "median", .help = "the median of each region, too", .option = "median"}, median);
}

namespace
{

constexpr const char* axes[] = {"x", "y", "z", "c", "t"};
constexpr const char* boxAxes[] = {"x0", "y0", "x1", "y1"};
constexpr const char* boxAxes3d[] = {"x0", "y0", "z0", "x1", "y1", "z1"};
constexpr const char* boxAxes5d[] = {"x0", "y0", "z0", "c0", "t0", "x1", "y1", "z1", "c1", "t1"};

std::span<const char* const> namesOfBox(std::size_t nbAxes)
{
    return nbAxes == 2   ? std::span<const char* const>{boxAxes}
           : nbAxes == 3 ? std::span<const char* const>{boxAxes3d}
                         : std::span<const char* const>{boxAxes5d};
}

constexpr data::FieldInfo labelField{"Label", "of the region"};
constexpr data::FieldInfo pixelsField{"NbPixels", "number of the pixels", "pixels"};
constexpr data::FieldInfo borderField{"TouchesBorder", "whether the region lies at the border of the image"};
constexpr data::FieldInfo nanField{"NbNaN", "number of the pixels that are NaN, and take part in no figure", "pixels"};
constexpr data::FieldInfo sumField{"Sum", "sum of the pixels", "grey levels"};
constexpr data::FieldInfo meanField{"Mean", "mean of the pixels", "grey levels"};
constexpr data::FieldInfo deviationField{"StdDev", "standard deviation of the population", "grey levels"};
constexpr data::FieldInfo minField{"Min", "lowest pixel", "grey levels"};
constexpr data::FieldInfo maxField{"Max", "highest pixel", "grey levels"};
constexpr data::FieldInfo medianField{"Median", "the middle pixel of all in their order", "grey levels"};

data::FieldInfo centroidField(std::size_t nbAxes)
{
    return {.name = "Centroid",
            .help = "mean position of the pixels",
            .unit = "pixels",
            .columnNames = std::span{axes}.first(nbAxes)};
}

data::FieldInfo weightedField(std::size_t nbAxes)
{
    return {.name = "WeightedCentroid",
            .help = "the same, weighted by the pixels",
            .unit = "pixels",
            .columnNames = std::span{axes}.first(nbAxes)};
}

data::FieldInfo boxField(std::size_t nbAxes)
{
    return {.name = "BoundingBox",
            .help = "the first position in each axis, and the one behind the last",
            .unit = "pixels",
            .columnNames = namesOfBox(nbAxes)};
}

} // namespace

void Regions::visitFields(data::FieldVisitor& field)
{
    double number = 0;
    std::uint64_t count = 0;
    bool isThere = false;
    std::vector<double> numbers;
    std::vector<std::uint64_t> counts;
    field(labelField, number);
    field(pixelsField, count);
    field(boxField(nbAxes), counts);
    field(centroidField(nbAxes), numbers);
    field(borderField, isThere);
    field(nanField, count);
    for (const data::FieldInfo& info : {sumField, meanField, deviationField, minField, maxField}) {
        field(info, number);
    }
    field(weightedField(nbAxes), numbers);
    field(medianField, number);
}

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::size_t nbAllAxes = 5;

using Coordinates = std::array<std::uint64_t, nbAllAxes>;

Coordinates toCoordinates(const Position& at)
{
    return {at.x, at.y, at.z, at.c, at.t};
}

/// A sum of pixels and its products, as integers of a unit of 2^unit. Runs of one image mostly have one unit.
struct UnitSums
{
    int unit = 0;
    std::uint32_t nbRuns = 0;
    Int128 sum = 0;
    Int128 squares = 0;
    Int128 moments[nbAllAxes] = {}; ///< of pixels times coordinates
};

/// What one image holds in one region.
struct RegionImage
{
    std::uint64_t nbNaN = 0;
    std::uint64_t nbPositiveInfinity = 0;
    std::uint64_t nbNegativeInfinity = 0;
    double min = infinity;
    double max = -infinity;
    FloatSum sum{}; ///< this and what follows: in units of 2^-149 and 2^-298
    FloatProductSum squares{};
    Words<7> moments[nbAllAxes]{};
    ValueCounts values; ///< where there is to be a median: by the ordered bits of the pixels

    UnitSums recent;                    ///< not yet in the sums above
    std::vector<std::uint32_t> entered; ///< not yet in `values`

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(nbNaN), stream(nbPositiveInfinity), stream(nbNegativeInfinity), stream(min), stream(max);
        stream(sum.word), stream(squares.word);
        for (Words<7>& moment : moments) {
            stream(moment.word);
        }
        stream(values);
    }

    void extend(double lowest, double highest)
    {
        min = std::min(min, lowest + 0.0); // of both zeros one
        max = std::max(max, highest + 0.0);
    }
    /// Gets ready for sums of a unit.
    void prepare(int unit)
    {
        // Squares of a run stay below 2^100.
        constexpr std::uint32_t mostRuns = 1u << 24;
        if (recent.unit != unit || ++recent.nbRuns == mostRuns) {
            flush();
            recent.unit = unit;
        }
    }
    void flush()
    {
        const auto shift = static_cast<unsigned>(recent.unit - floatUnit);
        addShifted(sum, recent.sum, shift);
        addShifted(squares, recent.squares, 2 * shift);
        for (std::size_t axis = 0; axis < nbAllAxes; ++axis) {
            addShifted(moments[axis], recent.moments[axis], shift);
        }
        recent = {};
    }
    void enter(std::uint32_t value)
    {
        constexpr std::size_t fewValues = 1024;
        entered.push_back(value);
        if (entered.size() >= std::max(fewValues, 2 * values.getEntries().size())) {
            settleValues();
        }
    }
    void settle()
    {
        flush();
        settleValues();
    }
    void settleValues()
    {
        std::sort(entered.begin(), entered.end());
        ValueCounts found;
        for (auto entry = entered.begin(); entry != entered.end();) {
            const auto end = std::upper_bound(entry, entered.end(), *entry);
            found.append(*entry, static_cast<std::uint64_t>(end - entry));
            entry = end;
        }
        values.merge(std::move(found));
        entered.clear();
    }
    void combine(RegionImage&& from)
    {
        nbNaN += from.nbNaN;
        nbPositiveInfinity += from.nbPositiveInfinity;
        nbNegativeInfinity += from.nbNegativeInfinity;
        min = std::min(min, from.min);
        max = std::max(max, from.max);
        imaproc::add(sum, from.sum);
        imaproc::add(squares, from.squares);
        for (std::size_t axis = 0; axis < nbAllAxes; ++axis) {
            imaproc::add(moments[axis], from.moments[axis]);
        }
        values.merge(std::move(from.values));
    }
};

/// Pixels of one row with one label.
struct LabelRun
{
    std::size_t begin; ///< in the row
    std::size_t end;
    std::uint32_t key; ///< of the label
    std::uint32_t region;

    std::size_t size() const { return end - begin; }
};

struct Region
{
    std::uint32_t key = 0; ///< of the label: its ordered bits
    std::uint64_t nbPixels = 0;
    Coordinates first{};
    Coordinates last{};
    Words<2> positions[nbAllAxes]{};
    std::vector<RegionImage> images;

    template <class Stream>
    void pass(Stream& stream)
    {
        stream(key), stream(nbPixels);
        for (std::size_t axis = 0; axis < nbAllAxes; ++axis) {
            stream(first[axis]), stream(last[axis]), stream(positions[axis].word);
        }
        stream(images);
    }

    /// By a run of a row that begins at `start`.
    void extend(const Coordinates& start, const LabelRun& run)
    {
        nbPixels += run.size();
        extendAxis(0, start[0] + run.begin, start[0] + run.end - 1, run.size());
        for (std::size_t axis = 1; axis < nbAllAxes; ++axis) {
            extendAxis(axis, start[axis], start[axis], run.size());
        }
    }
    /// By a number of pixels whose positions in an axis go from `from` to `to`.
    void extendAxis(std::size_t axis, std::uint64_t from, std::uint64_t to, std::size_t size)
    {
        first[axis] = std::min(first[axis], from);
        last[axis] = std::max(last[axis], to);
        if (to != 0) {
            add(positions[axis], UInt128{size} * (from + to) / 2);
        }
    }
    void combine(Region&& from)
    {
        nbPixels += from.nbPixels;
        for (std::size_t axis = 0; axis < nbAllAxes; ++axis) {
            first[axis] = std::min(first[axis], from.first[axis]);
            last[axis] = std::max(last[axis], from.last[axis]);
            imaproc::add(positions[axis], from.positions[axis]);
        }
        for (std::size_t i = 0; i < images.size(); ++i) {
            images[i].combine(std::move(from.images[i]));
        }
    }
};

/// Sums over a run whose first pixel is at `at`.
inline void enter(RegionImage& image, int unit, const RunSums& sums, const Coordinates& at)
{
    image.prepare(unit);
    image.extend(sums.min, sums.max);
    image.recent.sum += sums.sum;
    image.recent.squares += sums.squares;
    image.recent.moments[0] += sums.products;
    for (std::size_t axis = 0; axis < nbAllAxes; ++axis) {
        if (at[axis] != 0) {
            image.recent.moments[axis] += Int128{sums.sum} * static_cast<std::int64_t>(at[axis]);
        }
    }
}

/// A float pixel by pixel, whatever it is.
void addFloat(float x, const Coordinates& at, RegionImage& image)
{
    if (std::isnan(x)) {
        ++image.nbNaN;
        return;
    }
    image.extend(x, x);
    if (std::isinf(x)) {
        ++(x > 0 ? image.nbPositiveInfinity : image.nbNegativeInfinity);
        return;
    }
    int exponent = 0;
    const float digits = std::ldexp(std::frexp(x, &exponent), 24);
    const int unit = exponent - 24;
    const Int128 value = static_cast<std::int64_t>(unit < floatUnit ? std::ldexp(digits, unit - floatUnit) : digits);
    const auto shift = static_cast<unsigned>(std::max(unit, floatUnit) - floatUnit);
    addShifted(image.sum, value, shift);
    addShifted(image.squares, value * value, 2 * shift);
    for (std::size_t axis = 0; axis < nbAllAxes; ++axis) {
        addShifted(image.moments[axis], value * static_cast<std::int64_t>(at[axis]), shift);
    }
}

/// A unit that all pixels of a run are whole numbers of, if they are of few binades. Units go in steps of 2^8, so that
/// runs share them.
int unitOf(const RegionRun<float>& run)
{
    std::uint32_t least = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t i = 0; i < run.size; ++i) {
        const std::uint32_t bits = std::bit_cast<std::uint32_t>(run.pixels[i]) << 1;
        least = bits != 0 && bits < least ? bits : least;
    }
    const auto exponent = static_cast<int>(least >> 24); // with the unit 2^floatUnit where it is 1
    return std::max(exponent - 1, 0) / 8 * 8 + floatUnit;
}

template <class T>
void addRun(RegionsKernel<T> kernel, const RegionRun<T>& run, const Coordinates& at, bool hasMedian, RegionImage& image)
{
    RunSums sums;
    if constexpr (std::is_same_v<T, float>) {
        int unit = image.recent.unit; // that of the run before is mostly right
        if (kernel(run, unit, sums) || kernel(run, unit = unitOf(run), sums)) {
            enter(image, unit, sums, at);
        } else {
            Coordinates next = at;
            for (std::size_t i = 0; i < run.size; ++i, ++next[0]) {
                addFloat(run.pixels[i], next, image);
            }
        }
    } else {
        kernel(run, 0, sums);
        enter(image, 0, sums, at);
    }
    if (hasMedian) {
        for (std::size_t i = 0; i < run.size; ++i) {
            if (run.pixels[i] == run.pixels[i]) {
                image.enter(orderedBits(run.pixels[i]));
            }
        }
    }
}

struct RegionsModel
{
    using Options = RegionsOptions;
    using Result = Regions;

    /// Regions while pixels enter, by the number of their label.
    struct Work
    {
        KeyIndex index;
        std::vector<Region> regions;
    };

    struct Part
    {
        std::vector<Region> regions; ///< by label

        std::shared_ptr<Work> work;

        template <class Stream>
        void pass(Stream& stream)
        {
            stream(regions);
            if constexpr (Stream::isReader) {
                for (std::size_t i = 0; i < regions.size(); ++i) {
                    if ((i != 0 && regions[i - 1].key >= regions[i].key) ||
                        regions[i].images.size() != regions[0].images.size()) {
                        data::ByteReader::fail("its regions are not in order");
                    }
                }
            }
        }
    };

    static const StateMeasure& getMeasure()
    {
        static const StateMeasure measure{
            .name = "Regions",
            .verb = "regions",
            .help = "a row for every label: size, place, and what images hold there",
            .remark = "0 is the background. Sums, means and deviations are the doubles nearest to the exact values.",
            .inputs = {{"Labels"}, {"Images", true}},
            .takesMask = false,
            .entry = stateEntry<RegionsModel>};
        return measure;
    }

    static void check(const Options&, const PixelTypeList& types)
    {
        if (!types.empty() && types[0] == eImageBufferType::eIBT_Float32) {
            throw MeasureException{"labels are integers: convert the float32 image first", ORLIX_HERE};
        }
    }

    static void consume(const Options& options, const Piece& piece, Part& part)
    {
        if (!part.work) {
            part.work = std::make_shared<Work>();
        }
        withPixelType(piece.types[0], [&]<class T>(std::type_identity<T>) {
            if constexpr (!std::is_same_v<T, float>) {
                addLabels<T>(options, piece, *part.work);
            }
        });
    }

    static void settle(Part& part)
    {
        if (!part.work) {
            return;
        }
        std::vector<Region> regions = std::move(part.work->regions);
        part.work.reset();
        for (Region& region : regions) {
            for (RegionImage& image : region.images) {
                image.settle();
            }
        }
        std::sort(regions.begin(), regions.end(), [](const Region& a, const Region& b) { return a.key < b.key; });
        mergeRegions(part.regions, std::move(regions));
    }

    static void combine(const Options&, Part& into, Part from) { mergeRegions(into.regions, std::move(from.regions)); }

    static Result finish(const Options& options, const PixelTypeList& types, const Part& part, const ResultPlace& place)
    {
        Result result;
        result.nbAxes = place.nbAxes();
        result.images.resize(types.empty() ? 0 : types.size() - 1);
        const Coordinates begin = toCoordinates(place.image.begin);
        const Coordinates end = toCoordinates(place.image.end);
        for (const Region& region : part.regions) {
            result.Label.push_back(types.empty() ? 0
                                                 : static_cast<std::int64_t>(valueOf(region.key, labelType(types[0]))));
            result.NbPixels.push_back(region.nbPixels);
            bool touches = false;
            for (std::size_t axis = 0; axis < result.nbAxes; ++axis) {
                result.BoundingBox.push_back(region.first[axis]);
                result.Centroid.push_back(roundQuotient(toInteger(region.positions[axis]), region.nbPixels));
                touches |= end[axis] - begin[axis] > 1 &&
                           (region.first[axis] == begin[axis] || region.last[axis] + 1 == end[axis]);
            }
            for (std::size_t axis = 0; axis < result.nbAxes; ++axis) {
                result.BoundingBox.push_back(region.last[axis] + 1);
            }
            result.TouchesBorder.push_back(touches);
            for (std::size_t i = 0; i < region.images.size(); ++i) {
                finishImage(options, types[i + 1], result.Label.back(), region, region.images[i], result.nbAxes,
                            result.images[i]);
            }
        }
        return result;
    }

    static std::vector<std::string> getNotes(const Result& result)
    {
        std::vector<std::string> notes;
        for (const RegionFigures& image : result.images) {
            const auto n = std::accumulate(image.NbNaN.begin(), image.NbNaN.end(), std::uint64_t{0});
            if (n != 0) {
                const auto hasNone = [](std::uint64_t count) { return count == 0; };
                const auto others = std::count_if(image.NbNaN.begin(), image.NbNaN.end(), hasNone);
                notes.push_back("pixels that are NaN: " + std::to_string(n) + ", in regions: " +
                                std::to_string(static_cast<std::ptrdiff_t>(image.NbNaN.size()) - others));
            }
        }
        if (result.Label.empty()) {
            notes.emplace_back("there is no label but 0, the background");
        }
        return notes;
    }

    static NamedFields listColumns(const Options& options, const PixelTypeList& types, const ResultPlace& place)
    {
        Part part;
        part.regions.resize(1);
        part.regions[0].images.resize(types.empty() ? 0 : types.size() - 1);
        return listRows(finish({.per = options.per, .median = options.median}, types, part, place)).front();
    }

    static std::vector<NamedFields> listRows(const Result& result)
    {
        std::vector<NamedFields> rows(result.size());
        const std::size_t n = result.nbAxes;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto add = [&](const data::FieldInfo& info, data::Value value, const std::string& suffix = "") {
                rows[row].emplace_back(info.name + suffix, data::Field{info, std::move(value)});
            };
            const auto slice = [&](const auto& list, std::size_t size) {
                const auto first = list.begin() + static_cast<std::ptrdiff_t>(row * size);
                return std::vector(first, first + static_cast<std::ptrdiff_t>(size));
            };
            add(labelField, result.Label[row]);
            add(pixelsField, result.NbPixels[row]);
            add(boxField(n), slice(result.BoundingBox, 2 * n));
            add(centroidField(n), slice(result.Centroid, n));
            add(borderField, bool{result.TouchesBorder[row]});
            for (std::size_t i = 0; i < result.images.size(); ++i) {
                const RegionFigures& image = result.images[i];
                const std::string suffix = result.images.size() > 1 ? "." + std::to_string(i + 1) : "";
                add(nanField, image.NbNaN[row], suffix);
                add(sumField, image.Sum[row], suffix);
                add(meanField, image.Mean[row], suffix);
                add(deviationField, image.StdDev[row], suffix);
                add(minField, image.Min[row], suffix);
                add(maxField, image.Max[row], suffix);
                add(weightedField(n), slice(image.WeightedCentroid, n), suffix);
                if (!image.Median.empty()) {
                    add(medianField, image.Median[row], suffix);
                }
            }
        }
        return rows;
    }

private:
    /// Labels are found by numbers of 32 bits, whatever their size.
    static eImageBufferType labelType(eImageBufferType type)
    {
        const bool isSigned = image::getValueRange(type).lowest < 0;
        return isSigned ? eImageBufferType::eIBT_Int32 : eImageBufferType::eIBT_UInt32;
    }

    /// The end of the run of equal labels that begins at x.
    template <class T>
    static std::size_t endOfRun(const T* labels, std::size_t x, std::size_t size)
    {
        constexpr std::size_t group = sizeof(std::uint64_t) / sizeof(T);
        const T label = labels[x];
        const std::uint64_t equal = std::numeric_limits<std::uint64_t>::max() /
                                    std::numeric_limits<Unsigned<T>>::max() * static_cast<Unsigned<T>>(label);
        for (; x + group <= size; x += group) {
            std::uint64_t next = 0;
            std::memcpy(&next, labels + x, sizeof next);
            if (next != equal) {
                return x + static_cast<std::size_t>(std::countr_zero(next ^ equal)) / (8 * sizeof(T));
            }
        }
        while (x < size && labels[x] == label) {
            ++x;
        }
        return x;
    }

    template <class T>
    static void addLabels(const Options& options, const Piece& piece, Work& work)
    {
        using Wide = std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>;
        const image::PixelBox& box = piece.box();
        std::vector<LabelRun> runs;
        std::vector<LabelRun> runsAbove;
        for (std::size_t row = 0; row < box.y * box.z; ++row) {
            const T* const labels = piece.images[0].run<T>(row, box.x);
            std::swap(runs, runsAbove);
            runs.clear();
            auto above = runsAbove.cbegin();
            for (std::size_t x = 0, end = 0; x < box.x; x = end) {
                end = endOfRun(labels, x, box.x);
                if (labels[x] == 0) {
                    continue;
                }
                const std::uint32_t key = orderedBits(static_cast<Wide>(labels[x]));
                while (above != runsAbove.cend() && above->end <= x + (end - x) / 2) {
                    ++above;
                }
                const bool goesOn = above != runsAbove.cend() && above->key == key;
                const std::uint32_t region = goesOn ? above->region : work.index.find(key);
                if (region == work.regions.size()) {
                    addRegion(piece, key, work);
                }
                runs.push_back({x, end, key, region});
            }
            addRow(options, piece, row, runs, work);
        }
    }

    static void addRegion(const Piece& piece, std::uint32_t key, Work& work)
    {
        Region region;
        region.key = key;
        region.first.fill(std::numeric_limits<std::uint64_t>::max());
        region.images.resize(piece.images.size() - 1);
        work.regions.push_back(std::move(region));
    }

    static void addRow(const Options& options, const Piece& piece, std::size_t row, const std::vector<LabelRun>& runs,
                       Work& work)
    {
        const image::PixelBox& box = piece.box();
        const Coordinates start = toCoordinates(piece.positionOf(row * box.x));
        for (const LabelRun& run : runs) {
            work.regions[run.region].extend(start, run);
        }
        for (std::size_t i = 1; i < piece.images.size(); ++i) {
            withPixelType(piece.types[i], [&]<class T>(std::type_identity<T>) {
                const RegionsKernel<T> kernel = selectKernel<T>(getRegionsKernels());
                const T* const pixels = piece.images[i].run<T>(row, box.x);
                for (const LabelRun& run : runs) {
                    RegionImage& image = work.regions[run.region].images[i - 1];
                    for (std::size_t x = run.begin; x < run.end; x += RegionRun<T>::mostPixels) {
                        const std::size_t size = std::min(RegionRun<T>::mostPixels, run.end - x);
                        const Coordinates at{start[0] + x, start[1], start[2], start[3], start[4]};
                        addRun<T>(kernel, {pixels + x, size, box.x - x}, at, options.median, image);
                    }
                }
            });
        }
    }

    static void mergeRegions(std::vector<Region>& into, std::vector<Region> from)
    {
        if (into.empty()) {
            into = std::move(from);
            return;
        }
        std::vector<Region> merged;
        merged.reserve(into.size() + from.size());
        auto a = into.begin();
        auto b = from.begin();
        while (a != into.end() && b != from.end()) {
            if (a->key == b->key) {
                a->combine(std::move(*b++));
                merged.push_back(std::move(*a++));
            } else {
                merged.push_back(std::move(a->key < b->key ? *a++ : *b++));
            }
        }
        std::move(a, into.end(), std::back_inserter(merged));
        std::move(b, from.end(), std::back_inserter(merged));
        into = std::move(merged);
    }

    static void finishImage(const Options& options, eImageBufferType type, std::int64_t label, const Region& region,
                            const RegionImage& image, std::size_t nbAxes, RegionFigures& figures)
    {
        if (options.nan == NanPolicy::Fail && image.nbNaN != 0) {
            throw MeasureException{"label " + std::to_string(label) +
                                       ": pixels of the image that are NaN: " + std::to_string(image.nbNaN),
                                   ORLIX_HERE};
        }
        const std::uint64_t n = region.nbPixels - image.nbNaN;
        const std::uint64_t nbInfinite = image.nbPositiveInfinity + image.nbNegativeInfinity;
        const bool isUnknown = n == 0 || (options.nan == NanPolicy::Propagate && image.nbNaN != 0);
        const Integer sum = toInteger(image.sum);
        figures.NbNaN.push_back(image.nbNaN);
        figures.Min.push_back(isUnknown ? nan : image.min);
        figures.Max.push_back(isUnknown ? nan : image.max);
        if (isUnknown || nbInfinite != 0) {
            const double total = isUnknown || (image.nbPositiveInfinity != 0 && image.nbNegativeInfinity != 0) ? nan
                                 : image.nbPositiveInfinity != 0 ? infinity
                                                                 : -infinity;
            figures.Sum.push_back(n == 0 && options.nan != NanPolicy::Propagate ? 0 : total);
            figures.Mean.push_back(total);
            figures.StdDev.push_back(nan);
        } else {
            const Integer count = n;
            figures.Sum.push_back(roundQuotient(sum, 1, floatUnit));
            figures.Mean.push_back(roundQuotient(sum, count, floatUnit));
            figures.StdDev.push_back(
                roundRoot(count * toInteger(image.squares) - sum * sum, count * count, 2 * floatUnit));
        }
        for (std::size_t axis = 0; axis < nbAxes; ++axis) {
            figures.WeightedCentroid.push_back(
                isUnknown || nbInfinite != 0 ? nan : roundQuotient(toInteger(image.moments[axis]), sum));
        }
        if (options.median) {
            figures.Median.push_back(isUnknown ? nan : findMedian(image.values, n, type));
        }
    }

    static double findMedian(const ValueCounts& values, std::uint64_t n, eImageBufferType type)
    {
        const auto pixelOf = [&](std::uint64_t rank) {
            std::uint64_t below = 0;
            for (const ValueCounts::Entry& entry : values.getEntries()) {
                below += entry.count;
                if (rank < below) {
                    return valueOf(entry.key, type == eImageBufferType::eIBT_Float32 ? type : labelType(type));
                }
            }
            throw MeasureException{"the values of the state are not those of its pixels", ORLIX_HERE};
        };
        const double lower = pixelOf((n - 1) / 2);
        const double upper = pixelOf(n / 2);
        return lower == upper ? lower : lower + (upper - lower) / 2;
    }
};

const MeasureRegistration registration{&RegionsModel::getMeasure()};

} // namespace

template <>
struct ModelOf<MeasureRegions>
{
    using Type = RegionsModel;
};

template class State<MeasureRegions>;

Results<Regions> regions(const ImageView& labels, const std::vector<ImageView>& images, const RegionsOptions& options)
{
    std::vector<ImageView> all{labels};
    all.insert(all.end(), images.begin(), images.end());
    return measure<MeasureRegions>(options, all, {});
}

} // namespace orlix::measures
