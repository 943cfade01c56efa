#include <orlix/Commands.hpp>

#include <orlix/Errors.hpp>
#include <orlix/GpuSupport.hpp>
#include <orlix/Measures.hpp>

#include <framework/core/Settings.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>

namespace orlix::app
{

using namespace imaproc;

namespace
{

Json listKernels(const BaseProcessor& processor)
{
    Json kernels = Json::array();
    const auto add = [&](const image::DataTypeIdentifierColl& dataTypes, const std::string& isa) {
        Json types = Json::array();
        for (std::size_t i = 0; i < dataTypes.size(); ++i) {
            types.push_back(image::getName(dataTypes[i]));
        }
        kernels.push_back({{"types", types}, {"isa", isa}});
    };
    if (const auto* const algorithm = dynamic_cast<const BaseProcessingAlgorithm*>(&processor)) {
        for (const AlgorithmFunctionIdentifier& kernel : algorithm->getFunctionSelector().getFunctions()) {
            add(kernel.dataTypes, core::toString(kernel.instructionSets));
        }
    }
    for (const image::DataTypeIdentifierColl& types : getGpuKernelTypes(processor)) {
        add(types, "cuda");
    }
    return kernels;
}

Report runProcessors(const Options&)
{
    Report report{"processors", {}, {}};
    for (const ProcessorInfo& info : ProcessorFactory::getInstance().getProcessors()) {
        const auto processor = ProcessorFactory::getInstance().createProcessor(info.typeName);
        report.results.push_back({{"TypeName", info.typeName},
                                  {"ObjectName", info.objectName},
                                  {"ToolTip", info.toolTip},
                                  {"Version", processor->getClassVersion()},
                                  {"Kernels", listKernels(*processor)}});
    }
    return report;
}

/// A table of processors is for people: the kernels of a class by instruction set, not one by one.
void summariseKernels(Report& report)
{
    for (Json& row : report.results) {
        std::map<std::string, std::size_t> counts;
        for (const Json& kernel : row["Kernels"]) {
            ++counts[kernel["isa"].get<std::string>()];
        }
        std::string summary;
        for (const auto& [isa, count] : counts) {
            summary += (summary.empty() ? "" : ", ") + isa + " " + std::to_string(count);
        }
        row["Kernels"] = summary;
        row.erase("TypeName");
    }
}

void applySettings(const Options& options)
{
    core::settings::setNbThreads(options.threads);
    if (options.isa.empty()) {
        return;
    }
    const auto set = *core::findInstructionSet(options.isa);
    if (!core::isAvailable(set)) {
        throw FileError{"--isa " + options.isa + ": this processor does not have it"};
    }
    core::settings::forceInstructionSets(set);
}

/// A table of histograms is for people: a row for every class.
void spreadClasses(Report& report)
{
    std::vector<Json> rows;
    for (const Json& histogram : report.results) {
        Json row = histogram;
        for (const char* const field : {"Min", "Max", "BinWidth", "Frequencies"}) {
            row.erase(field);
        }
        const Json& frequencies = histogram["Frequencies"];
        for (std::size_t i = 0; i < frequencies.size(); ++i) {
            row["Class"] = i;
            row["From"] = histogram["Min"];
            if (histogram["Min"].is_number() && histogram["BinWidth"].is_number()) {
                row["From"] =
                    histogram["Min"].get<double>() + static_cast<double>(i) * histogram["BinWidth"].get<double>();
            }
            row["Pixels"] = frequencies[i];
            rows.push_back(row);
        }
    }
    report.results = std::move(rows);
}

/// A table of profiles is for people: a row for every number.
void spreadValues(Report& report)
{
    if (report.results.empty() || !report.results.front().contains("Values")) {
        return;
    }
    const std::string axis = report.measure.substr(0, 1);
    std::vector<Json> rows;
    for (const Json& profile : report.results) {
        Json row = profile;
        row.erase("Values");
        for (std::size_t i = 0; i < profile["Values"].size(); ++i) {
            row[axis] = i;
            row["Value"] = profile["Values"][i];
            rows.push_back(row);
        }
    }
    report.results = std::move(rows);
}

/// A table of percentages is for people: a row for every value that occurs.
void spreadPercentages(Report& report)
{
    std::vector<Json> rows;
    for (const Json& plan : report.results) {
        Json row = plan;
        row.erase("Values");
        for (std::size_t i = 0; i < plan["Values"].size(); ++i) {
            if (plan["Values"][i] != 0.0) {
                row["Value"] = i;
                row["Percent"] = plan["Values"][i];
                rows.push_back(row);
            }
        }
    }
    report.results = std::move(rows);
}

/// The plan of a row, named apart from coordinates and coefficients.
Json namePlan(const Json& row)
{
    Json plan = Json::object();
    for (const char* const axis : {"z", "c", "t"}) {
        if (row.contains(axis)) {
            plan[std::string{"plan "} + axis] = row[axis];
        }
    }
    return plan;
}

/// A table of positions is for people: a row for every one.
void spreadCoordinates(Report& report)
{
    std::vector<Json> rows;
    for (const Json& plan : report.results) {
        for (const Json& at : plan["Coordinates"]) {
            Json row = namePlan(plan);
            for (std::size_t i = 0; i < at.size(); ++i) {
                row[std::string{"xyz"[i]}] = at[i];
            }
            rows.push_back(row);
        }
    }
    report.results = std::move(rows);
}

/// A table of fits is for people: a column for every coefficient.
void spreadCoefficients(Report& report)
{
    for (Json& row : report.results) {
        Json spread = namePlan(row);
        spread.update(row["Coefficients"]);
        row = std::move(spread);
    }
}

/// A table of samples is for people: their number.
void countSamples(Report& report)
{
    for (Json& row : report.results) {
        row["Samples"] = row["Samples"].size();
    }
}

/// A table of correlations is for people: what the record keeps besides means nothing to them.
void keepCorrelation(Report& report)
{
    for (Json& row : report.results) {
        row.erase("SumSquaredDev1");
        row.erase("SumSquaredDev2");
    }
}

/// A table of similarities is for people: the ratio of equal images is infinite.
void showInfinity(Report& report)
{
    for (Json& row : report.results) {
        if (row["MSE"] == 0.0) {
            row["PSNR"] = "Infinity";
        }
    }
}

/// What `--per` may be.
enum class Per
{
    None,
    Any,  ///< image (the default), plan or volume
    Parts ///< plan (the default) or volume
};

struct Verb
{
    const char* name;
    const char* help;
    Report (*run)(const Options&);
    int images = 1;
    Per per = Per::None;
    bool takesMask = false;
    const char* maskHelp = "count only where this image is not 0";
    bool takesClasses = false;
    bool takesProjection = false;
    bool takesSample = false;
    bool takesLimit = false;
    bool takesBinary = false;
    bool takesPeak = false;
    const char* remark = nullptr;         ///< what to beware of
    const char* gpuHelp = nullptr;        ///< of --gpu, where the verb takes it
    void (*forPeople)(Report&) = nullptr; ///< makes a table of a report that is one for machines
};

constexpr const char* ofNaN =
    "With NaN pixels the sum, mean and deviation are NaN, and the minimum and maximum depend on where the NaN lie. The "
    "deviation is the root of E[x^2] - Mean^2 in double precision: where pixels are far from zero compared with their "
    "spread it has few digits (0.245 for 0.290 where float pixels lie between 1e6 and 1e6 + 1), and of constant pixels "
    "it "
    "may be NaN.";

constexpr Verb verbs[] = {
    {.name = "info",
     .help = "type and sizes of an image",
     .run = &runInfo,
     .gpuHelp = "what GPU there is, instead of an image"},
    {.name = "stats",
     .help = "number, sum, mean, minimum, maximum and standard deviation of the pixels",
     .run = &runStats,
     .per = Per::Any,
     .takesMask = true,
     .remark = ofNaN,
     .gpuHelp = "measure on the GPU"},
    {.name = "histogram",
     .help = "number of pixels in classes of equal width",
     .run = &runHistogram,
     .per = Per::Any,
     .takesMask = true,
     .takesClasses = true,
     .remark = "NaN is never counted. Without --min and --max the range is that of the pixels, which NaN can narrow: "
               "what lies outside is not counted.",
     .forPeople = &spreadClasses},
    {.name = "entropy",
     .help = "entropy of the grey levels of each plan, in nats",
     .run = &runEntropy,
     .takesClasses = true},
    {.name = "noise", .help = "standard deviation of Gaussian noise", .run = &runNoise},
    {.name = "kde",
     .help = "a random sample of the grey levels, and a bandwidth to estimate their density with",
     .run = &runKde,
     .per = Per::Parts,
     .takesSample = true,
     .forPeople = &countSamples},
    {.name = "count",
     .help = "number of objects in a label image",
     .run = &runCount,
     .per = Per::Parts,
     .remark = "The lowest label of a plan or volume is its background, whatever it is."},
    {.name = "percent",
     .help = "percentage of the pixels that each value of a binary or label image has",
     .run = &runPercent,
     .per = Per::Parts,
     .takesMask = true,
     .maskHelp = "where this image is 0 pixels have the value 0, and still count",
     .takesBinary = true,
     .forPeople = &spreadPercentages},
    {.name = "locate",
     .help = "coordinates of the set pixels of a binary image",
     .run = &runLocate,
     .per = Per::Parts,
     .takesLimit = true,
     .takesBinary = true,
     .forPeople = &spreadCoordinates},
    {.name = "paraboloid",
     .help = "the surface a x^2 + b y^2 + c x y + d x + e y + f that fits each plan best",
     .run = &runParaboloid,
     .takesMask = true,
     .forPeople = &spreadCoefficients},
    {.name = "ncc",
     .help = "normalized cross correlation of two images",
     .run = &runNcc,
     .images = 2,
     .per = Per::Parts,
     .remark = "NaN where an image is constant over a plan, or over a part of some 512 KiB of it.",
     .forPeople = &keepCorrelation},
    {.name = "pearson",
     .help = "Pearson correlation of two images: times the number of pixels, and the coefficient r",
     .run = &runPearson,
     .images = 2,
     .per = Per::Parts},
    {.name = "similarity",
     .help = "squared differences of two images, their mean and the peak signal-to-noise ratio (peak 255, or --peak)",
     .run = &runSimilarity,
     .images = 2,
     .takesPeak = true,
     .remark = "PSNR is 20 log10(peak / sqrt(MSE)) dB, with a peak of 255 whatever the pixel type. Of equal images it "
               "is infinite, which the JSON has as the largest double.",
     .forPeople = &showInfinity},
    {.name = "project",
     .help = "a statistic of every column (x), row (y), pixel over the planes (z) or pixel over the times (t)",
     .run = &runProject,
     .takesProjection = true,
     .remark =
         "A maximum or minimum is that of the numbers among NaN. Numbers are rounded and limited to the pixel type "
         "of the output: sums want --out-type float32.",
     .forPeople = &spreadValues},
    {.name = "processors",
     .help = "the processor classes and their kernels",
     .run = &runProcessors,
     .images = 0,
     .forPeople = &summariseKernels},
};

constexpr std::string_view laterVerbs[] = {"report"};

CLI::Validator finiteAbove(double least)
{
    const auto check = [least](const std::string& text) -> std::string {
        double x = 0;
        if (!CLI::detail::lexical_cast(text, x) || !std::isfinite(x)) {
            return text + " is not a finite number";
        }
        return x > least ? "" : text + " is not above " + toJson(least).dump();
    };
    return CLI::Validator{check, ""};
}

CLI::Validator bandwidth()
{
    const auto check = [](std::string& text) -> std::string {
        const std::string lower = CLI::detail::to_lower(text);
        if (lower == "silverman" || lower == "scott") {
            text = lower;
            return {};
        }
        return finiteAbove(0)(text).empty() ? "" : text + " is neither silverman nor scott nor a number above 0";
    };
    return CLI::Validator{check, ""};
}

void addOptions(CLI::App& command, const Verb& verb, Options& options)
{
    if (verb.images > 0) {
        command.add_option("IMAGE", options.image, "a TIFF file")->required(verb.run != &runInfo);
    }
    if (verb.images > 1) {
        command.add_option("IMAGE2", options.image2, "another one, of the same size")->required();
    }
    command.add_option("--pages", options.pages, "how the pages nest, fastest first, such as z=4,c=2,t=3")
        ->type_name("ORDER");
    if (verb.per == Per::Any) {
        command.add_option("--per", options.per, "what one result covers: image, plan or volume (default: image)")
            ->transform(CLI::IsMember({"image", "plan", "volume"}, CLI::ignore_case))
            ->type_name("");
    } else if (verb.per == Per::Parts) {
        command.add_option("--per", options.per, "what one result covers: plan or volume (default: plan)")
            ->transform(CLI::IsMember({"plan", "volume"}, CLI::ignore_case))
            ->type_name("");
    }
    if (verb.takesMask) {
        command.add_option("--mask", options.mask, verb.maskHelp)->type_name("FILE");
    }
    if (verb.takesClasses) {
        command.add_option("--min", options.min, "lower bound of the range (default: the image's minimum)")
            ->check(finiteAbove(-std::numeric_limits<double>::infinity()))
            ->type_name("A");
        command.add_option("--max", options.max, "upper bound, itself in the last class; goes with --min")
            ->check(finiteAbove(-std::numeric_limits<double>::infinity()))
            ->type_name("B");
        command.add_option("--bin-width", options.binWidth, "width of a class")->check(finiteAbove(0))->type_name("W");
        command.add_option("--classes", options.classes, "number of classes")
            ->check(CLI::Range(1u, 0x7fffffffu))
            ->type_name("N");
    }
    if (verb.takesProjection) {
        command
            .add_option("--axis", options.axis,
                        "x: a number per column, y: a number per row, z: an image over all planes, t: an image "
                        "over all times")
            ->transform(CLI::IsMember({"x", "y", "z", "t"}, CLI::ignore_case))
            ->type_name("")
            ->required();
        command.add_option("--stat", options.stat, "max, mean, median, min, stddev, sum or var")
            ->transform(CLI::IsMember({"max", "mean", "median", "min", "stddev", "sum", "var"}, CLI::ignore_case))
            ->type_name("")
            ->required();
        command.add_option("-o", options.output, "with --axis z or t: the TIFF file to write")->type_name("FILE");
        command.add_option("--out-type", options.outType, "pixel type of that file (default: the image's)")
            ->transform(
                CLI::IsMember({"uint8", "int8", "uint16", "int16", "uint32", "int32", "float32"}, CLI::ignore_case))
            ->type_name("TYPE");
    }
    if (verb.takesSample) {
        command.add_option("--samples", options.samples, "how many pixels are drawn (default: 1000)")->type_name("N");
        command.add_option("--bandwidth", options.bandwidth, "silverman (the default), scott or a number")
            ->transform(bandwidth())
            ->type_name("");
        command
            .add_option("--seed", options.seed,
                        "seed of the sample, which it repeats for one plan, or with --threads 1")
            ->type_name("N");
    }
    if (verb.takesPeak) {
        command.add_option("--peak", options.peak, "peak of the signal (default: 255)")
            ->check(finiteAbove(0))
            ->type_name("P");
    }
    if (verb.takesLimit) {
        command.add_option("--limit", options.limit, "at most so many coordinates per plan or volume")->type_name("N");
    }
    if (verb.takesBinary) {
        command.add_flag("--binary", options.binary, "read any pixel that is not 0 as set");
    }
    if (verb.gpuHelp != nullptr) {
        command.add_flag("--gpu", options.gpu, verb.gpuHelp);
    }
    command.add_option("--isa", options.isa, "force an instruction set: generic, sse2, avx, avx2 or avx512")
        ->check(CLI::IsMember({"generic", "sse2", "avx", "avx2", "avx512"}))
        ->type_name("");
    command.add_option("--threads", options.threads, "worker threads (default: all processors)")
        ->check(CLI::Range(1u, 4096u))
        ->type_name("N");
    command.add_flag("--json", options.json, "one JSON object on one line");
    command.add_flag("--quiet", options.quiet, "no notes on standard error");
    if (verb.remark != nullptr) {
        command.footer(verb.remark);
    }
}

/// Refuses by name what cannot be served: a verb that is not there, or verbs and options that are still to come.
void refuseUnknown(int argc, const char* const* argv)
{
    const auto isVerb = [](const std::string& word) {
        return std::any_of(std::begin(verbs), std::end(verbs), [&](const Verb& verb) { return verb.name == word; });
    };
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "help") {
        return;
    }
    if (std::find(std::begin(laterVerbs), std::end(laterVerbs), first) != std::end(laterVerbs)) {
        throw UsageError{"the verb " + first + " is not available yet"};
    }
    if (first.empty() || (first[0] != '-' && !isVerb(first))) {
        throw UsageError{(first.empty() ? "a verb is needed" : "there is no verb " + first) + " (see orlix --help)"};
    }
    for (int i = 2; i < argc; ++i) {
        const std::string word = argv[i];
        const std::string option = word.substr(0, word.find('='));
        if (option == "--csv") {
            throw UsageError{option + " is not available yet"};
        }
    }
}

/// Runs a verb; whatever goes wrong in a measure names the file, and the instruction set where one is forced.
Report runNamed(const Verb& verb, const Options& options)
{
    try {
        return verb.run(options);
    } catch (const FileError&) {
        throw;
    } catch (const UsageError&) {
        throw;
    } catch (...) {
        const std::string forced = options.isa.empty() ? "" : " (--isa " + options.isa + ")";
        throw FileError{options.image + ": " + core::describeCurrentException() + forced};
    }
}

/// The extension of a file name that stands for something else than TIFF; empty if none.
std::string findOtherExtension(const std::string& path)
{
    constexpr std::string_view others[] = {".png",  ".jpg", ".jpeg", ".jp2", ".webp", ".gif",  ".bmp", ".nrrd",
                                           ".nhdr", ".mha", ".mhd",  ".nii", ".gz",   ".mrc",  ".npy", ".h5",
                                           ".hdf5", ".pdf", ".csv",  ".txt", ".json", ".html", ".zarr"};
    const std::string extension = CLI::detail::to_lower(std::filesystem::path{path}.extension().string());
    return std::find(std::begin(others), std::end(others), extension) != std::end(others) ? extension : "";
}

/// What one option cannot tell by itself.
void checkTogether(const Verb& verb, const Options& options)
{
    if (verb.run == &runInfo && options.image.empty() != options.gpu) {
        throw UsageError{options.gpu ? "info --gpu takes no image" : "IMAGE is required (see orlix --help)"};
    }
    if (options.gpu && !options.mask.empty()) {
        throw UsageError{"--gpu and --mask do not go together: statistics under a mask run on the CPU alone"};
    }
    if (options.gpu && !options.isa.empty()) {
        throw UsageError{"--gpu and --isa do not go together: an instruction set is the CPU's"};
    }
    if (options.min.has_value() != options.max.has_value()) {
        throw UsageError{"--min and --max go together: give both or neither"};
    }
    if (options.min && *options.min > *options.max) {
        throw UsageError{"--min is above --max"};
    }
    if (options.output == "-") {
        throw UsageError{"-o -: an image does not go to standard output: name a TIFF file"};
    }
    if (const std::string other = findOtherExtension(options.output); !other.empty()) {
        throw UsageError{"-o " + options.output + ": no " + other +
                         " files are written, but TIFF: end its name in .tif"};
    }
    if (!options.axis.empty()) {
        const bool isProfile = options.axis == "x" || options.axis == "y";
        if (isProfile && !(options.output.empty() && options.outType.empty())) {
            throw UsageError{"-o and --out-type go with --axis z or t: a projection along " + options.axis +
                             " writes no image"};
        }
        if (!isProfile && options.output.empty()) {
            throw UsageError{"--axis " + options.axis + " makes an image: name its file with -o"};
        }
    }
    if (options.binWidth && options.classes) {
        throw UsageError{"--bin-width and --classes say the same thing: give one of them"};
    }
}

/// What is wrong with the words, and where to look; `chosen` is the verb, if it got that far.
[[noreturn]] void failUsage(const CLI::ParseError& error, const std::string& chosen, int argc, const char* const* argv)
{
    // An option that there is not may be the name of a file.
    for (int i = 2; i < argc && std::string{argv[i]} != "--"; ++i) {
        if (argv[i][0] == '-' && std::filesystem::exists(argv[i])) {
            throw UsageError{std::string{argv[i]} +
                             " looks like an option: write -- before files that begin with a dash"};
        }
    }
    throw UsageError{std::string{error.what()} + " (see orlix " + (chosen.empty() ? "" : chosen + " ") + "--help)"};
}

std::string run(int argc, const char* const* argv, std::vector<std::string>& notes)
{
    refuseUnknown(argc, argv);
    CLI::App app{"Global measures of 2d and 3d images.", "orlix"};
    app.set_version_flag("--version", "orlix 4.1.0.2");
    app.require_subcommand(1);
    Options options;
    for (const Verb& verb : verbs) {
        addOptions(*app.add_subcommand(verb.name, verb.help), verb, options);
    }
    std::string helpOf;
    app.add_subcommand("help", "help on a verb")->add_option("VERB", helpOf);
    const auto chosen = [&] {
        const auto subcommands = app.get_subcommands();
        return subcommands.empty() ? std::string{} : subcommands.front()->get_name();
    };
    const auto help = [&](const std::string& verb) {
        return verb.empty() ? app.help() : app.get_subcommand(verb)->help("orlix");
    };
    try {
        app.parse(argc, argv);
        if (chosen() == "help") {
            return help(helpOf);
        }
    } catch (const CLI::CallForHelp&) {
        return help(chosen());
    } catch (const CLI::CallForVersion& version) {
        return std::string{version.what()} + "\n";
    } catch (const CLI::OptionNotFound&) {
        throw UsageError{"there is no verb " + helpOf + " (see orlix --help)"};
    } catch (const CLI::ParseError& error) {
        failUsage(error, chosen(), argc, argv);
    }
    const Verb& verb =
        *std::find_if(std::begin(verbs), std::end(verbs), [&](const Verb& v) { return v.name == chosen(); });
    checkTogether(verb, options);
    applySettings(options);
    Report report = runNamed(verb, options);
    if (!options.quiet) {
        notes = report.notes;
    }
    if (options.json) {
        return printJson(report);
    }
    if (verb.forPeople != nullptr) {
        verb.forPeople(report);
    }
    return printTable(report);
}

/// An error of any kind on one line.
std::string onOneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return "orlix: " + text + "\n";
}

} // namespace

int runCommand(int argc, const char* const* argv, std::string& output, std::string& error)
{
    try {
        std::vector<std::string> notes;
        output = run(argc, argv, notes);
        for (const std::string& note : notes) {
            error += onOneLine("note: " + note);
        }
        return 0;
    } catch (const UsageError& usage) {
        error = onOneLine(usage.what());
        return 2;
    } catch (...) {
        error = onOneLine(core::describeCurrentException());
        return 1;
    }
}

} // namespace orlix::app
