#include <orlix/Measures.hpp>

#include <files/ImageFile.hpp>
#include <files/OutputFile.hpp>
#include <files/tiff/TiffWriter.hpp>
#include <orlix/Errors.hpp>
#include <orlix/GpuSupport.hpp>
#include <orlix/Inputs.hpp>
#include <orlix/Progress.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>
#include <framework/attribute/HistogramData.hpp>
#include <framework/attribute/KDEDataSet.hpp>
#include <framework/attribute/Projection.hpp>
#include <framework/attribute/StatsResult.hpp>
#include <framework/core/Random.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>

namespace orlix::app
{

using namespace imaproc;
using files::ImageFacts;
using image::BaseImage;
using image::eImageBufferType;
using image::ePlanKind;

namespace
{

/// A result with the place of its plan or volume in the whole image before it.
Json placeResult(const image::PlanIndex& plan, ePlanKind kind, const files::Position& origin,
                 const data::BaseDataItem& result)
{
    Json row = Json::object();
    if (kind == ePlanKind::ePK_Plan2d) {
        row["z"] = plan.z + origin.z;
    }
    row["c"] = plan.c + origin.c;
    row["t"] = plan.t + origin.t;
    row["result"] = toJson(result);
    return row;
}

/// One row per element of a collection, with the coordinates of its plan or volume before its fields.
std::vector<Json> listResults(const attr::BasePlanIndexedColl& collection, ePlanKind kind,
                              const files::Position& origin)
{
    std::vector<Json> rows;
    for (std::size_t i = 0; i < collection.size(); ++i) {
        rows.push_back(placeResult(collection.getPlan(i), kind, origin, *collection.getElement(i)));
    }
    return rows;
}

/// Its fields instead of the record of every row.
void spreadResults(Report& report)
{
    for (Json& row : report.results) {
        const Json result = row["result"];
        row.erase("result");
        row.update(result);
    }
}

/// Without a name from the library, whose measures are on the list, the linker would leave it out.
[[maybe_unused]] const auto volatile linked = &glbmsr::gaussianNoiseMsr;

double countAllBytes(const Inputs& inputs)
{
    return countBytes(*inputs.image) + (inputs.image2 ? countBytes(*inputs.image2) : 0);
}

/// The form of a measure that the options ask for; that of the whole image where each plan or volume is one.
const MeasureForm& chooseForm(const Measure& measure, const Options& options)
{
    const bool isMasked = !options.masks.empty();
    for (const MeasureForm& form : measure.forms) {
        const bool covers = options.per.empty() || form.per == options.per || isOfWholeImages(measure);
        if (covers && (isMasked ? form.takesMask() : !form.needsMask())) {
            return form;
        }
    }
    throw UsageError{"there is no " + measure.verb + " --per " + options.per + (isMasked ? " under a mask" : "")};
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

/// The form of a measure that takes one image, without a mask.
const MeasureForm& findForm(const Measure& measure, const std::string& per)
{
    return *std::find_if(measure.forms.begin(), measure.forms.end(),
                         [&](const MeasureForm& form) { return form.per == per && !form.needsMask(); });
}

/// The statistics of an image, of each of its plans, or of its volumes.
std::vector<Ptr<const attr::StatsResult>> measureStatistics(const Options& options, const Ptr<const BaseImage>& image,
                                                            const std::string& per)
{
    const std::vector<Measure> measures = MeasureList::getInstance().getMeasures();
    const auto stats =
        std::find_if(measures.begin(), measures.end(), [](const Measure& each) { return each.verb == "stats"; });
    const Ptr<BaseProcessor> processor = findForm(*stats, per).create();
    processor->getAttributes().front()->setImage(image);
    Watch{options.image.name, countBytes(*image), 1, options.quiet}.run(processor);
    const attr::BaseAttribute& output = *processor->getAttributes().back();
    const attr::BasePlanIndexedColl* const parts = output.getCollection();
    if (parts == nullptr) {
        return {boost::static_pointer_cast<const attr::StatsResult>(output.shareRecord())};
    }
    std::vector<Ptr<const attr::StatsResult>> results;
    for (std::size_t i = 0; i < parts->size(); ++i) {
        results.push_back(boost::static_pointer_cast<const attr::StatsResult>(parts->getStorage(parts->getPlan(i))));
    }
    return results;
}

/// The pixels that each result covers: all, or those inside the mask.
std::vector<double> countPixels(const Options& options, const Inputs& inputs, std::size_t nbResults)
{
    if (!inputs.mask) {
        const auto pixels = static_cast<double>(inputs.image->getGeometry().nbPixels());
        return std::vector(nbResults, pixels / static_cast<double>(nbResults));
    }
    const bool isOfParts = options.per == "plan" || options.per == "volume";
    std::vector<double> pixels;
    for (const auto& part : measureStatistics(options, inputs.mask, isOfParts ? options.per : "image")) {
        pixels.push_back(part->Sum);
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
        outside += !options.has("min") && static_cast<double>(counted) != pixels[i];
        otherWidths += options.has("bin-width") && row["BinWidth"] != *options.number("bin-width");
        otherNumbers +=
            options.has("classes") && static_cast<double>(row["Frequencies"].size()) != *options.number("classes");
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
    if (!options.has("bin-width") && !options.has("classes")) {
        return;
    }
    const bool isFloat = image->getType() == eImageBufferType::eIBT_Float32;
    std::size_t replaced = 0;
    for (const auto& range : measureStatistics(options, image, "plan")) {
        const double min = options.number("min").value_or(range->Min);
        const double max = options.number("max").value_or(range->Max);
        const double span = max - min + (isFloat ? 0 : 1);
        const double width = options.number("bin-width").value_or(span / options.number("classes").value_or(1));
        constexpr double mostClasses = std::numeric_limits<std::int32_t>::max();
        replaced +=
            (!isFloat && width < 1) || width < std::numeric_limits<double>::epsilon() || span / width > mostClasses;
    }
    note(report, "the classes are not those asked for (of integers they are at least 1 wide)", replaced);
}

/// The form of the projection along the axis of the options.
const MeasureForm& findProjection(const Measure& measure, const Options& options)
{
    const std::string name = options.axis == "t" ? "seq" : options.axis;
    return *std::find_if(measure.forms.begin(), measure.forms.end(),
                         [&](const MeasureForm& form) { return form.function.starts_with(name); });
}

/// Hands the images to a processor: all of them, or what lies in a plan or volume.
void setImages(BaseProcessor& processor, const MeasureForm& form, const Options& options, const Inputs& inputs,
               const std::optional<std::pair<image::PlanIndex, ePlanKind>>& part = {})
{
    bool isFirst = true;
    for (const MeasureInput& input : form.inputs) {
        auto image = input.isMask ? inputs.mask : isFirst ? inputs.image : inputs.image2;
        isFirst = false;
        if (image && part) {
            image = image->getSubImage(part->first, part->second);
        }
        processor.getAttribute(input.name).setImage(options.gpu ? placeOnGpu(image) : image);
    }
}

/// A result for each plan or volume, of a form that knows single images only.
template <class Prepare>
void measureParts(const MeasureForm& form, const Options& options, const Inputs& inputs, ePlanKind kind,
                  Prepare prepare, Report& report)
{
    const image::PlanRange parts{inputs.image->getGeometry(), kind};
    const auto processor = form.create();
    Watch watch{options.image.name, countAllBytes(inputs), parts.size(), options.quiet};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        setImages(*processor, form, options, inputs, std::pair{parts[i], kind});
        prepare(*processor);
        watch.run(processor);
        report.results.push_back(
            placeResult(parts[i], kind, inputs.origin, *processor->getAttributes().back()->getRecord()));
    }
}

/// The pixels of a projection that its type could not hold. `inFloat` makes the projection again; only where pixels are
/// at the ends of a type that may be too small.
template <class InFloat>
std::size_t countLimited(const BaseImage& output, eImageBufferType inputType, const std::string& statistic,
                         InFloat inFloat)
{
    const image::ValueRange range = image::getValueRange(output.getType());
    const image::ValueRange input = image::getValueRange(inputType);
    const bool isLarge = statistic == "sum" || statistic == "var" || statistic == "stddev";
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

/// What a projection keeps of what the file said: not the scale of numbers that are no values of pixels.
ImageFacts describeProjection(const Options& options, const ImageFacts& facts)
{
    ImageFacts kept = facts;
    const std::string statistic = options.text("stat");
    if (statistic == "stddev" || statistic == "var" || statistic == "sum") {
        kept.scale = {};
    }
    return kept;
}

/// The image's projection along z or the time, written to a file plan by plan.
void projectStack(const MeasureForm& form, const Options& options, const Inputs& inputs, Report& report)
{
    const Ptr<const BaseImage>& image = inputs.image;
    const bool isAlongZ = options.axis == "z";
    const ePlanKind kind = isAlongZ ? ePlanKind::ePK_Volume3d : ePlanKind::ePK_Sequence2d;
    image::ImageGeometry size = image->getGeometry();
    (isAlongZ ? size.z : size.t) = 1;
    const image::ImageGeometry planSize{size.x, size.y};
    const auto type = image::findImageBufferType(options.outType).value_or(image->getType());
    Watch watch{options.image.name, countBytes(*image), size.z * size.c * size.t, options.quiet};
    const auto project = [&](const Ptr<BaseImage>& output, const image::PlanIndex& plan) {
        const auto processor = form.create();
        processor->getAttributes().front()->setImage(image->getSubImage(plan, kind));
        processor->getAttributes().back()->setOutputImage(output);
        processor->setParameter("stat", options.text("stat"));
        watch.run(processor);
        return output;
    };
    files::TiffWriter pages{options.output, type, size, describeProjection(options, inputs.facts)};
    const std::size_t together = pages.getNbChannels();
    std::size_t limited = 0;
    const image::PlanRange plans{{size.x, size.y, size.c / together, size.z, size.t}, ePlanKind::ePK_Plan2d};
    for (std::size_t i = 0; i < plans.size(); ++i) { // c fastest
        const auto page = BaseImage::create(type, {size.x, size.y, 1, together});
        for (unsigned k = 0; k < together; ++k) {
            const image::PlanIndex plan{plans[i].c, static_cast<unsigned>(plans[i].z * together) + k, plans[i].t};
            const auto output = project(page->getSubImage({0, k, 0}, ePlanKind::ePK_Plan2d), plan);
            limited += countLimited(*output, image->getType(), options.text("stat"), [&] {
                return project(BaseImage::create(eImageBufferType::eIBT_Float32, planSize), plan);
            });
        }
        pages.write(*page);
    }
    pages.keep();
    if (limited != 0) {
        report.notes.push_back(options.output + ": " + std::to_string(limited) + " of " +
                               std::to_string(size.nbPixels()) + " pixels were limited to the range of " +
                               image::getName(type) + ": pass --out-type float32 to keep them");
    }
    Json row{{"output", options.output}};
    row.update(describeImage(options.output, image::getName(type), size));
    row.erase("path");
    report.results = {row};
}

/// The histogram parameters that the options make; null where the library's own rule is to hold.
Ptr<const attr::HistoMsrParams> makeParams(const Options& options, const BaseImage& image)
{
    if (!options.has("min") && !options.has("bin-width") && !options.has("classes")) {
        return nullptr;
    }
    auto params = makePtr<attr::HistoMsrParams>();
    params->UseBinWidth = options.has("bin-width");
    params->BinWidth = options.number("bin-width").value_or(0);
    params->NbClasses = static_cast<std::uint32_t>(options.number("classes").value_or(256));
    if (options.has("min")) {
        const auto [lowest, highest] = image::getValueRange(image.getType());
        params->Min = *options.number("min");
        params->Max = *options.number("max");
        if (params->Min < lowest || params->Max > highest) {
            throw UsageError{options.image.name + ": --min and --max of " + image::getName(image.getType()) +
                             " pixels lie from " + toJson(lowest).dump() + " to " + toJson(highest).dump()};
        }
        params->MinMaxDefinition = attr::eMinMaxDefinition::eMMD_UserDefinedMinMax;
    }
    return params;
}

} // namespace

Report runInfo(const Options& options)
{
    return options.gpu ? Report{"info", {}, {describeGpu()}} : describeFile(options);
}

namespace
{

void setBins(BaseProcessor& processor, const Options& options, const Inputs& inputs)
{
    processor.set<attr::InOptHistoMsrParams>(makeParams(options, *inputs.image));
}

/// Of the entropy: the same for every plan.
void setBinsOfPlans(BaseProcessor& processor, const Options& options, const Inputs& inputs)
{
    if (const auto params = makeParams(options, *inputs.image)) {
        auto planParams = makePtr<attr::PlanIndexedHistoMsrParams>();
        const image::PlanRange plans{inputs.image->getGeometry(), ePlanKind::ePK_Plan2d};
        for (std::size_t i = 0; i < plans.size(); ++i) {
            planParams->insert(plans[i], makePtr<attr::HistoMsrParams>(*params));
        }
        processor.set<attr::InOptPIHistoMsrParams>(planParams);
    }
}

void setSample(BaseProcessor& processor, const Options& options, const Inputs&)
{
    auto policy = makePtr<attr::KDEBandwidthPolicy>();
    if (const std::string rule = options.text("bandwidth"); rule == "scott") {
        policy->Rule = attr::eKDEBandwidth::eKB_Scott;
    } else if (!rule.empty() && rule != "silverman") {
        policy->Rule = attr::eKDEBandwidth::eKB_Fixed;
        policy->Bandwidth = *options.number("bandwidth");
    }
    processor.set<attr::InOptKDEBandwidthPolicy>(policy);
    if (options.has("samples")) {
        processor.setParameter("samples", *options.number("samples"));
    }
    core::random::setSeed(options.seed.value_or(core::random::defaultSeed));
}

void checkTypes(BaseProcessor&, const Options& options, const Inputs& inputs)
{
    if (inputs.image->getType() != inputs.image2->getType()) {
        throw FileError{options.image2.name + ": it is " + image::getName(inputs.image2->getType()) + ", but " +
                        options.image.name + " is " + image::getName(inputs.image->getType()) +
                        ": both need the same pixel type"};
    }
}

void checkLabels(BaseProcessor&, const Options& options, const Inputs& inputs)
{
    if (!image::binaryOrLabelTypes.contains(inputs.image->getType())) {
        throw FileError{
            options.image.name + ": it is " + image::getName(inputs.image->getType()) +
            ", and percent takes uint8, uint16 or uint32 labels, or a binary image: pass --binary to read any "
            "pixel that is not 0 as set"};
    }
}

void setLimit(BaseProcessor& processor, const Options& options, const Inputs& inputs)
{
    if (inputs.image->getType() != eImageBufferType::eIBT_Binary) {
        throw FileError{options.image.name + ": it is " + image::getName(inputs.image->getType()) +
                        ", and locate takes a binary image: pass --binary to read any pixel that is not 0 as set"};
    }
    // The library's own may wrap.
    processor.setParameter("limit", options.number("limit").value_or(std::numeric_limits<unsigned>::max()));
}

void finishStats(const Options&, const Inputs&, Report& report)
{
    noteNaN(report);
}

void finishEntropy(const Options& options, const Inputs& inputs, Report& report)
{
    noteEntropyClasses(options, inputs.image, report);
}

void finishCount(const Options& options, const Inputs& inputs, Report& report)
{
    for (Json& row : report.results) {
        row["Count"] = row["Value"];
        row.erase("Value");
    }
    std::size_t withoutBackground = 0;
    for (const auto& part : measureStatistics(options, inputs.image, options.per == "volume" ? "volume" : "plan")) {
        withoutBackground += part->Min != 0;
    }
    note(report, "the lowest label is not 0: it was taken for the background, and not counted", withoutBackground);
}

/// The library's value is the number of pixels times r.
void finishPearson(const Options& options, const Inputs& inputs, Report& report)
{
    const ePlanKind kind = options.per == "volume" ? ePlanKind::ePK_Volume3d : ePlanKind::ePK_Plan2d;
    const auto pixels = static_cast<double>(getSubGeometry(inputs.image->getGeometry(), kind).nbPixels());
    for (Json& row : report.results) {
        row["r"] = row["PearsonCC"].is_number() ? toJson(row["PearsonCC"].get<double>() / pixels) : row["PearsonCC"];
    }
}

void finishSimilarity(const Options& options, const Inputs&, Report& report)
{
    for (Json& row : report.results) {
        if (options.peak && row["MSE"].is_number() && row["MSE"] != 0.0) {
            row["PSNR"] = toJson(20 * std::log10(*options.peak / std::sqrt(row["MSE"].get<double>())));
        }
    }
}

/// Positions are those of the whole image.
void finishLocate(const Options&, const Inputs& inputs, Report& report)
{
    const std::size_t origin[] = {inputs.origin.x, inputs.origin.y, inputs.origin.z};
    for (Json& row : report.results) {
        for (Json& at : row["Coordinates"]) {
            for (std::size_t axis = 0; axis < at.size(); ++axis) {
                at[axis] = at[axis].get<double>() + static_cast<double>(origin[axis]);
            }
        }
    }
}

/// The surface of the positions in the whole image: a (x - x0)^2 + ... with all brackets opened.
void finishFit(const Options&, const Inputs& inputs, Report& report)
{
    const auto x0 = static_cast<double>(inputs.origin.x);
    const auto y0 = static_cast<double>(inputs.origin.y);
    for (Json& row : report.results) {
        Json& fit = row["Coefficients"];
        if ((x0 == 0 && y0 == 0) ||
            !std::all_of(fit.begin(), fit.end(), [](const Json& each) { return each.is_number(); })) {
            continue;
        }
        const double a = fit["a"], b = fit["b"], c = fit["c"], d = fit["d"], e = fit["e"], f = fit["f"];
        fit["d"] = d - 2 * a * x0 - c * y0;
        fit["e"] = e - 2 * b * y0 - c * x0;
        fit["f"] = f + a * x0 * x0 + b * y0 * y0 + c * x0 * y0 - d * x0 - e * y0;
    }
}

/// Where a measure on files differs from what follows from its description.
struct Difference
{
    const char* verb;
    bool takesBinary = false; ///< a binary image stays one
    bool keepsApart = false;  ///< the fields stay an object of their own
    void (*prepare)(BaseProcessor&, const Options&, const Inputs&) = nullptr;
    void (*finish)(const Options&, const Inputs&, Report&) = nullptr;
};

constexpr Difference differences[] = {
    {.verb = "stats", .finish = &finishStats},
    {.verb = "histogram", .prepare = &setBins, .finish = &noteClasses},
    {.verb = "entropy", .prepare = &setBinsOfPlans, .finish = &finishEntropy},
    {.verb = "kde", .prepare = &setSample},
    {.verb = "count", .finish = &finishCount},
    {.verb = "percent", .takesBinary = true, .prepare = &checkLabels},
    {.verb = "locate", .takesBinary = true, .prepare = &setLimit, .finish = &finishLocate},
    {.verb = "paraboloid", .keepsApart = true, .finish = &finishFit},
    {.verb = "pearson", .finish = &finishPearson},
    {.verb = "similarity", .prepare = &checkTypes, .finish = &finishSimilarity},
};

} // namespace

Report runMeasure(const Measure& measure, const Options& options)
{
    const auto* const found = std::find_if(std::begin(differences), std::end(differences),
                                           [&](const Difference& d) { return d.verb == measure.verb; });
    const Difference difference = found == std::end(differences) ? Difference{} : *found;
    const Inputs inputs{options, difference.takesBinary};
    const MeasureForm& form = chooseForm(measure, options);
    const auto prepare = [&](BaseProcessor& processor) {
        if (difference.prepare != nullptr) {
            difference.prepare(processor, options, inputs);
            return;
        }
        for (const attr::Parameter& parameter : measure.parameters) {
            const std::string option = parameter.info.option;
            if (options.has(option)) {
                processor.setParameter(option, parameter.info.enumerators.empty() ? data::Value{*options.number(option)}
                                                                                  : data::Value{options.text(option)});
            }
        }
    };
    Report report = inputs.report;
    report.measure = form.function;
    if (!options.per.empty() && options.per != form.per) {
        measureParts(form, options, inputs, options.per == "plan" ? ePlanKind::ePK_Plan2d : ePlanKind::ePK_Volume3d,
                     prepare, report);
    } else {
        const Ptr<BaseProcessor> processor = form.create();
        setImages(*processor, form, options, inputs);
        prepare(*processor);
        Watch{options.image.name, countAllBytes(inputs), 1, options.quiet}.run(processor);
        const attr::BaseAttribute& output = *processor->getAttributes().back();
        if (const auto* const collection = output.getCollection()) {
            report.results = listResults(*collection, processor->getAttributes().front()->getPlanKind(), inputs.origin);
        } else {
            report.results = {{{"result", toJson(*output.getRecord())}}};
        }
    }
    if (difference.keepsApart) {
        for (Json& row : report.results) { // from the plan, which has a c as well
            row["Coefficients"] = row["result"];
            row.erase("result");
        }
    } else {
        spreadResults(report);
    }
    if (difference.finish != nullptr) {
        difference.finish(options, inputs, report);
    }
    inputs.source.addNotes(report);
    return report;
}

bool isOfWholeImages(const Measure& measure)
{
    return std::all_of(measure.forms.begin(), measure.forms.end(),
                       [](const MeasureForm& form) { return form.per == "image"; });
}

Report runProject(const Measure& measure, const Options& options)
{
    const bool isProfile = options.axis == "x" || options.axis == "y";
    const Inputs inputs{options};
    for (const std::string& member : isProfile ? std::vector<std::string>{} : inputs.report.members) {
        std::error_code none;
        if (std::filesystem::equivalent(member, options.output, none)) {
            throw FileError{options.output + ": it is an image that is read: name another file"};
        }
    }
    const MeasureForm& form = findProjection(measure, options);
    Report report = inputs.report;
    report.measure = form.function;
    if (isProfile) {
        report.firstIndex = options.axis == "x" ? inputs.origin.x : inputs.origin.y;
        measureParts(
            form, options, inputs, ePlanKind::ePK_Plan2d,
            [&](BaseProcessor& processor) { processor.setParameter("stat", options.text("stat")); }, report);
        spreadResults(report);
    } else {
        projectStack(form, options, inputs, report);
    }
    inputs.source.addNotes(report);
    return report;
}

} // namespace orlix::app
