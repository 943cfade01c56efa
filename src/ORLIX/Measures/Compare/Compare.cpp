#include <ORLIX/Measures/Compare.hpp>

#include <ORLIX/Measures/Bins.hpp>
#include <ORLIX/Measures/Compare/CompareKernels.hpp>
#include <ORLIX/Measures/Compare/Ssim.hpp>
#include <ORLIX/Measures/Counts.hpp>
#include <ORLIX/Measures/Exact.hpp>
#include <ORLIX/Measures/Extreme.hpp>
#include <ORLIX/Measures/Pieces.hpp>
#include <ORLIX/Measures/StateImplementation.hpp>

#include <framework/kernel/FloatSums.hpp>
#include <framework/process/MeasureList.hpp>

#include <cmath>
#include <limits>

namespace orlix::measures
{

using image::eImageBufferType;

std::span<const char* const> namesOf(SsimWindow)
{
    static constexpr const char* names[] = {"uniform", "gaussian"};
    return names;
}

void CompareOptions::visitFields(data::FieldVisitor& field)
{
    field({.name = "per", .help = "what one result covers"}, per);
    field({.name = "nan", .help = "what NaN pixels do", .option = "nan"}, nan);
    field({.name = "peak",
           .help = "of the signal (default: the range of the integer type; float images need it)",
           .option = "peak"},
          peak);
    field({.name = "threshold", .help = "of the first image, in Manders' coefficients", .option = "threshold"},
          threshold);
    field({.name = "threshold2", .help = "of the second image, in Manders' coefficients", .option = "threshold2"},
          threshold2);
    field({.name = "bins",
           .help = "of the mutual information, for each image; 0: none",
           .option = "bins",
           .lowest = 0,
           .highest = 1024},
          bins);
    field({.name = "ssim", .help = "measure the structural similarity", .option = "ssim"}, ssim);
    field({.name = "window", .help = "weights of the structural similarity", .option = "window"}, window);
    field({.name = "windowSize",
           .help = "of the structural similarity, odd (default: 7; Gaussian: 2 round(3.5 sigma) + 1)",
           .unit = "pixels",
           .option = "window-size",
           .lowest = 0,
           .highest = 255},
          windowSize);
    field({.name = "sigma",
           .help = "of Gaussian weights",
           .unit = "pixels",
           .option = "sigma",
           .lowest = 0.1,
           .highest = 36},
          sigma);
    field({.name = "k1", .help = "constant of the structural similarity", .option = "k1", .lowest = 0, .highest = 1},
          k1);
    field({.name = "k2", .help = "constant of the structural similarity", .option = "k2", .lowest = 0, .highest = 1},
          k2);
    field({.name = "sampleCovariance",
           .help = "divide variances of windows by the number of pixels less 1",
           .option = "sample-covariance"},
          sampleCovariance);
}

void Comparison::visitFields(data::FieldVisitor& field)
{
    static constexpr const char* axes[] = {"x", "y", "z", "c", "t"};
    field({"NbPixels", "number of the pairs of pixels: inside the mask, neither of them NaN", "pixels"}, NbPixels);
    field({"NbNaN", "number of the pairs with a NaN", "pixels"}, NbNaN);
    field({"ME", "mean error: second image less first", "grey levels"}, ME);
    field({"MSE", "mean squared error", "grey levels squared"}, MSE);
    field({"RMSE", "root of the mean squared error", "grey levels"}, RMSE);
    field({"NRMSE", "the same, over the root of the mean square of the first image"}, NRMSE);
    field({"MAE", "mean absolute error", "grey levels"}, MAE);
    field({"MaxAbsError", "largest absolute error", "grey levels"}, MaxAbsError);
    field({.name = "MaxAbsErrorPosition", .help = "where the first of the largest errors lies", .columnNames = axes},
          MaxAbsErrorPosition);
    field({"PSNR", "peak signal-to-noise ratio", "dB"}, PSNR);
    field({"Peak", "of the signal", "grey levels"}, Peak);
    field({"r", "Pearson's correlation"}, r);
    field({"Slope", "of the regression line: second = Slope * first + Intercept"}, Slope);
    field({"Intercept", "of the regression line", "grey levels"}, Intercept);
    field({"MandersM1", "share of the first image's sum where the second is above its threshold"}, MandersM1);
    field({"MandersM2", "share of the second image's sum where the first is above its threshold"}, MandersM2);
    field({"MI", "mutual information", "nats"}, MI);
    field({"NMI", "normalized mutual information, from 1 to 2"}, NMI);
    field({"SSIM", "mean structural similarity"}, SSIM);
}

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

[[noreturn]] void fail(const std::string& text)
{
    throw MeasureException{text, ORLIX_HERE};
}

void checkOptions(const CompareOptions& options)
{
    if (options.peak && !(*options.peak > 0 && *options.peak < infinity)) {
        fail("the peak of a signal is above 0 and finite");
    }
    if (options.bins > 1024) {
        fail("mutual information takes up to 1024 bins for each image, not " + std::to_string(options.bins));
    }
    if (options.windowSize != 0 && (options.windowSize % 2 == 0 || options.windowSize > 255)) {
        fail("a window of structural similarity has an odd size up to 255, not " + std::to_string(options.windowSize));
    }
    if (!(options.sigma > 0 && options.sigma <= 36)) {
        fail("sigma lies above 0, and up to 36 pixels");
    }
    if (!std::isfinite(options.threshold) || !std::isfinite(options.threshold2)) {
        fail("thresholds are finite");
    }
    if (!(options.k1 >= 0 && options.k2 >= 0)) {
        fail("k1 and k2 are not below 0");
    }
}

double getPeak(const CompareOptions& options, eImageBufferType type)
{
    if (options.peak) {
        return *options.peak;
    }
    if (type == eImageBufferType::eIBT_Float32) {
        fail("float32 images have no peak of their own: give it as the option peak, the highest value that a pixel may "
             "have, less the lowest");
    }
    const auto [lowest, highest] = image::getValueRange(type);
    return highest - lowest;
}

double getEntropy(const std::vector<std::uint64_t>& counts, double n)
{
    double sum = 0;
    for (const std::uint64_t count : counts) {
        const auto x = static_cast<double>(count);
        sum += count != 0 ? x * std::log(x) : 0;
    }
    return std::log(n) - sum / n;
}

/// A double that is a float, or an integer of 32 bits, in units of 2^-149 shifted to the left.
struct Digits
{
    std::int64_t value = 0;
    unsigned shift = 0;

    explicit Digits(double x)
    {
        if (x == 0) {
            return;
        }
        int exponent = 0;
        value = static_cast<std::int64_t>(std::ldexp(std::frexp(x, &exponent), 53));
        const int low = exponent - 53 - floatUnit;
        if (low < 0) {
            value /= std::int64_t{1} << -low; // what is below the unit is 0
        } else {
            shift = static_cast<unsigned>(low);
        }
    }
};

/// The same sums that kernels make, of any finite pair.
void addPair(double a, double b, CompareFigures& f)
{
    const Digits x{a};
    const Digits y{b};
    addShifted(f.sum[0], x.value, x.shift);
    addShifted(f.sum[1], y.value, y.shift);
    const Digits& larger = a < b ? y : x;
    addShifted(f.larger, larger.value, larger.shift);
    if (b > f.threshold[1]) {
        addShifted(f.coincident[0], x.value, x.shift);
    }
    if (a > f.threshold[0]) {
        addShifted(f.coincident[1], y.value, y.shift);
    }
    addShifted(f.squares[0], Int128{x.value} * x.value, 2 * x.shift);
    addShifted(f.squares[1], Int128{y.value} * y.value, 2 * y.shift);
    addShifted(f.products, Int128{x.value} * y.value, x.shift + y.shift);
    f.maxError = std::max(f.maxError, std::fabs(a - b));
}

void readDoubles(eImageBufferType type, const std::byte* from, std::size_t size, double* to)
{
    withPixelType(type,
                  [&]<class T>(std::type_identity<T>) { std::copy_n(reinterpret_cast<const T*>(from), size, to); });
}

struct CompareModel
{
    using Options = CompareOptions;
    using Result = Comparison;

    /// Joint counts while pixels enter.
    struct JointTable
    {
        std::vector<std::uint32_t> counts;
        std::vector<Bins> bins; ///< of each image; none: pixels of 8 bits by value
        std::uint64_t room = std::uint64_t{1} << 31;
    };

    struct Part
    {
        std::uint64_t nbPairs = 0;
        std::uint64_t nbNaN = 0;
        std::uint64_t nbInfinite = 0;
        FloatSum sum[2]{};
        FloatSum larger{};
        FloatSum coincident[2]{};
        FloatProductSum squares[2]{};
        FloatProductSum products{};
        Extreme error; ///< the largest
        double min[2] = {infinity, infinity};
        double max[2] = {-infinity, -infinity};
        std::uint64_t nbWindows = 0;  ///< that were looked at
        std::uint64_t nbCounting = 0; ///< of those, that count
        Words<2> similarity{};        ///< their sum, in units of 2^-50
        bool isSecondPass = false;
        ValueCounts joint; ///< by pixels of 8 bits, or by bins

        std::shared_ptr<JointTable> table;

        template <class Stream>
        void pass(Stream& stream)
        {
            stream(nbPairs), stream(nbNaN), stream(nbInfinite);
            for (int k = 0; k < 2; ++k) {
                stream(sum[k].word), stream(coincident[k].word), stream(squares[k].word);
                stream(min[k]), stream(max[k]);
            }
            stream(larger.word), stream(products.word), stream(error), stream(nbWindows), stream(nbCounting),
                stream(similarity.word);
            stream(isSecondPass), stream(joint);
        }
    };

    static const StateMeasure& getMeasure()
    {
        static const StateMeasure measure{
            .name = "Comparison",
            .verb = "compare",
            .help = "errors, correlation, regression, mutual information and structural similarity of two images",
            .remark = "The first image is the reference. Errors, correlation and regression are the doubles nearest to "
                      "the exact values.",
            .inputs = {{"Image"}, {"Image2"}},
            .takesMask = true,
            .entry = stateEntry<CompareModel>,
            .passReason = "mutual information of anything but two images of 8 bits"};
        return measure;
    }

    static void check(const Options& options, const PixelTypeList& types)
    {
        checkOptions(options);
        if (!types.empty()) {
            getPeak(options, types[0]);
        }
    }

    static std::uint64_t getMargin(const Options& options) { return options.ssim ? SsimPlane::getRadius(options) : 0; }

    static void consume(const Options& options, const Piece& piece, Part& part)
    {
        if (part.isSecondPass) {
            addJoint(options, piece, part);
            return;
        }
        addFigures(options, piece, part);
        if (options.bins != 0 && areBytes(piece.types)) {
            addJoint(options, piece, part);
        }
        if (options.ssim) {
            addSimilarity(options, piece, part);
        }
    }

    static void settle(Part& part)
    {
        if (part.table) {
            takeJoint(part);
            part.table.reset();
        }
    }

    static void combine(const Options&, Part& into, Part from)
    {
        into.joint.merge(std::move(from.joint));
        if (into.isSecondPass) {
            return;
        }
        into.nbPairs += from.nbPairs;
        into.nbNaN += from.nbNaN;
        into.nbInfinite += from.nbInfinite;
        for (int k = 0; k < 2; ++k) {
            imaproc::add(into.sum[k], from.sum[k]);
            imaproc::add(into.coincident[k], from.coincident[k]);
            imaproc::add(into.squares[k], from.squares[k]);
            into.min[k] = std::min(into.min[k], from.min[k]);
            into.max[k] = std::max(into.max[k], from.max[k]);
        }
        imaproc::add(into.larger, from.larger);
        imaproc::add(into.products, from.products);
        replace(into.error, from.error, std::greater<>{});
        into.nbWindows += from.nbWindows;
        into.nbCounting += from.nbCounting;
        imaproc::add(into.similarity, from.similarity);
    }

    static unsigned countPasses(const Options& options, const PixelTypeList& types)
    {
        return options.bins != 0 && !areBytes(types) ? 2 : 1;
    }

    static bool needsPass(const Options& options, const PixelTypeList& types, const Part& part)
    {
        return options.bins != 0 && !types.empty() && !areBytes(types) && part.nbPairs != part.nbInfinite &&
               (!part.isSecondPass || part.joint.getEntries().empty());
    }

    static void nextPass(const Options&, const PixelTypeList&, Part& part)
    {
        part.isSecondPass = true;
        part.joint = {};
    }

    static Part fork(const Part& part)
    {
        Part empty;
        empty.isSecondPass = true;
        for (int k = 0; k < 2; ++k) {
            empty.min[k] = part.min[k];
            empty.max[k] = part.max[k];
        }
        return empty;
    }

    static bool isAlike(const Part& a, const Part& b)
    {
        return a.nbPairs == b.nbPairs && a.products == b.products && std::equal(a.min, a.min + 2, b.min) &&
               std::equal(a.max, a.max + 2, b.max);
    }

    static Result finish(const Options& options, const PixelTypeList& types, const Part& part, const ResultPlace& place)
    {
        if (options.nan == NanPolicy::Fail && part.nbNaN != 0) {
            fail("pairs of pixels with a NaN: " + std::to_string(part.nbNaN));
        }
        Result result;
        result.NbPixels = part.nbPairs;
        result.NbNaN = part.nbNaN;
        result.Peak = types.empty() ? options.peak.value_or(nan) : getPeak(options, types[0]);
        const bool isKnown =
            part.nbPairs != 0 && part.nbInfinite == 0 && (options.nan != NanPolicy::Propagate || part.nbNaN == 0);
        finishSums(part, isKnown, result);
        if (isKnown) {
            result.MaxAbsErrorPosition = place.list(part.error.at);
        }
        if (options.bins != 0) {
            finishJoint(options, types, part, isKnown, result);
        }
        if (options.ssim) {
            result.SSIM = finishSimilarity(options, part, place);
        }
        return result;
    }

    static std::vector<std::string> getNotes(const Result& result)
    {
        std::vector<std::string> notes;
        if (result.NbNaN != 0) {
            notes.push_back("pairs of pixels with a NaN: " + std::to_string(result.NbNaN));
        }
        if (result.SSIM && std::isnan(*result.SSIM) && !std::isnan(result.ME)) {
            notes.emplace_back("no window of the structural similarity lies in the image and counts");
        }
        return notes;
    }

private:
    static bool areBytes(std::span<const eImageBufferType> types)
    {
        return image::getPixelSize(types[0]) == 1 && image::getPixelSize(types[1]) == 1;
    }

    /// Calls `visit(pixels, pixels2, size, mask, run, offset)` for every block of a piece.
    template <class Visit>
    static void forEachBlock(const Piece& piece, Visit visit)
    {
        for (std::size_t run = 0; run < piece.nbRuns(); ++run) {
            const std::byte* const rows[2] = {piece.images[0].run<std::byte>(run, piece.runSize),
                                              piece.images[1].run<std::byte>(run, piece.runSize)};
            const std::uint8_t* const mask = piece.maskRun(run);
            for (std::size_t i = 0; i < piece.runSize; i += PairBlock::size) {
                const std::byte* const pixels[2] = {rows[0] + i * image::getPixelSize(piece.types[0]),
                                                    rows[1] + i * image::getPixelSize(piece.types[1])};
                visit(pixels, std::min(PairBlock::size, piece.runSize - i), mask == nullptr ? nullptr : mask + i,
                      run * piece.runSize + i);
            }
        }
    }

    static void addFigures(const Options& options, const Piece& piece, Part& part)
    {
        CompareFigures f{};
        f.maxError = std::isnan(part.error.value) ? -1 : part.error.value;
        std::fill_n(f.min, 2, infinity);
        std::fill_n(f.max, 2, -infinity);
        f.threshold[0] = options.threshold;
        f.threshold[1] = options.threshold2;
        PairBlock block;
        forEachBlock(
            piece, [&](const std::byte* const(&pixels)[2], std::size_t size, const std::uint8_t* mask, std::size_t at) {
                if (mask != nullptr) {
                    std::copy_n(mask, size, block.counts);
                } else {
                    std::fill_n(block.counts, size, 1);
                }
                const double before = f.maxError;
                if (!addWords(piece.types, pixels, size, block, f) && !addFloats(piece.types, pixels, size, block, f)) {
                    addWide(piece.types, pixels, size, block.counts, f);
                }
                if (f.maxError > before) {
                    part.error = {f.maxError, findError(piece, pixels, size, mask, at, f.maxError)};
                }
            });
        part.nbPairs += f.nbPairs;
        part.nbNaN += f.nbNaN;
        part.nbInfinite += f.nbInfinite;
        for (int k = 0; k < 2; ++k) {
            imaproc::add(part.sum[k], f.sum[k]);
            imaproc::add(part.coincident[k], f.coincident[k]);
            imaproc::add(part.squares[k], f.squares[k]);
            part.min[k] = std::min(part.min[k], f.min[k] + 0.0); // of both zeros one
            part.max[k] = std::max(part.max[k], f.max[k] + 0.0);
        }
        imaproc::add(part.larger, f.larger);
        imaproc::add(part.products, f.products);
    }

    /// Pixels of 8 and 16 bits, where they and their differences fit 16 bits. Returns whether they entered.
    static bool addWords(std::span<const eImageBufferType> types, const std::byte* const (&pixels)[2], std::size_t size,
                         PairBlock& block, CompareFigures& f)
    {
        const auto compare = findKernel<short>(getCompareKernels());
        const auto has = [&](eImageBufferType type) { return types[0] == type || types[1] == type; };
        const bool isUnsigned = has(eImageBufferType::eIBT_UInt16);
        const bool isSigned = has(eImageBufferType::eIBT_Int8) || has(eImageBufferType::eIBT_Int16);
        if (compare == nullptr || (isUnsigned && isSigned) || image::getPixelSize(types[0]) > 2 ||
            image::getPixelSize(types[1]) > 2) {
            return false;
        }
        block.bias = isUnsigned ? 32768 : 0;
        for (std::size_t k = 0; k < 2; ++k) {
            withPixelType(types[k], [&]<class T>(std::type_identity<T>) {
                if constexpr (sizeof(T) < 4) {
                    const auto read = selectKernel<T>(getReadWordsKernels());
                    read(reinterpret_cast<const T*>(pixels[k]), size, block.bias, block.words[k]);
                }
            });
        }
        return compare(block, size, f);
    }

    /// Pixels that have no more digits than floats. Returns whether they entered.
    static bool addFloats(std::span<const eImageBufferType> types, const std::byte* const (&pixels)[2],
                          std::size_t size, PairBlock& block, CompareFigures& f)
    {
        bool isExact = true;
        for (std::size_t k = 0; k < 2; ++k) {
            block.from[k] = block.pixels[k];
            if (types[k] == eImageBufferType::eIBT_Float32 && size == PairBlock::size) {
                block.from[k] = reinterpret_cast<const float*>(pixels[k]); // whole packs can be read where they lie
                continue;
            }
            withPixelType(types[k], [&]<class T>(std::type_identity<T>) {
                const auto read = selectKernel<T>(getReadKernels());
                isExact &= read(reinterpret_cast<const T*>(pixels[k]), size, block.pixels[k]);
            });
        }
        if (isExact && !selectKernel<float>(getCompareKernels())(block, size, f)) {
            for (std::size_t i = 0; i < size; ++i) {
                if (block.counts[i] != 0) {
                    addPair(block.pixels[0][i], block.pixels[1][i], f);
                }
            }
        }
        return isExact;
    }

    /// Pixels that have more digits than floats.
    static void addWide(std::span<const eImageBufferType> types, const std::byte* const (&pixels)[2], std::size_t size,
                        const std::uint8_t* counts, CompareFigures& f)
    {
        double wide[2][PairBlock::size];
        for (std::size_t k = 0; k < 2; ++k) {
            readDoubles(types[k], pixels[k], size, wide[k]);
        }
        for (std::size_t i = 0; i < size; ++i) {
            const double a = wide[0][i];
            const double b = wide[1][i];
            if (counts[i] == 0) {
                continue;
            }
            if (std::isnan(a) || std::isnan(b)) {
                ++f.nbNaN;
                continue;
            }
            ++f.nbPairs;
            if (std::isinf(a) || std::isinf(b)) {
                ++f.nbInfinite;
                continue;
            }
            addPair(a, b, f);
            for (int k = 0; k < 2; ++k) {
                f.min[k] = std::min(f.min[k], wide[k][i]);
                f.max[k] = std::max(f.max[k], wide[k][i]);
            }
        }
    }

    static Position findError(const Piece& piece, const std::byte* const (&pixels)[2], std::size_t size,
                              const std::uint8_t* mask, std::size_t at, double error)
    {
        double wide[2][PairBlock::size];
        for (std::size_t k = 0; k < 2; ++k) {
            readDoubles(piece.types[k], pixels[k], size, wide[k]);
        }
        std::size_t i = 0;
        while (i + 1 < size && ((mask != nullptr && mask[i] == 0) || std::fabs(wide[0][i] - wide[1][i]) != error)) {
            ++i;
        }
        return piece.positionOf(at + i);
    }

    static void addJoint(const Options& options, const Piece& piece, Part& part)
    {
        if (!part.table) {
            part.table = std::make_shared<JointTable>();
            if (part.isSecondPass) {
                for (int k = 0; k < 2; ++k) {
                    part.table->bins.emplace_back(part.min[k], part.max[k], options.bins);
                }
            }
            part.table->counts.resize(part.isSecondPass ? std::size_t{options.bins} * options.bins : 65536);
        }
        JointTable& table = *part.table;
        if (table.room < piece.nbPixels()) {
            takeJoint(part);
        }
        table.room -= std::min(table.room, piece.nbPixels());
        forEachBlock(
            piece, [&](const std::byte* const(&pixels)[2], std::size_t size, const std::uint8_t* mask, std::size_t) {
                if (table.bins.empty()) {
                    // By the place among the values of the type.
                    const unsigned turn[2] = {piece.types[0] == eImageBufferType::eIBT_Int8 ? 0x80u : 0u,
                                              piece.types[1] == eImageBufferType::eIBT_Int8 ? 0x80u : 0u};
                    for (std::size_t i = 0; i < size; ++i) {
                        const unsigned a = std::to_integer<unsigned>(pixels[0][i]) ^ turn[0];
                        const unsigned b = std::to_integer<unsigned>(pixels[1][i]) ^ turn[1];
                        table.counts[a << 8 | b] += mask == nullptr || mask[i] != 0;
                    }
                    return;
                }
                double wide[2][PairBlock::size];
                for (std::size_t k = 0; k < 2; ++k) {
                    readDoubles(piece.types[k], pixels[k], size, wide[k]);
                }
                for (std::size_t i = 0; i < size; ++i) {
                    const bool counts =
                        (mask == nullptr || mask[i] != 0) && std::isfinite(wide[0][i]) && std::isfinite(wide[1][i]);
                    if (counts) {
                        ++table.counts[table.bins[0].find(wide[0][i]) * options.bins + table.bins[1].find(wide[1][i])];
                    }
                }
            });
    }

    static void takeJoint(Part& part)
    {
        ValueCounts found;
        std::vector<std::uint32_t>& counts = part.table->counts;
        for (std::uint32_t i = 0; i < counts.size(); ++i) {
            if (counts[i] != 0) {
                found.append(i, counts[i]);
            }
        }
        part.joint.merge(std::move(found));
        std::fill(counts.begin(), counts.end(), 0);
        part.table->room = std::uint64_t{1} << 31;
    }

    static void addSimilarity(const Options& options, const Piece& piece, Part& part)
    {
        const std::size_t radius = SsimPlane::getRadius(options);
        const image::ImageGeometry& size = piece.whole[0]->getGeometry();
        const image::PixelBox& box = piece.box();
        const std::size_t begin = std::max<std::size_t>(piece.at.x, radius);
        const std::size_t end = std::min<std::size_t>(piece.at.x + box.x, size.x - std::min(size.x, radius));
        for (std::size_t z = 0; z < box.z; ++z) {
            const image::PlanIndex plane{static_cast<unsigned>(z), 0, 0};
            const ImageView around[] = {piece.around[0]->getSubImage(plane, image::ePlanKind::ePK_Plan2d),
                                        piece.around[1]->getSubImage(plane, image::ePlanKind::ePK_Plan2d)};
            for (std::size_t x = begin; x < end; x += SsimPlane::bestSize) {
                addSimilarity(options, piece, around, z, x, std::min(x + SsimPlane::bestSize, end), part);
            }
        }
    }

    /// Of the windows centred on pixels [begin, end) of the rows of a plane of the piece; `around` is that of the
    /// plane.
    static void addSimilarity(const Options& options, const Piece& piece, std::span<const ImageView, 2> around,
                              std::size_t z, std::size_t begin, std::size_t end, Part& part)
    {
        const std::size_t radius = SsimPlane::getRadius(options);
        const image::ImageGeometry& size = piece.whole[0]->getGeometry();
        const image::PixelBox& box = piece.box();
        SsimPlane windows{options, getPeak(options, piece.types[0]), around, begin, end};
        for (std::size_t i = 0; i < box.y; ++i) {
            const std::size_t y = piece.at.y + i;
            if (y < radius || y + radius >= size.y) {
                continue;
            }
            const double* const values = windows.measure(y - piece.firstAround);
            part.nbWindows += end - begin;
            if (const auto sum = windows.getSum(); sum && !piece.mask) {
                addShifted(part.similarity, *sum, 0);
                part.nbCounting += end - begin;
                continue;
            }
            const std::size_t row = (z * box.y + i) * box.x;
            for (std::size_t x = begin; x < end; ++x) {
                const double value = values[x - begin];
                if (!std::isnan(value) && isSelected(piece, row + x - piece.at.x)) {
                    // Rounded as the kernels round.
                    const double units = std::nearbyint(std::ldexp(value, -SsimWindows::unit));
                    addShifted(part.similarity, static_cast<std::int64_t>(units), 0);
                    ++part.nbCounting;
                }
            }
        }
    }

    static bool isSelected(const Piece& piece, std::size_t pixel)
    {
        return !piece.mask || piece.maskRun(pixel / piece.runSize)[pixel % piece.runSize] != 0;
    }

    static void finishSums(const Part& part, bool isKnown, Result& result)
    {
        if (!isKnown) {
            for (double* const figure :
                 {&result.ME, &result.MSE, &result.RMSE, &result.NRMSE, &result.MAE, &result.MaxAbsError, &result.PSNR,
                  &result.r, &result.Slope, &result.Intercept, &result.MandersM1, &result.MandersM2}) {
                *figure = nan;
            }
            return;
        }
        const Integer n = part.nbPairs;
        const Integer a = toInteger(part.sum[0]);
        const Integer b = toInteger(part.sum[1]);
        const Integer aa = toInteger(part.squares[0]);
        const Integer bb = toInteger(part.squares[1]);
        const Integer ab = toInteger(part.products);
        const Integer errors = aa - 2 * ab + bb;
        result.ME = roundQuotient(b - a, n, floatUnit);
        result.MSE = roundQuotient(errors, n, 2 * floatUnit);
        result.RMSE = roundRoot(errors, n, 2 * floatUnit);
        result.NRMSE = roundRoot(errors, aa);
        // |a - b| is twice the larger one less both.
        const Integer larger = toInteger(part.larger);
        result.MAE = roundQuotient(2 * larger - a - b, n, floatUnit);
        result.MaxAbsError = part.error.value;
        result.PSNR = errors == 0 ? infinity : 10 * std::log10(result.Peak * result.Peak / result.MSE);
        // n^2 times variances and covariance.
        const Integer varianceA = n * aa - a * a;
        const Integer varianceB = n * bb - b * b;
        const Integer covariance = n * ab - a * b;
        const double r = roundRoot(covariance * covariance, varianceA * varianceB);
        result.r = covariance < 0 ? -r : r;
        result.Slope = roundQuotient(covariance, varianceA);
        result.Intercept = roundQuotient(b * aa - a * ab, varianceA, floatUnit);
        result.MandersM1 = roundQuotient(toInteger(part.coincident[0]), a);
        result.MandersM2 = roundQuotient(toInteger(part.coincident[1]), b);
    }

    static void finishJoint(const Options& options, const PixelTypeList& types, const Part& part, bool isKnown,
                            Result& result)
    {
        if (!isKnown) {
            result.MI = result.NMI = nan;
            return;
        }
        if (part.joint.getTotal() != part.nbPairs) {
            fail("the pixels that entered in this pass are not those of the pass before");
        }
        std::vector<std::uint64_t> both(std::size_t{options.bins} * options.bins);
        std::vector<std::uint64_t> first(options.bins);
        std::vector<std::uint64_t> second(options.bins);
        const Bins bins[2] = {{part.min[0], part.max[0], options.bins}, {part.min[1], part.max[1], options.bins}};
        for (const ValueCounts::Entry& entry : part.joint.getEntries()) {
            const bool isBinned = part.isSecondPass;
            const std::uint32_t a =
                isBinned ? entry.key / options.bins : bins[0].find(valueOf(entry.key >> 8, types[0]));
            const std::uint32_t b =
                isBinned ? entry.key % options.bins : bins[1].find(valueOf(entry.key & 0xff, types[1]));
            both.at(std::size_t{a} * options.bins + b) += entry.count;
            first[a] += entry.count;
            second[b] += entry.count;
        }
        const auto n = static_cast<double>(part.nbPairs);
        const double entropies = getEntropy(first, n) + getEntropy(second, n);
        const double joint = getEntropy(both, n);
        result.MI = std::max(0.0, entropies - joint);
        result.NMI = joint > 0 ? entropies / joint : nan;
    }

    static double finishSimilarity(const Options& options, const Part& part, const ResultPlace& place)
    {
        const std::uint64_t border = 2 * SsimPlane::getRadius(options);
        const Position& begin = place.image.begin;
        const Position& end = place.image.end;
        const auto count = [&](std::uint64_t side) { return side > border ? side - border : 0; };
        std::uint64_t expected = count(end.x - begin.x) * count(end.y - begin.y);
        expected *= place.per == Per::Plan ? 1 : end.z - begin.z;
        expected *= place.per == Per::Image ? (end.c - begin.c) * (end.t - begin.t) : 1;
        if (part.nbWindows != expected) {
            fail("structural similarity looked at " + std::to_string(part.nbWindows) + " windows, but the image has " +
                 std::to_string(expected) + ": pieces need a margin of " + std::to_string(border / 2) +
                 " pixels in x and y, and must make up the whole image (or leave out ssim)");
        }
        if (part.nbCounting == 0 || part.nbInfinite != 0 || (options.nan == NanPolicy::Propagate && part.nbNaN != 0)) {
            return nan;
        }
        return roundQuotient(toInteger(part.similarity), part.nbCounting, SsimWindows::unit);
    }
};

const MeasureRegistration registration{&CompareModel::getMeasure()};

} // namespace

double checkComparison(const CompareOptions& options, const ImageView& image, const ImageView& image2)
{
    checkOptions(options);
    const ImageView images[] = {image, image2};
    const PieceCut pieces{CompareModel::getMeasure(), Per::Image, images, {}, {}, {}, 0};
    return getPeak(options, pieces.getTypes()[0]);
}

template <>
struct ModelOf<Compare>
{
    using Type = CompareModel;
};

template class State<Compare>;

Results<Comparison> compare(const ImageView& image, const ImageView& image2, const CompareOptions& options)
{
    return measure<Compare>(options, {image, image2}, options.mask);
}

} // namespace orlix::measures
