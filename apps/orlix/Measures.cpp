#include <orlix/Measures.hpp>

#include <orlix/Errors.hpp>
#include <orlix/GpuSupport.hpp>
#include <orlix/TiffFile.hpp>
#include <orlix/TiffWriter.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/AreaPercent2dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting2dMsr/Counting2dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Counting3dMsr/Counting3dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GlobalEntropyMsr2d/GlobalEntropyMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr/HistogramMaskMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr2d/HistogramMaskMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMaskMsr3d/HistogramMaskMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr2d/HistogramMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr3d/HistogramMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator2d/KernelDensityEstimator2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/KernelDensityEstimator3d/KernelDensityEstimator3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocatePixels2d/LocatePixels2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/LocateVoxels3d/LocateVoxels3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr3d/NormalizedCrossCorrelationMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ParaboloidImgFit2d/ParaboloidImgFit2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficient2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient3d/PearsonCorrelationCoefficient3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SeqProjectionImg/SeqProjectionImg.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr/StatsMaskMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr2d/StatsMaskMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMaskMsr3d/StatsMaskMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/VolumePercent3dMsr/VolumePercent3dMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/XProjection2d/XProjection2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/YProjection2d/YProjection2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/ZProjectionImg/ZProjectionImg.hpp>

#include <framework/core/Random.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace orlix::app
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::BaseImage;
using image::eImageBufferType;
using image::ePlanKind;

namespace
{

/// A binary image as the numbers 0 and 1; any other as it is.
Ptr<const BaseImage> asNumbers(const Ptr<const BaseImage>& image)
{
    if (image->getType() != eImageBufferType::eIBT_Binary || image->getGeometry().empty()) {
        return image;
    }
    return BaseImage::wrap(image->getRow(0), eImageBufferType::eIBT_UInt8, image->getGeometry(), image->getStrides(),
                           image);
}

/// A gapless image as 0 and 1: which of its pixels are not 0.
Ptr<const BaseImage> findNonZero(const BaseImage& image, eImageBufferType type)
{
    const image::ImageGeometry& size = image.getGeometry();
    auto set = BaseImage::create(type, size);
    if (size.empty()) {
        return set;
    }
    if (image.getType() == eImageBufferType::eIBT_Binary) {
        std::copy_n(image.getRow(0), size.nbPixels(), set->getRow(0));
    }
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (image.getType() == image::imageBufferTypeOf<T>) {
            const T* const pixels = reinterpret_cast<const T*>(image.getRow(0));
            std::transform(pixels, pixels + size.nbPixels(), set->getRow(0),
                           [](T pixel) { return static_cast<std::byte>(pixel != 0); });
        }
    });
    return set;
}

/// A gapless image of any integer type as a mask of 0 and 1.
Ptr<const BaseImage> asMask(const std::string& path, const BaseImage& image)
{
    if (image.getType() == eImageBufferType::eIBT_Float32) {
        throw FileError{path + ": a float32 image is no mask: convert it to an integer type"};
    }
    return findNonZero(image, eImageBufferType::eIBT_UInt8);
}

/// The image of a command and its mask, if it has one, with what a report says of them.
struct Inputs
{
    /// A binary image stays one where the measure knows them.
    explicit Inputs(const Options& options, bool takesBinary = false)
    {
        const TiffFile file{options.image, options.pages};
        image = readPixels(file, options.image);
        image = takesBinary ? image : asNumbers(image);
        if (options.binary) {
            image = findNonZero(*image, eImageBufferType::eIBT_Binary);
        }
        report.images.emplace_back("image", describeImage(options.image, file.getType(), file.getGeometry()));
        if (!options.image2.empty()) {
            image2 = asNumbers(readOther(options, options.image2, "image2"));
        }
        if (!options.mask.empty()) {
            mask = asMask(options.mask, *readOther(options, options.mask, "mask"));
        }
    }

    Ptr<const BaseImage> readPixels(const TiffFile& file, const std::string& path)
    {
        auto pixels = file.read();
        if (!file.getDamage().empty()) {
            report.notes.push_back(path + ": its pixels may be damaged (" + file.getDamage() + ")");
        }
        return pixels;
    }

    /// Another image, which has the size of the first.
    Ptr<const BaseImage> readOther(const Options& options, const std::string& path, const std::string& role)
    {
        const TiffFile file{path, options.pages};
        const image::ImageGeometry& size = image->getGeometry();
        if (!(file.getGeometry() == size)) {
            throw FileError{path + ": the " + (role == "mask" ? "mask" : "second image") + " has " +
                            toString(file.getGeometry()) + ", but " + options.image + " has " + toString(size) +
                            ": both need the same size"};
        }
        report.images.emplace_back(role, describeImage(path, file.getType(), size));
        return readPixels(file, path);
    }

    Ptr<const BaseImage> image;
    Ptr<const BaseImage> image2; ///< null: none
    Ptr<const BaseImage> mask;   ///< null: none
    Report report;
};

/// The fields of a record, of any class that has such.
constexpr auto fieldsOf = [](const auto& record) { return toJson(record); };

/// One row per element of a collection, with the coordinates of its plan or volume before its fields.
template <class Collection, class Fields = decltype(fieldsOf)>
std::vector<Json> listResults(const Collection& collection, ePlanKind kind, Fields fields = fieldsOf)
{
    std::vector<Json> rows;
    for (std::size_t i = 0; i < collection.size(); ++i) {
        const image::PlanIndex& plan = collection.getPlan(i);
        Json row = Json::object();
        if (kind == ePlanKind::ePK_Plan2d) {
            row["z"] = plan.z;
        }
        row["c"] = plan.c;
        row["t"] = plan.t;
        row.update(fields(*collection.getElement(i)));
        rows.push_back(std::move(row));
    }
    return rows;
}

/// Measures the plans of an image or, if `--per` says so, its volumes.
template <class Plans, class Volumes>
Report reportParts(const Options& options, Report report, const std::string& ofPlans, Plans plans,
                   const std::string& ofVolumes, Volumes volumes)
{
    if (options.per == "volume") {
        report.measure = ofVolumes;
        report.results = listResults(*volumes(), ePlanKind::ePK_Volume3d);
    } else {
        report.measure = ofPlans;
        report.results = listResults(*plans(), ePlanKind::ePK_Plan2d);
    }
    return report;
}

/// Measures the whole image or, if `--per` says so, its plans or volumes. `name` is the measure of the whole image.
template <class Whole, class Plans, class Volumes>
Report reportPer(const Options& options, Report report, const std::string& name, Whole whole, Plans plans,
                 Volumes volumes)
{
    if (!options.per.empty() && options.per != "image") {
        return reportParts(options, std::move(report), name + "2d", plans, name + "3d", volumes);
    }
    report.measure = name;
    report.results = {toJson(*whole())};
    return report;
}

/// Notes what holds of some results.
void note(Report& report, const std::string& text, std::size_t nbResults)
{
    if (nbResults != 0) {
        const std::size_t all = report.results.size();
        const std::string which =
            all == 1 ? "" : "in " + std::to_string(nbResults) + " of " + std::to_string(all) + " results, ";
        report.notes.push_back(report.images.front().second["path"].get<std::string>() + ": " + which + text);
    }
}

/// Notes where the formulas of the statistics give no number.
void noteNaN(Report& report)
{
    std::size_t nanSums = 0;
    std::size_t infiniteSums = 0;
    std::size_t nanDeviations = 0;
    std::size_t empty = 0;
    for (const Json& row : report.results) {
        empty += row["NbPixels"] == 0;
        if (row["NbPixels"] != 0) {
            nanSums += row["Sum"].is_null();
            infiniteSums += row["Sum"].is_string();
            nanDeviations += row["Sum"].is_number() && row["StdDev"].is_null();
        }
    }
    note(report, "no pixel is inside the mask: there is no mean, minimum or maximum", empty);
    note(report,
         "there are NaN pixels (or infinities of both signs): sum, mean and deviation are NaN, and the minimum and "
         "maximum depend on where the NaN lie",
         nanSums);
    note(report, "there are infinite pixels: the deviation is NaN", infiniteSums);
    note(report,
         "the deviation is NaN: the pixels are constant, or their spread is small compared with their distance from "
         "zero, and rounding made the variance negative",
         nanDeviations);
}

/// The pixels that each result covers: all, or those inside the mask.
std::vector<double> countPixels(const Options& options, const Inputs& inputs, std::size_t nbResults)
{
    if (!inputs.mask) {
        const auto pixels = static_cast<double>(inputs.image->getGeometry().nbPixels());
        return std::vector(nbResults, pixels / static_cast<double>(nbResults));
    }
    if (options.per != "plan" && options.per != "volume") {
        return {statsMsr(inputs.mask)->Sum};
    }
    const auto parts = options.per == "plan" ? multiSlice_statsMsr2d(inputs.mask) : multiSlice_statsMsr3d(inputs.mask);
    std::vector<double> pixels;
    for (std::size_t i = 0; i < parts->size(); ++i) {
        pixels.push_back(parts->getElement(i)->Sum);
    }
    return pixels;
}

/// Notes pixels that are in no class although nobody gave a range, and classes that are not those asked for.
void noteClasses(const Options& options, const Inputs& inputs, Report& report)
{
    std::size_t outside = 0;
    std::size_t otherWidths = 0;
    std::size_t otherNumbers = 0;
    const std::vector<double> pixels = countPixels(options, inputs, report.results.size());
    for (std::size_t i = 0; i < report.results.size(); ++i) {
        const Json& row = report.results[i];
        std::uint64_t counted = 0;
        for (const Json& frequency : row["Frequencies"]) {
            counted += frequency.get<std::uint64_t>();
        }
        outside += !options.min && static_cast<double>(counted) != pixels[i];
        otherWidths += options.binWidth && row["BinWidth"] != *options.binWidth;
        otherNumbers += options.classes && row["Frequencies"].size() != *options.classes;
    }
    note(report,
         "some pixels are in no class: NaN, which also narrow the range, or values that single precision rounds out of "
         "it",
         outside);
    note(report, "the classes do not have the --bin-width asked for (of integers they are at least 1 wide)",
         otherWidths);
    note(report, "there are not as many --classes as asked for (of integers they are at least 1 wide)", otherNumbers);
}

/// The same for the entropy, whose histograms are not seen: from the ranges of the plans.
void noteEntropyClasses(const Options& options, const Ptr<const BaseImage>& image, Report& report)
{
    if (!options.binWidth && !options.classes) {
        return;
    }
    const bool isFloat = image->getType() == eImageBufferType::eIBT_Float32;
    std::size_t replaced = 0;
    const auto ranges = multiSlice_statsMsr2d(image);
    for (std::size_t i = 0; i < ranges->size(); ++i) {
        const double min = options.min.value_or(ranges->getElement(i)->Min);
        const double max = options.max.value_or(ranges->getElement(i)->Max);
        const double span = max - min + (isFloat ? 0 : 1);
        const double width = options.binWidth ? *options.binWidth : span / *options.classes;
        constexpr double mostClasses = std::numeric_limits<std::int32_t>::max();
        replaced +=
            (!isFloat && width < 1) || width < std::numeric_limits<double>::epsilon() || span / width > mostClasses;
    }
    note(report, "the classes are not those asked for (of integers they are at least 1 wide)", replaced);
}

eProjStatType findStatistic(const std::string& name)
{
    constexpr const char* names[] = {"max", "mean", "median", "min", "stddev", "sum", "var"}; // as enumerated
    const auto* const found = std::find(std::begin(names), std::end(names), name);
    return static_cast<eProjStatType>(found - std::begin(names));
}

/// A profile of each plan of the image.
void projectPlans(const Options& options, const Ptr<const BaseImage>& image, Report& report)
{
    report.measure = options.axis + "Projection2d";
    const image::PlanRange plans{image->getGeometry(), ePlanKind::ePK_Plan2d};
    for (std::size_t i = 0; i < plans.size(); ++i) {
        const auto plan = image->getSubImage(plans[i], ePlanKind::ePK_Plan2d);
        const auto profile = (options.axis == "x" ? xProjection2d : yProjection2d)(plan, findStatistic(options.stat));
        Json row{{"z", plans[i].z}, {"c", plans[i].c}, {"t", plans[i].t}};
        row.update(toJson(*profile));
        report.results.push_back(std::move(row));
    }
}

/// The pixels of a projection that its type could not hold. `inFloat` makes the projection again; only where pixels are
/// at the ends of a type that may be too small.
template <class InFloat>
std::size_t countLimited(const BaseImage& output, eImageBufferType inputType, eProjStatType statistic, InFloat inFloat)
{
    const image::ValueRange range = image::getValueRange(output.getType());
    const image::ValueRange input = image::getValueRange(inputType);
    const bool isLarge = statistic == eProjStatType::ePST_Sum || statistic == eProjStatType::ePST_Var ||
                         statistic == eProjStatType::ePST_StdDev;
    if (output.getType() == eImageBufferType::eIBT_Float32 ||
        (!isLarge && range.lowest <= input.lowest && input.highest <= range.highest)) {
        return 0;
    }
    const std::size_t size = output.getGeometry().nbPixels();
    std::size_t limited = 0;
    image::forEachPixelType([&]<class T>(std::type_identity<T>) {
        if (output.getType() != image::imageBufferTypeOf<T>) {
            return;
        }
        const T* const pixels = reinterpret_cast<const T*>(output.getRow(0));
        if (std::any_of(pixels, pixels + size, [&](T x) { return x == range.lowest || x == range.highest; })) {
            const auto wide = inFloat();
            const auto* const numbers = reinterpret_cast<const float*>(wide->getRow(0));
            limited = static_cast<std::size_t>(std::count_if(numbers, numbers + size, [&](float x) {
                return x <= static_cast<float>(range.lowest) - 0.5f || x >= static_cast<float>(range.highest) + 0.5f;
            }));
        }
    });
    return limited;
}

/// The image's projection along z or the time, written to a file.
void projectStack(const Options& options, const Ptr<const BaseImage>& image, Report& report)
{
    const bool alongZ = options.axis == "z";
    report.measure = alongZ ? "zProjectionImg" : "seqProjectionImg";
    image::ImageGeometry size = image->getGeometry();
    (alongZ ? size.z : size.t) = 1;
    const auto type = image::findImageBufferType(options.outType).value_or(image->getType());
    const auto output = BaseImage::create(type, size);
    const auto statistic = findStatistic(options.stat);
    if (alongZ) {
        zProjectionImg(image, statistic, output);
    } else {
        seqProjectionImg(image, statistic, output);
    }
    const std::size_t limited = countLimited(*output, image->getType(), statistic, [&] {
        const auto wide = BaseImage::create(eImageBufferType::eIBT_Float32, size);
        return alongZ ? zProjectionImg(image, statistic, wide) : seqProjectionImg(image, statistic, wide);
    });
    if (limited != 0) {
        report.notes.push_back(options.output + ": " + std::to_string(limited) + " of " +
                               std::to_string(size.nbPixels()) + " pixels were limited to the range of " +
                               image::getName(type) + ": pass --out-type float32 to keep them");
    }
    writeTiff(options.output, *output);
    Json row{{"output", options.output}};
    row.update(describeImage(options.output, type, size));
    row.erase("path");
    report.results = {row};
}

/// The histogram parameters that the options make; null where the library's own rule is to hold.
Ptr<const HistoMsrParams> makeParams(const Options& options, const BaseImage& image)
{
    if (!options.min && !options.binWidth && !options.classes) {
        return nullptr;
    }
    auto params = makePtr<HistoMsrParams>();
    params->UseBinWidth = options.binWidth.has_value();
    params->BinWidth = options.binWidth.value_or(0);
    params->NbClasses = options.classes.value_or(256);
    if (options.min) {
        const auto [lowest, highest] = image::getValueRange(image.getType());
        if (*options.min < lowest || *options.max > highest) {
            throw UsageError{options.image + ": --min and --max of " + image::getName(image.getType()) +
                             " pixels lie from " + toJson(lowest).dump() + " to " + toJson(highest).dump()};
        }
        params->Min = *options.min;
        params->Max = *options.max;
        params->MinMaxDefinition = attr::eMinMaxDefinition::eMMD_UserDefinedMinMax;
    }
    return params;
}

} // namespace

Report runInfo(const Options& options)
{
    if (options.gpu) {
        return {"info", {}, {describeGpu()}};
    }
    const TiffFile file{options.image, options.pages};
    Json row = describeImage(options.image, file.getType(), file.getGeometry());
    row.erase("path");
    row["bytes"] = file.getGeometry().nbPixels() * image::getPixelSize(file.getType());
    return {"info", {{"image", describeImage(options.image, file.getType(), file.getGeometry())}}, {row}};
}

Report runStats(const Options& options)
{
    const Inputs inputs{options};
    const auto image = options.gpu ? placeOnGpu(inputs.image) : inputs.image;
    const auto& mask = inputs.mask;
    Report report =
        mask ? reportPer(
                   options, inputs.report, "statsMaskMsr", [&] { return statsMaskMsr(image, mask); },
                   [&] { return multiSlice_statsMaskMsr2d(image, mask); },
                   [&] { return multiSlice_statsMaskMsr3d(image, mask); })
             : reportPer(
                   options, inputs.report, "statsMsr", [&] { return statsMsr(image); },
                   [&] { return multiSlice_statsMsr2d(image); }, [&] { return multiSlice_statsMsr3d(image); });
    noteNaN(report);
    return report;
}

Report runHistogram(const Options& options)
{
    const Inputs inputs{options};
    const auto& image = inputs.image;
    const auto& mask = inputs.mask;
    const auto params = makeParams(options, *image);
    Report report =
        mask ? reportPer(
                   options, inputs.report, "histogramMaskMsr", [&] { return histogramMaskMsr(image, mask, params); },
                   [&] { return multiSlice_histogramMaskMsr2d(image, mask, params); },
                   [&] { return multiSlice_histogramMaskMsr3d(image, mask, params); })
             : reportPer(
                   options, inputs.report, "histogramMsr", [&] { return histogramMsr(image, params); },
                   [&] { return multiSlice_histogramMsr2d(image, params); },
                   [&] { return multiSlice_histogramMsr3d(image, params); });
    noteClasses(options, inputs, report);
    return report;
}

Report runEntropy(const Options& options)
{
    Inputs inputs{options};
    Ptr<PlanIndexedHistoMsrParams> planParams;
    if (const auto params = makeParams(options, *inputs.image)) {
        planParams = makePtr<PlanIndexedHistoMsrParams>();
        const image::PlanRange plans{inputs.image->getGeometry(), ePlanKind::ePK_Plan2d};
        for (std::size_t i = 0; i < plans.size(); ++i) {
            planParams->insert(plans[i], makePtr<HistoMsrParams>(*params));
        }
    }
    inputs.report.measure = "globalEntropyMsr2d";
    inputs.report.results =
        listResults(*multiSlice_globalEntropyMsr2d(inputs.image, planParams), ePlanKind::ePK_Plan2d);
    noteEntropyClasses(options, inputs.image, inputs.report);
    return inputs.report;
}

Report runProject(const Options& options)
{
    const bool isProfile = options.axis == "x" || options.axis == "y";
    if (!isProfile) {
        checkOutputPath(options.output, options.image);
    }
    Inputs inputs{options};
    (isProfile ? projectPlans : projectStack)(options, inputs.image, inputs.report);
    return inputs.report;
}

Report runCount(const Options& options)
{
    const Inputs inputs{options};
    Report report = reportParts(
        options, inputs.report, "counting2dMsr", [&] { return multiSlice_counting2dMsr(inputs.image); },
        "counting3dMsr", [&] { return multiSlice_counting3dMsr(inputs.image); });
    for (Json& row : report.results) {
        row["Count"] = row["Value"];
        row.erase("Value");
    }
    const auto labels =
        options.per == "volume" ? multiSlice_statsMsr3d(inputs.image) : multiSlice_statsMsr2d(inputs.image);
    std::size_t withoutBackground = 0;
    for (std::size_t i = 0; i < labels->size(); ++i) {
        withoutBackground += labels->getElement(i)->Min != 0;
    }
    note(report, "the lowest label is not 0: it was taken for the background, and not counted", withoutBackground);
    return report;
}

Report runNcc(const Options& options)
{
    const Inputs inputs{options};
    return reportParts(
        options, inputs.report, "normalizedCrossCorrelationMsr2d",
        [&] { return multiSlice_normalizedCrossCorrelationMsr2d(inputs.image, inputs.image2); },
        "normalizedCrossCorrelationMsr3d",
        [&] { return multiSlice_normalizedCrossCorrelationMsr3d(inputs.image, inputs.image2); });
}

Report runPearson(const Options& options)
{
    const Inputs inputs{options};
    Report report = reportParts(
        options, inputs.report, "pearsonCorrelationCoefficient2d",
        [&] { return multiSlice_pearsonCorrelationCoefficient2d(inputs.image, inputs.image2); },
        "pearsonCorrelationCoefficient3d",
        [&] { return multiSlice_pearsonCorrelationCoefficient3d(inputs.image, inputs.image2); });
    // The library's value is the number of pixels times r.
    const ePlanKind kind = options.per == "volume" ? ePlanKind::ePK_Volume3d : ePlanKind::ePK_Plan2d;
    const auto pixels = static_cast<double>(getSubGeometry(inputs.image->getGeometry(), kind).nbPixels());
    for (Json& row : report.results) {
        row["r"] = row["PearsonCC"].is_number() ? toJson(row["PearsonCC"].get<double>() / pixels) : row["PearsonCC"];
    }
    return report;
}

Report runSimilarity(const Options& options)
{
    Inputs inputs{options};
    if (inputs.image->getType() != inputs.image2->getType()) {
        throw FileError{options.image2 + ": it is " + image::getName(inputs.image2->getType()) + ", but " +
                        options.image + " is " + image::getName(inputs.image->getType()) +
                        ": both need the same pixel type"};
    }
    inputs.report.measure = "similarityMsr";
    const auto stats = similarityMsr(inputs.image, inputs.image2);
    if (options.peak && stats->MSE != 0) {
        stats->PSNR = 20 * std::log10(*options.peak / std::sqrt(stats->MSE));
    }
    inputs.report.results = {toJson(*stats)};
    return inputs.report;
}

Report runNoise(const Options& options)
{
    Inputs inputs{options};
    inputs.report.measure = "gaussianNoiseMsr";
    inputs.report.results = {toJson(*gaussianNoiseMsr(inputs.image))};
    return inputs.report;
}

Report runKde(const Options& options)
{
    const Inputs inputs{options};
    auto policy = makePtr<KDEBandwidthPolicy>();
    if (options.bandwidth == "scott") {
        policy->Rule = attr::eKDEBandwidth::eKB_Scott;
    } else if (!options.bandwidth.empty() && options.bandwidth != "silverman") {
        policy->Rule = attr::eKDEBandwidth::eKB_Fixed;
        policy->Bandwidth = std::strtod(options.bandwidth.c_str(), nullptr);
    }
    const unsigned samples = options.samples.value_or(*InOptKDENbSamples::getDefault());
    core::random::setSeed(options.seed.value_or(core::random::defaultSeed));
    return reportParts(
        options, inputs.report, "kernelDensityEstimator2d",
        [&] { return multiSlice_kernelDensityEstimator2d(inputs.image, samples, policy); }, "kernelDensityEstimator3d",
        [&] { return multiSlice_kernelDensityEstimator3d(inputs.image, samples, policy); });
}

Report runPercent(const Options& options)
{
    const Inputs inputs{options, true};
    if (!image::binaryOrLabelTypes.contains(inputs.image->getType())) {
        throw FileError{
            options.image + ": it is " + image::getName(inputs.image->getType()) +
            ", and percent takes uint8, uint16 or uint32 labels, or a binary image: pass --binary to read any "
            "pixel that is not 0 as set"};
    }
    // A null mask is none.
    return reportParts(
        options, inputs.report, "areaPercent2dMsr",
        [&] { return multiSlice_areaPercent2dMsr(inputs.image, inputs.mask); }, "volumePercent3dMsr",
        [&] { return multiSlice_volumePercent3dMsr(inputs.image, inputs.mask); });
}

Report runLocate(const Options& options)
{
    const Inputs inputs{options, true};
    const auto& image = inputs.image;
    if (image->getType() != eImageBufferType::eIBT_Binary) {
        throw FileError{options.image + ": it is " + image::getName(image->getType()) +
                        ", and locate takes a binary image: pass --binary to read any pixel that is not 0 as set"};
    }
    const unsigned limit = options.limit.value_or(std::numeric_limits<unsigned>::max()); // the library's own may wrap
    return reportParts(
        options, inputs.report, "locatePixels2d", [&] { return multiSlice_locatePixels2d(image, limit); },
        "locateVoxels3d", [&] { return multiSlice_locateVoxels3d(image, limit); });
}

Report runParaboloid(const Options& options)
{
    Inputs inputs{options};
    inputs.report.measure = "paraboloidImgFit2d";
    // Apart from the plan, which has a c as well.
    const auto apart = [](const ParaboloidParams3d& fit) { return Json{{"Coefficients", toJson(fit)}}; };
    inputs.report.results =
        listResults(*multiSlice_paraboloidImgFit2d(inputs.image, inputs.mask), ePlanKind::ePK_Plan2d, apart);
    return inputs.report;
}

} // namespace orlix::app
