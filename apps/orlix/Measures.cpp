#include <orlix/Measures.hpp>

#include <files/ImageFile.hpp>
#include <files/OutputFile.hpp>
#include <files/tiff/TiffWriter.hpp>
#include <orlix/Errors.hpp>
#include <orlix/GpuSupport.hpp>
#include <orlix/Inputs.hpp>
#include <orlix/Progress.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>
#include <framework/attribute/Projection.hpp>
#include <framework/process/MeasureRun.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace orlix::app
{

using namespace imaproc;
using files::ImageFacts;
using image::BaseImage;
using image::eImageBufferType;
using image::ePlanKind;

namespace
{

/// Without a name from the library, whose measures are on the list, the linker would leave it out.
[[maybe_unused]] const auto volatile linked = &glbmsr::gaussianNoiseMsr;

std::vector<double> parseList(const std::string& text)
{
    std::vector<double> numbers;
    std::istringstream stream{text == "none" ? "" : text};
    for (std::string each; std::getline(stream, each, ',');) {
        numbers.push_back(std::strtod(each.c_str(), nullptr));
    }
    return numbers;
}

double countAllBytes(const Inputs& inputs)
{
    return countBytes(*inputs.image) + (inputs.image2 ? countBytes(*inputs.image2) : 0);
}

/// What results cover, as the options say or the measure has it.
Per getPer(const Measure& measure, const Options& options)
{
    const std::vector<Per> pers = listPers(measure);
    const auto found = std::find_if(
        pers.begin(), pers.end(), [&](Per per) { return namesOf(per)[static_cast<std::size_t>(per)] == options.per; });
    return found == pers.end() ? pers.front() : *found;
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
void noteNaN(const Options&, const Inputs&, Per, Report& report)
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

/// The statistics of an image, of each of its plans, or of its volumes.
std::vector<NamedFields> measureStatistics(const Options& options, const Ptr<const BaseImage>& image, Per per)
{
    const std::vector<Measure> measures = MeasureList::getInstance().getMeasures();
    const Measure& stats =
        *std::find_if(measures.begin(), measures.end(), [](const Measure& each) { return each.verb == "stats"; });
    const MeasureCall call{stats, *findForm(stats, per, false), per, {image}, {}, {}};
    Watch watch{options.image.name, countBytes(*image), 1, options.quiet};
    std::vector<NamedFields> results;
    for (ResultRow& row : measure(call, [&](const Ptr<BaseProcessor>& processor) { watch.run(processor); })) {
        results.push_back(std::move(row.fields));
    }
    return results;
}

double getNumber(const NamedFields& fields, std::string_view name)
{
    const auto isIt = [name](const auto& field) { return field.first == name; };
    return std::get<double>(std::find_if(fields.begin(), fields.end(), isIt)->second.value);
}

/// The pixels that each result covers: all, or those inside the mask.
std::vector<double> countPixels(const Options& options, const Inputs& inputs, Per per, std::size_t nbResults)
{
    if (!inputs.mask) {
        const auto pixels = static_cast<double>(inputs.image->getGeometry().nbPixels());
        return std::vector(nbResults, pixels / static_cast<double>(nbResults));
    }
    std::vector<double> pixels;
    for (const NamedFields& part : measureStatistics(options, inputs.mask, per)) {
        pixels.push_back(getNumber(part, "Sum"));
    }
    return pixels;
}

/// Notes pixels that are in no class although nobody gave a range, and classes that are not those asked for.
void noteClasses(const Options& options, const Inputs& inputs, Per per, Report& report)
{
    std::size_t outside = 0;
    std::size_t otherWidths = 0;
    std::size_t otherNumbers = 0;
    const std::vector<double> pixels = countPixels(options, inputs, per, report.results.size());
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
void noteEntropyClasses(const Options& options, const Inputs& inputs, Per, Report& report)
{
    const Ptr<const BaseImage>& image = inputs.image;
    if (!options.has("bin-width") && !options.has("classes")) {
        return;
    }
    const bool isFloat = image->getType() == eImageBufferType::eIBT_Float32;
    std::size_t replaced = 0;
    for (const NamedFields& range : measureStatistics(options, image, Per::Plan)) {
        const double min = options.number("min").value_or(getNumber(range, "Min"));
        const double max = options.number("max").value_or(getNumber(range, "Max"));
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

} // namespace

NamedValues listParameters(const Measure& measure, const Options& options)
{
    NamedValues values;
    for (const attr::Parameter& parameter : measure.parameters) {
        const std::string text = options.text(parameter.info.option);
        if (text.empty()) {
            continue;
        }
        const auto isOf = [&]<class T>(std::type_identity<T>) {
            return parameter.defaultValue && std::holds_alternative<T>(*parameter.defaultValue);
        };
        const auto& names = parameter.info.enumerators;
        const bool isName = std::find(names.begin(), names.end(), text) != names.end();
        data::Value value = std::strtod(text.c_str(), nullptr);
        if (isName) {
            value = text;
        } else if (isOf(std::type_identity<bool>{})) {
            value = text == "on";
        } else if (isOf(std::type_identity<std::vector<double>>{})) {
            value = parseList(text);
        }
        values.emplace_back(parameter.info.option, std::move(value));
    }
    return values;
}

Report runInfo(const Options& options)
{
    return options.gpu ? Report{"info", {}, {describeGpu()}} : describeFile(options);
}

namespace
{

/// The lowest label is the background, whatever it is.
void noteBackground(const Options& options, const Inputs& inputs, Per per, Report& report)
{
    std::size_t withoutBackground = 0;
    for (const NamedFields& part : measureStatistics(options, inputs.image, per)) {
        withoutBackground += getNumber(part, "Min") != 0;
    }
    note(report, "the lowest label is not 0: it was taken for the background, and not counted", withoutBackground);
}

/// Positions are those of the whole image.
void movePositions(const Options&, const Inputs& inputs, Per, Report& report)
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
void moveFit(const Options&, const Inputs& inputs, Per, Report& report)
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
    std::string_view verb;
    void (*finish)(const Options&, const Inputs&, Per, Report&);
    const char* fieldsWithin = ""; ///< the name of an object that the fields are kept in
};

constexpr Difference differences[] = {
    {"stats", &noteNaN},        {"histogram", &noteClasses}, {"entropy", &noteEntropyClasses},
    {"count", &noteBackground}, {"locate", &movePositions},  {"paraboloid", &moveFit, "Coefficients"},
};

/// What a form of a measure finds in the images.
std::vector<Json> runForm(const Measure& measure, const MeasureForm& form, Per per, const Options& options,
                          const Inputs& inputs, const char* fieldsWithin = "")
{
    const auto place = [&](const Ptr<const BaseImage>& image) { return options.gpu ? placeOnGpu(image) : image; };
    MeasureCall call{measure, form, per, {place(inputs.image)}, inputs.mask, listParameters(measure, options)};
    if (inputs.image2) {
        call.images.push_back(place(inputs.image2));
    }
    Watch watch{options.image.name, countAllBytes(inputs), countRuns(call), options.quiet};
    std::vector<Json> results;
    try {
        for (ResultRow& row : imaproc::measure(call, [&](const Ptr<BaseProcessor>& p) { watch.run(p); })) {
            row.place.z += inputs.origin.z;
            row.place.c += inputs.origin.c;
            row.place.t += inputs.origin.t;
            results.push_back(toJson(row, fieldsWithin));
        }
    } catch (const PixelTypeException& error) {
        throw FileError{options.image.name + ": " + error.what() +
                        (error.takesBinary() ? ": pass --binary to read any pixel that is not 0 as set" : "")};
    } catch (const MeasureException& error) {
        throw UsageError{options.image.name + ": " + error.what()};
    }
    return results;
}

} // namespace

Report runMeasure(const Measure& measure, const Options& options)
{
    const Per per = getPer(measure, options);
    const MeasureForm* const form = findForm(measure, per, !options.masks.empty());
    if (form == nullptr) {
        throw UsageError{"there is no " + measure.verb + " --per " + options.per + " under a mask"};
    }
    const Inputs inputs{options, form->inputs[0].types.contains(eImageBufferType::eIBT_Binary)};
    Report report = inputs.report;
    report.measure = form->function;
    const auto* const difference = std::find_if(std::begin(differences), std::end(differences),
                                                [&](const Difference& d) { return d.verb == measure.verb; });
    const bool differs = difference != std::end(differences);
    report.results = runForm(measure, *form, per, options, inputs, differs ? difference->fieldsWithin : "");
    if (differs) {
        difference->finish(options, inputs, per, report);
    }
    inputs.source.addNotes(report);
    return report;
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
        report.results = runForm(measure, form, Per::Plan, options, inputs);
    } else {
        projectStack(form, options, inputs, report);
    }
    inputs.source.addNotes(report);
    return report;
}

} // namespace orlix::app
