#include <orlix/Commands.hpp>

#include <orlix/Errors.hpp>
#include <orlix/GpuSupport.hpp>
#include <orlix/Inputs.hpp>
#include <orlix/Manual.hpp>
#include <orlix/Measures.hpp>
#include <orlix/Progress.hpp>
#include <orlix/States.hpp>
#include <orlix/Tables.hpp>

#include <files/OutputFile.hpp>

#include <framework/core/Settings.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>
#include <framework/process/MeasureRun.hpp>
#include <framework/process/ProcessorFactory.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <set>
#include <sstream>

namespace orlix::app
{

using namespace imaproc;
namespace fs = std::filesystem;

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

void applySettings(const Options& options)
{
    core::settings::setNbThreads(options.threads);
    core::settings::setPixelMemory(options.memory);
    if (options.isa.empty()) {
        return;
    }
    const auto set = *core::findInstructionSet(options.isa);
    if (!core::isAvailable(set)) {
        throw FileError{"--isa " + options.isa + ": this processor does not have it"};
    }
    core::settings::forceInstructionSets(set);
}

Report runMeasures(const Options&)
{
    Report report{"measures", {}, {}};
    for (const Measure& measure : MeasureList::getInstance().getMeasures()) {
        Json forms = Json::array();
        for (const MeasureForm& form : measure.forms) {
            forms.push_back({{"function", form.function}, {"per", form.per}, {"mask", form.takesMask()}});
        }
        Json inputs = Json::array();
        for (const MeasureInput& input : measure.forms.front().inputs) {
            inputs.push_back({{"name", input.name}, {"mask", input.isMask}, {"optional", input.isOptional}});
        }
        Json parameters = Json::array();
        for (const attr::Parameter& parameter : measure.parameters) {
            const data::FieldInfo& info = parameter.info;
            Json type = parameter.isWhole ? "integer" : "number";
            if (parameter.defaultValue && std::holds_alternative<bool>(*parameter.defaultValue)) {
                type = "boolean";
            } else if (parameter.defaultValue && toJson(*parameter.defaultValue).is_array()) {
                type = "array";
            }
            if (!info.enumerators.empty()) {
                type = Json::array();
                for (const char* const name : info.enumerators) {
                    type.push_back(name);
                }
            }
            parameters.push_back({{"name", info.option},
                                  {"type", type},
                                  {"default", parameter.defaultValue ? toJson(*parameter.defaultValue) : Json{}},
                                  {"lowest", toJson(info.lowest)},
                                  {"highest", toJson(info.highest)},
                                  {"unit", info.unit},
                                  {"help", info.help}});
        }
        Json fields = Json::array();
        for (const data::FieldInfo& field : measure.fields) {
            fields.push_back({{"name", field.name}, {"unit", field.unit}, {"help", field.help}});
        }
        report.results.push_back({{"Name", measure.name},
                                  {"Verb", measure.verb},
                                  {"Help", measure.help},
                                  {"Forms", forms},
                                  {"Inputs", inputs},
                                  {"Parameters", parameters},
                                  {"Fields", fields}});
    }
    return report;
}

/// A verb that measures nothing.
struct OwnVerb
{
    const char* name;
    const char* help;
    Report (*run)(const Options&);
};

constexpr OwnVerb ownVerbs[] = {
    {"info", "what a file is: type, sizes, axes, size of pixels, compression, images in it", &runInfo},
    {"merge", "what states that --save-state wrote make together", &runMerge},
    {"measures", "the measures, their forms, parameters and fields", &runMeasures},
    {"processors", "the processor classes and their kernels", &runProcessors},
};

/// Where a verb differs from what follows from its measure.
struct Difference
{
    const char* verb;
    const char* example; ///< what stands behind "orlix"
    const char* maskHelp = "count only where this image is not 0: one image, or one for each";
    const char* gpuHelp = nullptr;        ///< of --gpu, where the verb takes it
    bool takesBinary = false;             ///< --binary
    void (*forPeople)(Report&) = nullptr; ///< makes a table of a report that is one for machines
};

constexpr Difference differences[] = {
    {.verb = "info",
     .example = "info samples/stack.ome.tif",
     .gpuHelp = "what GPU there is, instead of an image",
     .forPeople = &listFacts},
    {.verb = "measures", .example = "measures", .forPeople = &listNames},
    {.verb = "merge", .example = "merge first.state second.state"},
    {.verb = "describe", .example = "describe samples/cells.tif --percentiles 5,95", .forPeople = &listFigures},
    {.verb = "compare", .example = "compare samples/cells.tif samples/labels.tif", .forPeople = &listFigures},
    {.verb = "regions", .example = "regions samples/labels.tif samples/cells.tif"},
    {.verb = "threshold", .example = "threshold samples/cells.tif --method triangle"},
    {.verb = "processors", .example = "processors", .forPeople = &summariseKernels},
    {.verb = "stats", .example = "stats samples/cells.tif --mask samples/labels.tif", .gpuHelp = "measure on the GPU"},
    {.verb = "noise", .example = "noise samples/stack.ome.tif --per volume"},
    {.verb = "histogram", .example = "histogram samples/cells.tif --classes 16", .forPeople = &spreadClasses},
    {.verb = "entropy", .example = "entropy samples/colour.png"},
    {.verb = "kde", .example = "kde samples/surface.tif --samples 500 --csv", .forPeople = &countSamples},
    {.verb = "count", .example = "count samples/labels.tif"},
    {.verb = "percent",
     .example = "percent samples/labels.tif --binary",
     .maskHelp = "where this image is 0 pixels have the value 0, and still count",
     .takesBinary = true,
     .forPeople = &spreadPercentages},
    {.verb = "locate",
     .example = "locate samples/labels.tif --binary --limit 5",
     .takesBinary = true,
     .forPeople = &spreadCoordinates},
    {.verb = "paraboloid", .example = "paraboloid samples/cells.tif", .forPeople = &spreadCoefficients},
    {.verb = "ncc", .example = "ncc samples/cells.tif samples/labels.tif", .forPeople = &keepCorrelation},
    {.verb = "pearson", .example = "pearson samples/cells.tif samples/labels.tif"},
    {.verb = "similarity", .example = "similarity samples/cells.tif samples/labels.tif", .forPeople = &showInfinity},
    {.verb = "project",
     .example = "project samples/stack.ome.tif --axis z --stat max -o projection.tif",
     .forPeople = &spreadValues},
};

const Difference& findDifference(const std::string& verb)
{
    static constexpr Difference none{"", ""};
    const auto* const found = std::find_if(std::begin(differences), std::end(differences),
                                           [&](const Difference& difference) { return difference.verb == verb; });
    return found == std::end(differences) ? none : *found;
}

/// What makes a table of a report of the measure with this entry function.
void (*findPrinter(const std::string& function))(Report&)
{
    return findDifference(function.starts_with("histogram") ? "histogram" : function).forPeople;
}

/// What can be run: a verb of its own, or a measure.
struct Verb
{
    std::string name;
    std::string help;
    const OwnVerb* own = nullptr;
    Measure measure{};

    bool isProjection() const { return name == "project"; }
    bool takesImages() const { return name == "info" || !measure.forms.empty(); }
    bool takesLabels() const { return !measure.forms.empty() && measure.forms[0].inputs.back().isList; }
    bool takesTwo() const
    {
        const auto isImage = [](const MeasureInput& input) { return !input.isMask; };
        return !measure.forms.empty() &&
               std::count_if(measure.forms[0].inputs.begin(), measure.forms[0].inputs.end(), isImage) > 1;
    }
    Report run(const Options& options) const
    {
        const auto run = measure.state != nullptr ? runState : isProjection() ? runProject : runMeasure;
        if (own != nullptr) {
            return own->run(options);
        }
        Report report = run(measure, options);
        if (!options.saveState.empty() && measure.state == nullptr) {
            saveHistograms(report, options);
        }
        return report;
    }
};

std::vector<Verb> listVerbs()
{
    std::vector<Verb> verbs;
    for (const OwnVerb& own : ownVerbs) {
        verbs.push_back({own.name, own.help, &own});
    }
    for (Measure& measure : MeasureList::getInstance().getMeasures()) {
        verbs.push_back({measure.verb, measure.help, nullptr, measure});
    }
    return verbs;
}

constexpr std::string_view laterVerbs[] = {"report"};

CLI::Validator finite()
{
    const auto check = [](const std::string& text) -> std::string {
        double x = 0;
        return CLI::detail::lexical_cast(text, x) && std::isfinite(x) ? "" : text + " is not a finite number";
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
        return finite()(text).empty() ? "" : text + " is neither silverman nor scott nor a number above 0";
    };
    return CLI::Validator{check, ""};
}

CLI::Validator wholeIn(std::uint32_t lowest, std::uint32_t highest)
{
    const auto check = [lowest, highest](const std::string& text) -> std::string {
        std::uint32_t n = 0;
        const bool isWhole =
            text.find_first_not_of("0123456789") == std::string::npos && CLI::detail::lexical_cast(text, n);
        return isWhole && lowest <= n && n <= highest
                   ? ""
                   : text + " is not a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    };
    return CLI::Validator{check, ""};
}

CLI::Validator wholeIn(const data::FieldInfo& info)
{
    constexpr double most = std::numeric_limits<std::uint32_t>::max();
    return wholeIn(static_cast<std::uint32_t>(std::max(0.0, info.lowest)),
                   static_cast<std::uint32_t>(std::min(most, info.highest)));
}

/// Numbers in limits, or the word none.
CLI::Validator listOf(double lowest, double highest)
{
    const auto check = [lowest, highest](const std::string& text) -> std::string {
        std::istringstream list{text == "none" ? "" : text + ","};
        for (std::string each; std::getline(list, each, ',');) {
            double x = 0;
            if (!CLI::detail::lexical_cast(each, x) || !(lowest <= x && x <= highest)) {
                return "'" + each + "' is not a number from " + toJson(lowest).dump() + " to " + toJson(highest).dump();
            }
        }
        return "";
    };
    return CLI::Validator{check, ""};
}

constexpr auto pixelTypes = {"uint8", "int8", "uint16", "int16", "uint32", "int32", "float32"};

/// An option that takes one of several words, whatever their case.
CLI::Option* addChoice(CLI::App& command, const std::string& name, std::string& target,
                       const std::vector<std::string>& choices, const std::string& help)
{
    std::string list;
    for (const std::string& choice : choices) {
        list += (list.empty() ? "" : "|") + choice;
    }
    return command.add_option(name, target, help)
        ->transform(CLI::IsMember(choices, CLI::ignore_case).description(""))
        ->type_name(list);
}

/// What one result covers, the default first. A plane is a plan.
void addPer(CLI::App& command, std::string& target, const std::vector<std::string>& choices)
{
    addChoice(command, "--per", target, choices, "what one result covers (default: " + choices.front() + ")")
        ->transform([](const std::string& text) { return CLI::detail::to_lower(text) == "plane" ? "plan" : text; });
}

/// An option for a parameter of a measure.
void addParameter(CLI::App& command, const attr::Parameter& parameter, Options& options)
{
    const std::string name = parameter.info.option;
    const std::string option = "--" + name;
    std::string help = parameter.info.help;
    if (parameter.defaultValue && help.find("(default") == std::string::npos) {
        std::string text = toJson(*parameter.defaultValue).dump();
        std::erase_if(text, [](char c) { return c == '[' || c == ']' || c == '"'; });
        help += " (default: " + text + ")";
    }
    std::string& target = options.parameters[name];
    const auto& enumerators = parameter.info.enumerators;
    if (parameter.defaultValue && std::holds_alternative<bool>(*parameter.defaultValue)) {
        const bool isOn = std::get<bool>(*parameter.defaultValue);
        command.add_flag_callback(
            isOn ? "--no-" + name : option, [&target, isOn] { target = isOn ? "off" : "on"; },
            isOn ? "do not " + std::string{parameter.info.help} : parameter.info.help);
    } else if (parameter.defaultValue && std::holds_alternative<std::vector<double>>(*parameter.defaultValue)) {
        command.add_option(option, target, help)
            ->check(listOf(parameter.info.lowest, parameter.info.highest))
            ->type_name("X,X...");
    } else if (name == "bandwidth") {
        command.add_option(option, target, "rule (default: silverman) or number")
            ->transform(bandwidth())
            ->type_name("silverman|scott|X");
    } else if (!enumerators.empty()) {
        addChoice(command, option, target, {enumerators.begin(), enumerators.end()}, help);
    } else if (parameter.isWhole) {
        const bool countsBins = name == "classes";
        command.add_option(option, target, help)
            ->check(countsBins ? wholeIn(1, 0x7fffffff) : wholeIn(parameter.info))
            ->type_name("N");
    } else {
        command.add_option(option, target, help)->check(finite())->type_name("X");
    }
}

/// How files are read, and which part of them.
void addFileOptions(CLI::App& command, const Verb& verb, Options& options)
{
    const std::string group = "Files";
    files::OpenOptions& open = options.open;
    std::vector<CLI::Option*> added;
    added.push_back(command.add_option("--plane", options.plane, "planes, channels and times, as z=3,c=1 or z=10:20")
                        ->type_name("PLANES"));
    added.push_back(command.add_option("--region", options.region, "a part of every plane, as 0:512,100:200 (x, y)")
                        ->type_name("X0:X1,Y0:Y1"));
    added.push_back(command.add_option("--pages", open.pages, "how the pages nest, fastest first, such as z=4,c=2,t=3")
                        ->type_name("ORDER"));
    added.push_back(
        command.add_option("--axes", open.axes, "the axes of an array, slowest first, such as TCZYX (S: samples)")
            ->type_name("LETTERS"));
    added.push_back(command.add_option("--series", open.series, "which image of a file that holds several, from 0")
                        ->check(wholeIn(0, 0x7fffffff))
                        ->type_name("N"));
    if (verb.name != "info") {
        std::vector<std::string> types{pixelTypes.begin(), pixelTypes.end()};
        types.emplace_back("binary");
        added.push_back(addChoice(command, "--as", options.as, types, "convert pixels while reading"));
        added.push_back(command.add_flag("--scaled", open.scaled, "measure the numbers that a header's scale gives"));
    }
    added.push_back(addChoice(command, "--stack", options.stack, {"z", "c", "t"},
                              "all files, in natural order, are one image along this axis"));
    added.push_back(command.add_option("--max-pixels", open.maxPixels, "refuse images that are larger (default: 2^40)")
                        ->type_name("N"));
    for (CLI::Option* const option : added) {
        option->group(group);
    }
}

void addOptions(CLI::App& command, const Verb& verb, Options& options)
{
    const Difference& difference = findDifference(verb.name);
    const std::vector<MeasureForm>& forms = verb.measure.forms;
    const bool isInfo = verb.name == "info";
    if (verb.takesLabels()) {
        command
            .add_option_function<std::string>(
                "LABELS", [&options](const std::string& word) { options.images = {word}; },
                "an image of integer labels: a file, or - (standard input)")
            ->required();
        command.add_option("IMAGE", options.labelledImages, "images to measure in the regions, of the same size");
    } else if (verb.takesTwo()) {
        command
            .add_option_function<std::string>(
                "IMAGE", [&options](const std::string& word) { options.images = {word}; },
                "a file, a folder, a pattern, or - (standard input)")
            ->required();
        command.add_option("IMAGE2", options.others, "another one of the same size, or one for each")->required();
    } else if (verb.takesImages()) {
        command.add_option("IMAGE", options.images, "files, folders, patterns, or - (standard input)")
            ->required(!isInfo);
    }
    if (!forms.empty()) {
        std::vector<std::string> pers;
        for (const Per per : listPers(verb.measure)) {
            pers.emplace_back(namesOf(per)[static_cast<std::size_t>(per)]);
        }
        if (pers.size() > 1 && !verb.isProjection()) {
            addPer(command, options.per, pers);
        }
        if (std::any_of(forms.begin(), forms.end(), [](const MeasureForm& form) { return form.takesMask(); })) {
            command.add_option("--mask", options.masks, difference.maskHelp)->type_name("FILE");
        }
        for (const attr::Parameter& parameter : verb.measure.parameters) {
            addParameter(command, parameter, options);
        }
    }
    if (verb.isProjection()) {
        addChoice(
            command, "--axis", options.axis, {"x", "y", "z", "t"},
            "x: a number per column, y: a number per row, z: an image over all planes, t: an image over all times")
            ->required();
        command.get_option("--stat")->required();
        addChoice(command, "--out-type", options.outType, {pixelTypes.begin(), pixelTypes.end()},
                  "pixel type of the image that is written (default: the image's)");
    }
    if (difference.takesBinary) {
        command.add_flag("--binary", options.binary, "read any pixel that is not 0 as set");
    }
    if (difference.gpuHelp != nullptr) {
        command.add_flag("--gpu", options.gpu, difference.gpuHelp);
    }
    if (verb.takesImages()) {
        addFileOptions(command, verb, options);
    }
    if (verb.measure.state != nullptr) {
        command
            .add_option("--next-pass", options.nextPass,
                        "go on with the state that merged all pieces, where it needs another pass")
            ->type_name("STATE")
            ->group("States");
    }
    if (verb.measure.state != nullptr || verb.name == "merge" || verb.name == "histogram") {
        command
            .add_option("--save-state", options.saveState, "write a state that orlix merge takes, instead of a result")
            ->type_name("FILE")
            ->group("States");
    }
    if (verb.name == "merge") {
        command.add_option("STATE", options.images, "files that --save-state wrote")->required();
    }
    command.add_flag("--json", options.json, "a JSON object on a line for each image")->group("Output");
    command.add_flag("--csv", options.csv, "a table for programs: one header line, a row for each result")
        ->group("Output");
    command
        .add_option("-o", options.output,
                    verb.isProjection() ? "with --axis z or t the TIFF file to write (of several images, a folder); "
                                          "else a file for the table"
                                        : "write to this file: .json, .csv, or what --json or --csv says")
        ->type_name("FILE")
        ->group("Output");
    command.add_flag("--quiet", options.quiet, "no progress and no notes on standard error")->group("Output");
    addChoice(command, "--isa", options.isa, {"generic", "sse2", "avx", "avx2", "avx512"}, "force an instruction set")
        ->group("Machine");
    if (verb.takesImages() && verb.name != "info") {
        command
            .add_option("--memory", options.memory,
                        "bound of the memory for pixels, as 2G (default: little; a quarter of the machine's for "
                        "medians along z and t)")
            ->transform(CLI::AsSizeValue(false).description(""))
            ->type_name("SIZE")
            ->group("Machine");
    }
    command.add_option("--threads", options.threads, "worker threads (default: all processors)")
        ->check(CLI::Range(1u, 4096u).description(""))
        ->type_name("N")
        ->group("Machine");
    std::string description = verb.help;
    description.append("\n\nExample:\n  orlix ").append(difference.example).append("\n");
    command.description(description);
    command.footer(verb.measure.remark);
}

/// Refuses by name what cannot be served: a verb that is not there, or verbs and options that are still to come.
void refuseUnknown(const std::vector<Verb>& verbs, int argc, const char* const* argv)
{
    const auto isVerb = [&](const std::string& word) {
        return std::any_of(verbs.begin(), verbs.end(), [&](const Verb& verb) { return verb.name == word; });
    };
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "help" || first == "completion" || first == "manual") {
        return;
    }
    if (std::find(std::begin(laterVerbs), std::end(laterVerbs), first) != std::end(laterVerbs)) {
        throw UsageError{"the verb " + first + " is not available yet"};
    }
    if (first.empty() || (first[0] != '-' && !isVerb(first))) {
        throw UsageError{(first.empty() ? "a verb is needed" : "there is no verb " + first) + " (see orlix --help)"};
    }
}

/// The extension of a file name that stands for something else than TIFF; empty if none.
std::string findOtherExtension(const std::string& path)
{
    constexpr std::string_view others[] = {".png",  ".jpg", ".jpeg", ".jp2", ".webp", ".gif",  ".bmp", ".nrrd",
                                           ".nhdr", ".mha", ".mhd",  ".nii", ".gz",   ".mrc",  ".npy", ".h5",
                                           ".hdf5", ".pdf", ".csv",  ".txt", ".json", ".html", ".zarr"};
    const std::string extension = CLI::detail::to_lower(fs::path{path}.extension().string());
    return std::find(std::begin(others), std::end(others), extension) != std::end(others) ? extension : "";
}

/// What one option cannot tell by itself; sets what several say together.
void settle(const Verb& verb, Options& options)
{
    if (verb.name == "info" && options.images.empty() != options.gpu) {
        throw UsageError{options.gpu ? "info --gpu takes no image" : "IMAGE is required (see orlix --help)"};
    }
    if (options.gpu && !options.masks.empty()) {
        throw UsageError{"--gpu and --mask do not go together: statistics under a mask run on the CPU only"};
    }
    if (options.gpu && !options.isa.empty()) {
        throw UsageError{"--gpu and --isa do not go together: an instruction set is the CPU's"};
    }
    if (verb.measure.extras.check != nullptr) {
        try {
            verb.measure.extras.check(listParameters(verb.measure, options));
        } catch (const MeasureException& error) {
            throw UsageError{std::string{error.what()} + " (see orlix " + verb.name + " --help)"};
        }
    }
    if (options.json && options.csv) {
        throw UsageError{"--json and --csv do not go together: give one of them"};
    }
    if (!options.open.pages.empty() && !options.open.axes.empty()) {
        throw UsageError{"--pages and --axes do not go together: give one of them"};
    }
    if (!options.as.empty()) {
        options.open.as = image::findImageBufferType(options.as);
    }
    options.part = parsePart(options.plane, options.region);
    if (!options.saveState.empty() && (!options.output.empty() || options.json || options.csv)) {
        throw UsageError{"--save-state writes a state instead of a result: leave out -o, --json and --csv"};
    }
    const bool makesImage = options.axis == "z" || options.axis == "t";
    if (makesImage) {
        if (options.output.empty()) {
            throw UsageError{"--axis " + options.axis + " makes an image: name its file with -o"};
        }
        if (options.output == "-") {
            throw UsageError{"-o -: an image does not go to standard output: name a TIFF file"};
        }
        if (const std::string other = findOtherExtension(options.output); !other.empty()) {
            throw UsageError{"-o " + options.output + ": no " + other +
                             " files are written, but TIFF: end its name in .tif"};
        }
        return;
    }
    if (!options.axis.empty() && !options.outType.empty()) {
        throw UsageError{"--out-type goes with --axis z or t: a projection along " + options.axis + " writes no image"};
    }
    if (!options.output.empty() && !options.json && !options.csv) {
        const std::string extension = CLI::detail::to_lower(fs::path{options.output}.extension().string());
        options.json = extension == ".json";
        options.csv = extension == ".csv";
        if (!options.json && !options.csv) {
            throw UsageError{"-o " + options.output + ": end its name in .json or .csv, or say --json or --csv"};
        }
    }
}

/// What is wrong with the words, and where to look; `chosen` is the verb, if it got that far.
[[noreturn]] void failUsage(const CLI::ParseError& error, const std::string& chosen, int argc, const char* const* argv)
{
    // An option that there is not may be the name of a file.
    for (int i = 2; i < argc && std::string{argv[i]} != "--"; ++i) {
        if (argv[i][0] == '-' && fs::exists(argv[i])) {
            throw UsageError{std::string{argv[i]} +
                             " looks like an option: write -- before files that begin with a dash"};
        }
    }
    throw UsageError{std::string{error.what()} + " (see orlix " + (chosen.empty() ? "" : chosen + " ") + "--help)"};
}

/// Lists verbs with the first line of what they say of themselves.
class HelpFormatter final : public CLI::Formatter
{
public:
    std::string make_subcommand(const CLI::App* verb) const override
    {
        const std::string text = verb->get_description();
        std::ostringstream line;
        CLI::detail::format_help(line, verb->get_name(), text.substr(0, text.find('\n')), get_column_width());
        return line.str();
    }
};

/// Writes errors and notes, a line each.
class Complaints
{
public:
    explicit Complaints(std::ostream& stream) : stream_{stream} {}

    void operator()(std::string text) const
    {
        std::replace_if(
            text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        stream_ << "orlix: " << text << "\n" << std::flush;
    }

private:
    std::ostream& stream_;
};

void printNotes(const Report& report, const Options& options, const Complaints& complain)
{
    for (const std::string& note : report.notes) {
        if (!options.quiet) {
            complain("note: " + note);
        }
    }
}

/// The images of a command, one after the other: with each of them its second image and its mask.
class ImageLoop
{
public:
    ImageLoop(const Verb& verb, const Options& options) : verb_{verb}, options_{options}
    {
        images_ = list(options.images);
        others_ = options.others.empty() ? std::vector<ImageArgument>{} : list({options.others});
        masks_ = options.masks.empty() ? std::vector<ImageArgument>{} : listImages({options.masks});
        labelled_ = listImages(options.labelledImages);
        if (verb.takesLabels() && images_.size() > 1) {
            throw UsageError{"LABELS " + options.images.front() + " makes " + std::to_string(images_.size()) +
                             " images: one is needed"};
        }
        checkNumber(others_, "IMAGE2", options.others);
        checkNumber(masks_, "--mask", options.masks);
        // What is in a folder may grow; what was asked for is one image.
        writesToFolder_ = verb.isProjection() && (options.axis == "z" || options.axis == "t") &&
                          (isForSeveral() || fs::is_directory(options.output));
        for (const auto& list : {images_, others_, masks_, labelled_}) {
            for (const ImageArgument& image : list) {
                for (const std::string& file : image.files) {
                    inputs_.insert(identify(file));
                }
            }
        }
        if (writesToFolder_ && !fs::is_directory(options.output)) {
            throw UsageError{"-o " + options.output +
                             ": of several images each makes a file: name a folder that is there"};
        }
    }

    bool isForSeveral() const { return images_.size() > 1 || (images_.size() == 1 && !images_[0].folder.empty()); }

    /// Throws FileError where a file that is to be written cannot be, or is one of those that are read.
    void checkOutput(const std::string& path) const
    {
        files::checkOutputPath(path);
        if (inputs_.contains(identify(path)) || members_.contains(identify(path))) {
            throw FileError{path + ": it is an image that is read: name another file"};
        }
    }

    /// Runs the verb on every image. Returns whether all went well.
    template <class Print>
    bool run(Print print, const Complaints& complain)
    {
        bool isFine = true;
        for (std::size_t i = 0; i < images_.size(); ++i) {
            Options options = options_;
            options.image = images_[i];
            // Files of one set, found in a folder, are one image.
            if (!options.image.folder.empty() && members_.contains(identify(options.image.name))) {
                continue;
            }
            options.image2 = others_.empty() ? ImageArgument{} : others_[others_.size() > 1 ? i : 0];
            options.labelled = labelled_;
            options.mask = masks_.empty() ? ImageArgument{} : masks_[masks_.size() > 1 ? i : 0];
            try {
                checkInterrupt();
                if (writesToFolder_) {
                    options.output = nameOutput(options.image.name);
                }
                Report report = measure(options);
                for (const std::string& member : report.members) {
                    members_.insert(identify(member));
                }
                printNotes(report, options, complain);
                print(std::move(report));
            } catch (const std::exception& error) {
                if (!isForSeveral()) {
                    throw;
                }
                complain(error.what());
                isFine = false;
            }
        }
        return isFine;
    }

private:
    std::vector<ImageArgument> list(const std::vector<std::string>& words) const
    {
        std::vector<ImageArgument> images = listImages(words);
        return options_.stack.empty() || images.empty() ? images : std::vector{stackImages(images, words)};
    }

    void checkNumber(const std::vector<ImageArgument>& others, const char* what, const std::string& word) const
    {
        if (others.size() > 1 && others.size() != images_.size()) {
            throw UsageError{std::string{what} + " " + word + " makes " + std::to_string(others.size()) +
                             " images, where there are " + std::to_string(images_.size()) +
                             ": one is needed, or one for each"};
        }
    }

    static std::string identify(const std::string& path)
    {
        std::error_code none;
        return fs::weakly_canonical(path, none).string();
    }

    std::string nameOutput(const std::string& image)
    {
        std::string path = (fs::path{options_.output} / (fs::path{image}.stem().string() + ".tif")).string();
        checkOutput(path);
        if (!outputs_.insert(path).second) {
            throw FileError{image + ": " + path + " was written for another image: give them names of their own"};
        }
        return path;
    }

    /// Whatever goes wrong in a measure names the file, and the instruction set where one is forced.
    Report measure(const Options& options) const
    {
        try {
            return verb_.run(options);
        } catch (const FileError&) {
            throw;
        } catch (const UsageError&) {
            throw;
        } catch (const Interrupted&) {
            throw;
        } catch (...) {
            const std::string forced = options.isa.empty() ? "" : " (--isa " + options.isa + ")";
            throw FileError{options.image.name + ": " + core::describeCurrentException() + forced};
        }
    }

    const Verb& verb_;
    const Options& options_;
    std::vector<ImageArgument> images_;
    std::vector<ImageArgument> others_;
    std::vector<ImageArgument> masks_;
    std::vector<ImageArgument> labelled_;
    bool writesToFolder_ = false;
    std::set<std::string> inputs_;
    std::set<std::string> members_; // files that belong to images that were read
    std::set<std::string> outputs_;
};

/// Runs a verb and prints what it has to say. Returns the exit status.
int runVerb(const Verb& verb, const Options& options, std::ostream& output, const Complaints& complain)
{
    const bool makesImage = options.axis == "z" || options.axis == "t";
    const bool goesToFile = !options.output.empty() && !makesImage;
    const auto form = options.json  ? ReportPrinter::Form::JsonLines
                      : options.csv ? ReportPrinter::Form::Csv
                                    : ReportPrinter::Form::Table;
    const Difference& difference = findDifference(verb.name);
    std::ostringstream collected;
    bool isFine = true;
    const auto run = [&](std::ostream& stream) {
        if (!verb.takesImages() || options.images.empty()) {
            Report report = verb.run(options);
            printNotes(report, options, complain);
            // What is merged is printed as its measure prints it.
            const auto forPeople = verb.name == "info"    ? nullptr
                                   : verb.name == "merge" ? findPrinter(report.measure)
                                                          : difference.forPeople;
            ReportPrinter printer{stream, form, forPeople, false};
            printer.print(std::move(report));
            printer.finish();
            return;
        }
        ImageLoop loop{verb, options};
        const bool isForSeveral = loop.isForSeveral();
        ReportPrinter printer{stream, form, isForSeveral && verb.name == "info" ? nullptr : difference.forPeople,
                              isForSeveral};
        if (!options.output.empty() && !fs::is_directory(options.output)) {
            loop.checkOutput(options.output);
        }
        if (!options.saveState.empty()) {
            if (isForSeveral) {
                throw UsageError{"--save-state is for one image: give one, or --stack z, c or t"};
            }
            loop.checkOutput(options.saveState);
        }
        isFine = loop.run([&](Report report) { printer.print(std::move(report)); }, complain);
        printer.finish();
        if (goesToFile) {
            loop.checkOutput(options.output); // sets of files are known now
        }
    };
    if (!goesToFile) {
        run(output);
        return isFine ? 0 : 1;
    }
    run(collected);
    if (isFine || !collected.str().empty()) {
        files::writeText(options.output, collected.str());
    }
    return isFine ? 0 : 1;
}

int run(int argc, const char* const* argv, std::ostream& output, const Complaints& complain)
{
    const std::vector<Verb> verbs = listVerbs();
    refuseUnknown(verbs, argc, argv);
    CLI::App app{"Global measures of 2d and 3d images.\n\n"
                 "Examples:\n"
                 "  orlix stats samples/cells.tif\n"
                 "  orlix histogram 'samples/*.tif' --classes 64 -o histograms.csv\n"
                 "  orlix project samples/stack.ome.tif --axis z --stat median -o flat.tif\n",
                 "orlix"};
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_version_flag("--version", "orlix 4.1.0.2");
    app.require_subcommand(1);
    Options options;
    for (const Verb& verb : verbs) {
        addOptions(*app.add_subcommand(verb.name, verb.help), verb, options);
    }
    std::string helpOf;
    app.add_subcommand("help", "help on a verb")->add_option("VERB", helpOf);
    std::string shell;
    addChoice(*app.add_subcommand("completion", "completions for a shell, such as: orlix completion bash > orlix.bash"),
              "SHELL", shell, {"bash", "zsh", "fish"}, "")
        ->required();
    app.add_subcommand("manual", "the manual page: orlix manual | man -l -");
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
            output << help(helpOf);
            return 0;
        }
    } catch (const CLI::CallForHelp&) {
        output << help(chosen());
        return 0;
    } catch (const CLI::CallForVersion& version) {
        output << version.what() << "\n";
        return 0;
    } catch (const CLI::OptionNotFound&) {
        throw UsageError{"there is no verb " + helpOf + " (see orlix --help)"};
    } catch (const CLI::ParseError& error) {
        failUsage(error, chosen(), argc, argv);
    }
    if (chosen() == "completion" || chosen() == "manual") {
        output << (chosen() == "manual" ? writeManual(app) : writeCompletion(app, shell));
        return 0;
    }
    const Verb& verb = *std::find_if(verbs.begin(), verbs.end(), [&](const Verb& v) { return v.name == chosen(); });
    settle(verb, options);
    applySettings(options);
    return runVerb(verb, options, output, complain);
}

} // namespace

int runCommand(int argc, const char* const* argv, std::ostream& output, std::ostream& error)
{
    const Complaints complain{error};
    try {
        return run(argc, argv, output, complain);
    } catch (const UsageError& usage) {
        complain(usage.what());
        return 2;
    } catch (const Interrupted&) {
        return interruptedStatus;
    } catch (...) {
        complain(core::describeCurrentException());
        return 1;
    }
}

} // namespace orlix::app
