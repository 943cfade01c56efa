#include <orlix/Commands.hpp>

#include <orlix/Errors.hpp>
#include <orlix/GpuSupport.hpp>
#include <orlix/Measures.hpp>

#include <framework/core/Settings.hpp>
#include <framework/process/BaseProcessingAlgorithm.hpp>
#include <framework/process/MeasureList.hpp>
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

/// A table of measures is for people: the names of things.
void listNames(Report& report)
{
    for (Json& row : report.results) {
        for (const auto& [list, key] :
             {std::pair{"Forms", "function"}, {"Inputs", "name"}, {"Parameters", "name"}, {"Fields", "name"}}) {
            std::string names;
            for (const Json& each : row[list]) {
                names += (names.empty() ? "" : ", ") + each[key].get<std::string>();
            }
            row[list] = names;
        }
        row.erase("Name");
        row.erase("Inputs");
    }
}

/// A verb that measures nothing.
struct OwnVerb
{
    const char* name;
    const char* help;
    Report (*run)(const Options&);
};

constexpr OwnVerb ownVerbs[] = {
    {"info", "type and sizes of an image", &runInfo},
    {"measures", "the measures, their forms, parameters and fields", &runMeasures},
    {"processors", "the processor classes and their kernels", &runProcessors},
};

/// Where a verb differs from what follows from its measure.
struct Difference
{
    const char* verb;
    const char* maskHelp = "count only where this image is not 0";
    const char* gpuHelp = nullptr;        ///< of --gpu, where the verb takes it
    bool takesBinary = false;             ///< --binary
    void (*forPeople)(Report&) = nullptr; ///< makes a table of a report that is one for machines
};

constexpr Difference differences[] = {
    {.verb = "info", .gpuHelp = "what GPU there is, instead of an image"},
    {.verb = "measures", .forPeople = &listNames},
    {.verb = "processors", .forPeople = &summariseKernels},
    {.verb = "stats", .gpuHelp = "measure on the GPU"},
    {.verb = "histogram", .forPeople = &spreadClasses},
    {.verb = "kde", .forPeople = &countSamples},
    {.verb = "percent",
     .maskHelp = "where this image is 0 pixels have the value 0, and still count",
     .takesBinary = true,
     .forPeople = &spreadPercentages},
    {.verb = "locate", .takesBinary = true, .forPeople = &spreadCoordinates},
    {.verb = "paraboloid", .forPeople = &spreadCoefficients},
    {.verb = "ncc", .forPeople = &keepCorrelation},
    {.verb = "similarity", .forPeople = &showInfinity},
    {.verb = "project", .forPeople = &spreadValues},
};

const Difference& findDifference(const std::string& verb)
{
    static constexpr Difference none{""};
    const auto* const found = std::find_if(std::begin(differences), std::end(differences),
                                           [&](const Difference& difference) { return difference.verb == verb; });
    return found == std::end(differences) ? none : *found;
}

/// What can be run: a verb of its own, or a measure.
struct Verb
{
    std::string name;
    std::string help;
    const OwnVerb* own = nullptr;
    Measure measure{};

    bool isProjection() const { return name == "project"; }
    Report run(const Options& options) const
    {
        return own != nullptr ? own->run(options) : (isProjection() ? runProject : runMeasure)(measure, options);
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

/// An option for a parameter of a measure.
void addParameter(CLI::App& command, const attr::Parameter& parameter, Options& options)
{
    const std::string name = parameter.info.option;
    std::string help = parameter.info.help;
    if (parameter.defaultValue && parameter.info.enumerators.empty()) {
        help += " (default: " + toJson(*parameter.defaultValue).dump() + ")";
    }
    CLI::Option* const option = command.add_option("--" + name, options.parameters[name], help);
    if (name == "bandwidth") {
        option->description("silverman (the default), scott or a number")->transform(bandwidth())->type_name("");
    } else if (!parameter.info.enumerators.empty()) {
        option
            ->transform(CLI::IsMember(
                std::vector<std::string>(parameter.info.enumerators.begin(), parameter.info.enumerators.end()),
                CLI::ignore_case))
            ->type_name("");
    } else if (parameter.isWhole) {
        const bool countsBins = name == "classes";
        option->check(wholeIn(countsBins ? 1 : 0, countsBins ? 0x7fffffff : 0xffffffff))->type_name("N");
    } else {
        option->check(finiteAbove(name == "bin-width" ? 0 : -std::numeric_limits<double>::infinity()))->type_name("X");
    }
}

/// What one result may cover, the default first.
std::vector<std::string> listPers(const Measure& measure)
{
    std::vector<std::string> pers;
    for (const MeasureForm& form : measure.forms) {
        if (std::find(pers.begin(), pers.end(), form.per) == pers.end()) {
            pers.push_back(form.per);
        }
    }
    return pers;
}

void addOptions(CLI::App& command, const Verb& verb, Options& options)
{
    const Difference& difference = findDifference(verb.name);
    const std::vector<MeasureForm>& forms = verb.measure.forms;
    const bool isInfo = verb.name == "info";
    if (isInfo || !forms.empty()) {
        command.add_option("IMAGE", options.image, "a TIFF file")->required(!isInfo);
        command.add_option("--pages", options.pages, "how the pages nest, fastest first, such as z=4,c=2,t=3")
            ->type_name("ORDER");
    }
    if (!forms.empty()) {
        const auto& inputs = forms.front().inputs;
        if (std::count_if(inputs.begin(), inputs.end(), [](const MeasureInput& input) { return !input.isMask; }) > 1) {
            command.add_option("IMAGE2", options.image2, "another one, of the same size")->required();
        }
        const std::vector<std::string> pers = listPers(verb.measure);
        if (pers.size() > 1 && !verb.isProjection()) {
            std::string help = "what one result covers: ";
            for (std::size_t i = 0; i < pers.size(); ++i) {
                help += (i == 0 ? "" : i + 1 == pers.size() ? " or " : ", ") + pers[i];
            }
            command.add_option("--per", options.per, help + " (default: " + pers.front() + ")")
                ->transform(CLI::IsMember(pers, CLI::ignore_case))
                ->type_name("");
        }
        if (std::any_of(forms.begin(), forms.end(), [](const MeasureForm& form) { return form.takesMask(); })) {
            command.add_option("--mask", options.mask, difference.maskHelp)->type_name("FILE");
        }
        for (const attr::Parameter& parameter : verb.measure.parameters) {
            addParameter(command, parameter, options);
        }
    }
    if (verb.isProjection()) {
        command
            .add_option("--axis", options.axis,
                        "x: a number per column, y: a number per row, z: an image over all planes, t: an image "
                        "over all times")
            ->transform(CLI::IsMember({"x", "y", "z", "t"}, CLI::ignore_case))
            ->type_name("")
            ->required();
        command.get_option("--stat")->required();
        command.add_option("-o", options.output, "with --axis z or t: the TIFF file to write")->type_name("FILE");
        command.add_option("--out-type", options.outType, "pixel type of that file (default: the image's)")
            ->transform(
                CLI::IsMember({"uint8", "int8", "uint16", "int16", "uint32", "int32", "float32"}, CLI::ignore_case))
            ->type_name("TYPE");
    }
    if (verb.name == "kde") {
        command
            .add_option("--seed", options.seed,
                        "seed of the sample, which it repeats for one plan, or with --threads 1")
            ->type_name("N");
    }
    if (verb.name == "similarity") {
        command.add_option("--peak", options.peak, "peak of the signal (default: 255)")
            ->check(finiteAbove(0))
            ->type_name("P");
    }
    if (difference.takesBinary) {
        command.add_flag("--binary", options.binary, "read any pixel that is not 0 as set");
    }
    if (difference.gpuHelp != nullptr) {
        command.add_flag("--gpu", options.gpu, difference.gpuHelp);
    }
    command.add_option("--isa", options.isa, "force an instruction set: generic, sse2, avx, avx2 or avx512")
        ->check(CLI::IsMember({"generic", "sse2", "avx", "avx2", "avx512"}))
        ->type_name("");
    command.add_option("--threads", options.threads, "worker threads (default: all processors)")
        ->check(CLI::Range(1u, 4096u))
        ->type_name("N");
    command.add_flag("--json", options.json, "one JSON object on one line");
    command.add_flag("--quiet", options.quiet, "no notes on standard error");
    command.footer(verb.measure.remark);
}

/// Refuses by name what cannot be served: a verb that is not there, or verbs and options that are still to come.
void refuseUnknown(const std::vector<Verb>& verbs, int argc, const char* const* argv)
{
    const auto isVerb = [&](const std::string& word) {
        return std::any_of(verbs.begin(), verbs.end(), [&](const Verb& verb) { return verb.name == word; });
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
    if (verb.name == "info" && options.image.empty() != options.gpu) {
        throw UsageError{options.gpu ? "info --gpu takes no image" : "IMAGE is required (see orlix --help)"};
    }
    if (options.gpu && !options.mask.empty()) {
        throw UsageError{"--gpu and --mask do not go together: statistics under a mask run on the CPU only"};
    }
    if (options.gpu && !options.isa.empty()) {
        throw UsageError{"--gpu and --isa do not go together: an instruction set is the CPU's"};
    }
    if (options.has("min") != options.has("max")) {
        throw UsageError{"--min and --max go together: give both or neither"};
    }
    if (options.has("min") && *options.number("min") > *options.number("max")) {
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
    if (options.has("bin-width") && options.has("classes")) {
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
    const std::vector<Verb> verbs = listVerbs();
    refuseUnknown(verbs, argc, argv);
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
    const Verb& verb = *std::find_if(verbs.begin(), verbs.end(), [&](const Verb& v) { return v.name == chosen(); });
    checkTogether(verb, options);
    applySettings(options);
    Report report = runNamed(verb, options);
    if (!options.quiet) {
        notes = report.notes;
    }
    if (options.json) {
        return printJson(report);
    }
    if (const auto forPeople = findDifference(verb.name).forPeople) {
        forPeople(report);
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
