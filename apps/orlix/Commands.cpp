#include <orlix/Commands.hpp>

#include <orlix/Errors.hpp>
#include <orlix/Output.hpp>
#include <orlix/TiffFile.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr3d/StatsMsr3d.hpp>
#include <framework/core/Settings.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>
#include <optional>

namespace orlix::app
{

using namespace imaproc;
using namespace imaproc::glbmsr;
using image::eImageBufferType;

namespace
{

/// The options of the command line, as they were given.
struct Options
{
    std::string image;
    std::string pages;
    std::string per = "image";
    std::string isa;
    unsigned threads = 0;
    bool json = false;
    bool quiet = false;
};

/// An image with what is said of it.
struct LoadedImage
{
    Ptr<const image::BaseImage> pixels;
    Json description;
};

LoadedImage load(const Options& options)
{
    const TiffFile file{options.image, options.pages};
    return {file.read(), describeImage(options.image, file.getType(), file.getGeometry())};
}

/// A binary image as the numbers 0 and 1; any other as it is.
Ptr<const image::BaseImage> asNumbers(const Ptr<const image::BaseImage>& image)
{
    if (image->getType() != eImageBufferType::eIBT_Binary || image->getGeometry().empty()) {
        return image;
    }
    return image::BaseImage::wrap(image->getRow(0), eImageBufferType::eIBT_UInt8, image->getGeometry(),
                                  image->getStrides(), image);
}

/// One row per element of a collection, with the coordinates of its plan or volume before its fields.
template <class Collection>
std::vector<Json> listResults(const Collection& collection, image::ePlanKind kind)
{
    std::vector<Json> rows;
    for (std::size_t i = 0; i < collection.size(); ++i) {
        const image::PlanIndex& plan = collection.getPlan(i);
        Json row = Json::object();
        if (kind == image::ePlanKind::ePK_Plan2d) {
            row["z"] = plan.z;
        }
        row["c"] = plan.c;
        row["t"] = plan.t;
        row.update(toJson(*collection.getElement(i)));
        rows.push_back(std::move(row));
    }
    return rows;
}

Report runInfo(const Options& options)
{
    const TiffFile file{options.image, options.pages};
    Json row = describeImage(options.image, file.getType(), file.getGeometry());
    row.erase("path");
    row["bytes"] = file.getGeometry().nbPixels() * image::getPixelSize(file.getType());
    return {"info", {{"image", describeImage(options.image, file.getType(), file.getGeometry())}}, {row}};
}

Report runStats(const Options& options)
{
    const LoadedImage loaded = load(options);
    const auto image = asNumbers(loaded.pixels);
    Report report{"", {{"image", loaded.description}}, {}};
    if (options.per == "plan") {
        report.measure = "statsMsr2d";
        report.results = listResults(*multiSlice_statsMsr2d(image), image::ePlanKind::ePK_Plan2d);
    } else if (options.per == "volume") {
        report.measure = "statsMsr3d";
        report.results = listResults(*multiSlice_statsMsr3d(image), image::ePlanKind::ePK_Volume3d);
    } else {
        report.measure = "statsMsr";
        report.results = {toJson(*statsMsr(image))};
    }
    return report;
}

Json listKernels(const BaseProcessor& processor)
{
    Json kernels = Json::array();
    if (const auto* const algorithm = dynamic_cast<const BaseProcessingAlgorithm*>(&processor)) {
        for (const AlgorithmFunctionIdentifier& kernel : algorithm->getFunctionSelector().getFunctions()) {
            Json types = Json::array();
            for (std::size_t i = 0; i < kernel.dataTypes.size(); ++i) {
                types.push_back(image::getName(kernel.dataTypes[i]));
            }
            kernels.push_back({{"types", types}, {"isa", core::toString(kernel.instructionSets)}});
        }
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

struct Verb
{
    const char* name;
    const char* help;
    Report (*run)(const Options&);
    bool takesImage;
    bool takesPer;
};

constexpr Verb verbs[] = {
    {"info", "type and sizes of an image", &runInfo, true, false},
    {"stats", "number, sum, mean, minimum, maximum and standard deviation of the pixels", &runStats, true, true},
    {"processors", "the processor classes and their kernels", &runProcessors, false, false},
};

constexpr std::string_view laterVerbs[] = {"noise",  "histogram",  "entropy",    "kde",   "project",
                                           "ncc",    "pearson",    "similarity", "count", "percent",
                                           "locate", "paraboloid", "report"};

void addOptions(CLI::App& command, const Verb& verb, Options& options)
{
    if (verb.takesImage) {
        command.add_option("IMAGE", options.image, "a TIFF file")->required();
    }
    command.add_option("--pages", options.pages, "how the pages nest, fastest first, such as z=4,c=2,t=3")
        ->type_name("ORDER");
    if (verb.takesPer) {
        command.add_option("--per", options.per, "what one result covers: image, plan or volume")
            ->check(CLI::IsMember({"image", "plan", "volume"}, CLI::ignore_case))
            ->type_name("");
    }
    command.add_option("--isa", options.isa, "force an instruction set: generic, sse2, avx, avx2 or avx512")
        ->check(CLI::IsMember({"generic", "sse2", "avx", "avx2", "avx512"}))
        ->type_name("");
    command.add_option("--threads", options.threads, "worker threads (default: all processors)")
        ->check(CLI::Range(1u, 4096u))
        ->type_name("N");
    command.add_flag("--json", options.json, "one JSON object on one line");
    command.add_flag("--quiet", options.quiet, "no progress on standard error");
}

/// Refuses by name what cannot be served: a verb that is not there, or verbs and options that are still to come.
void refuseUnknown(int argc, const char* const* argv)
{
    const auto isVerb = [](const std::string& word) {
        return std::any_of(std::begin(verbs), std::end(verbs), [&](const Verb& verb) { return verb.name == word; });
    };
    const std::string first = argc > 1 ? argv[1] : "";
    if (std::find(std::begin(laterVerbs), std::end(laterVerbs), first) != std::end(laterVerbs)) {
        throw UsageError{"the verb " + first + " is not available yet"};
    }
    if (first.empty() || (first[0] != '-' && !isVerb(first))) {
        throw UsageError{(first.empty() ? "a verb is needed" : "there is no verb " + first) + " (see orlix --help)"};
    }
    for (int i = 2; i < argc; ++i) {
        const std::string word = argv[i];
        const std::string option = word.substr(0, word.find('='));
        if (option == "--csv" || option == "--mask" || option == "--gpu") {
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

std::string run(int argc, const char* const* argv)
{
    refuseUnknown(argc, argv);
    CLI::App app{"Global measures of 2d and 3d images.", "orlix"};
    app.set_version_flag("--version", "orlix 4.1.0.2");
    app.require_subcommand(1);
    Options options;
    for (const Verb& verb : verbs) {
        addOptions(*app.add_subcommand(verb.name, verb.help), verb, options);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        const auto chosen = app.get_subcommands();
        return chosen.empty() ? app.help() : chosen.front()->help();
    } catch (const CLI::CallForVersion& version) {
        return std::string{version.what()} + "\n";
    } catch (const CLI::ParseError& error) {
        throw UsageError{std::string{error.what()} + " (see orlix --help)"};
    }
    const std::string chosen = app.get_subcommands().front()->get_name();
    const Verb& verb =
        *std::find_if(std::begin(verbs), std::end(verbs), [&](const Verb& v) { return v.name == chosen; });
    applySettings(options);
    Report report = runNamed(verb, options);
    if (options.json) {
        return printJson(report);
    }
    if (verb.run == &runProcessors) {
        summariseKernels(report);
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
        output = run(argc, argv);
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
