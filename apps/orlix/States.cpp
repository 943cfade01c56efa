#include <orlix/States.hpp>

#include <files/OutputFile.hpp>
#include <orlix/Errors.hpp>
#include <orlix/Inputs.hpp>
#include <orlix/Measures.hpp>
#include <orlix/Progress.hpp>

#include <ORLIX/Measures/Describe.hpp>
#include <framework/process/MeasureRun.hpp>
#include <framework/process/StateBytes.hpp>

#include <algorithm>
#include <fstream>

namespace orlix::app
{

using namespace imaproc;

namespace
{

/// Without a name from the library, whose measures are on the list, the linker would leave it out.
[[maybe_unused]] const auto volatile linked = &measures::describe;

using StatePtr = std::unique_ptr<BaseMeasureState>;

/// The options of a state that the command line gives.
NamedValues listOptions(const Measure& measure, const Options& options)
{
    NamedValues values = listParameters(measure, options);
    if (!options.per.empty()) {
        values.emplace_back("per", options.per);
    }
    return values;
}

std::string readFile(const std::string& path)
{
    std::ifstream stream{path, std::ios::binary};
    std::string bytes{std::istreambuf_iterator<char>{stream}, {}};
    if (!stream.is_open() || stream.bad()) {
        throw FileError{path + ": it cannot be read"};
    }
    if (bytes.empty()) {
        throw FileError{path + ": it is empty"};
    }
    return bytes;
}

std::string getVerb(const std::string& path)
{
    try {
        return getVerbOfState(readFile(path));
    } catch (const MeasureException& error) {
        throw FileError{path + ": " + error.what()};
    }
}

StatePtr readState(const std::string& path)
{
    const std::string bytes = readFile(path);
    try {
        const std::string verb = getVerbOfState(bytes);
        for (const Measure& measure : MeasureList::getInstance().getMeasures()) {
            if (measure.state != nullptr && measure.verb == verb) {
                return measure.state->entry.read(bytes);
            }
        }
        throw FileError{path + ": it is a state of " + verb + ": states that merge are of one measure"};
    } catch (const MeasureException& error) {
        throw FileError{path + ": " + error.what()};
    }
}

/// A row of nothing that has every column of the others.
Json makeEmptyRow(const ResultRows& results)
{
    Json row = results.rows.empty() ? Json::object() : toJson(ResultRow{results.rows[0].place, {}});
    const Json first = results.rows.empty() ? Json::object() : toJson(results.rows[0]);
    for (const auto& [name, field] : results.columns) {
        const bool isLabelled = field.info.columns == 1 && !field.info.columnNames.empty();
        row[name] = isLabelled ? Json(std::vector<Json>(field.info.columnNames.size())) : first.value(name, Json{});
    }
    return row;
}

/// What the state has to say, or where it goes.
void finish(const BaseMeasureState& state, const Options& options, Report& report)
{
    if (!options.saveState.empty()) {
        files::writeText(options.saveState, state.toBytes());
        report.isSilent = true;
        return;
    }
    if (state.needsPass()) {
        throw FileError{
            std::string{"another pass over the pixels is needed for "} + state.getMeasure().passReason +
            ": write what is merged with --save-state FILE, and measure all pieces again with --next-pass FILE"};
    }
    const ResultRows results = state.finishRows();
    for (const ResultRow& row : results.rows) {
        report.results.push_back(toJson(row));
    }
    for (const auto& [name, field] : results.columns) {
        if (field.info.columns == 1 && !field.info.columnNames.empty()) {
            report.columnNames[name] = {field.info.columnNames.begin(), field.info.columnNames.end()};
        }
    }
    if (report.emptyRow.is_null()) {
        report.emptyRow = makeEmptyRow(results);
    }
    for (const std::string& note : results.notes) {
        const bool hasImage = !report.images.empty();
        std::string named = (hasImage ? report.images.front().second["path"].get<std::string>() + ": " : "") + note;
        if (std::find(report.notes.begin(), report.notes.end(), named) == report.notes.end()) {
            report.notes.push_back(std::move(named));
        }
    }
}

StatePtr makeState(const Measure& measure, const Options& options)
{
    if (options.nextPass.empty()) {
        try {
            return measure.state->entry.create(listOptions(measure, options));
        } catch (const core::BaseException& error) {
            throw UsageError{std::string{error.what()} + " (see orlix " + measure.verb + " --help)"};
        }
    }
    StatePtr state = readState(options.nextPass);
    if (state->getMeasure().verb != measure.verb) {
        throw FileError{options.nextPass + ": it is a state of " + state->getMeasure().verb};
    }
    if (!listOptions(measure, options).empty()) {
        throw UsageError{"--next-pass goes on with the options that its state has: leave others out"};
    }
    if (!state->nextPass()) {
        throw FileError{options.nextPass + ": it needs no other pass"};
    }
    return state;
}

/// What is read of an image, of which a state is made, and what of that enters it: a state that looks at neighbours has
/// them read, too.
std::pair<Options, std::optional<Extent>> widenPart(const Options& options, std::uint64_t margin)
{
    Options wide = options;
    const bool isCut = !options.region.empty();
    if (margin == 0 || !isCut || options.saveState.empty()) {
        return {wide, std::nullopt};
    }
    const image::ImageGeometry size = readSize(options);
    Extent core{{}, {size.x, size.y, size.z, size.c, size.t}};
    const auto place = [&](const files::Range& range, std::uint64_t Position::*side) {
        core.begin.*side = range.begin;
        core.end.*side = std::min<std::uint64_t>(range.end, core.end.*side);
    };
    place(options.part.x, &Position::x);
    place(options.part.y, &Position::y);
    place(options.part.z, &Position::z);
    place(options.part.c, &Position::c);
    place(options.part.t, &Position::t);
    const auto widen = [&](files::Range& range, std::size_t whole) {
        if (range.begin < range.end && (range.end <= whole || range.end == files::Range{}.end)) {
            range.begin -= std::min<std::size_t>(range.begin, margin);
            range.end = std::min(whole, std::min(range.end, whole) + margin);
        }
    };
    widen(wide.part.x, size.x);
    widen(wide.part.y, size.y);
    return {wide, core};
}

} // namespace

Report runState(const Measure& measure, const Options& options)
{
    const StatePtr state = makeState(measure, options);
    std::vector<ImageView> images;
    ImageView mask;
    files::Position at;
    std::optional<Extent> core;
    Report report;
    ImageSource source;
    if (measure.forms.front().inputs.back().isList) {
        LabelledInputs inputs{options};
        images = {inputs.labels};
        images.insert(images.end(), inputs.images.begin(), inputs.images.end());
        at = inputs.origin;
        report = std::move(inputs.report);
        source = std::move(inputs.source);
    } else {
        const auto [read, wideCore] = widenPart(options, state->getMargin());
        Inputs inputs{read};
        core = wideCore;
        images = {inputs.image};
        if (inputs.image2) {
            images.emplace_back(inputs.image2);
        }
        mask = inputs.mask ? ImageView{inputs.mask} : ImageView{};
        at = inputs.origin;
        report = std::move(inputs.report);
        source = std::move(inputs.source);
    }
    report.measure = measure.verb;
    double bytes = 0;
    for (const ImageView& image : images) {
        bytes += countBytes(*image);
    }
    const bool isByPlane = options.per == "plan" && options.saveState.empty() && options.nextPass.empty();
    if (const auto groups = isByPlane ? groupPlanes(*images[0], at) : std::vector<Extent>{}; groups.size() > 1) {
        Watch watch{options.image.name, bytes, groups.size(), options.quiet};
        for (const Extent& group : groups) {
            const StatePtr part = state->clone();
            watch.run([&](const RunControl& run) {
                do {
                    part->add(images, mask, at, group, run);
                } while (part->nextPass());
            });
            finish(*part, options, report);
        }
        const auto place = [](const Json& row) { return std::tuple{row["t"], row["c"], row["z"]}; };
        std::stable_sort(report.results.begin(), report.results.end(),
                         [&](const Json& a, const Json& b) { return place(a) < place(b); });
        source.addNotes(report);
        return report;
    }
    int pass = 1;
    do {
        const std::string name = options.image.name + (pass == 1 ? "" : ", pass " + std::to_string(pass));
        Watch{name, bytes, 1, options.quiet}.run(
            [&](const RunControl& run) { state->add(images, mask, at, core, run); });
        ++pass;
    } while (options.saveState.empty() && state->nextPass());
    source.addNotes(report);
    finish(*state, options, report);
    return report;
}

namespace
{

constexpr const char* histogramVerb = "histogram";

/// What makes two histograms those of one plan, volume or image.
Json getPlace(const Json& row)
{
    Json place = Json::object();
    for (const char* const axis : {"t", "c", "z"}) {
        if (row.contains(axis)) {
            place[axis] = row[axis];
        }
    }
    return place;
}

void mergeHistogram(Json& into, const Json& from, const std::string& path)
{
    const bool isAlike = into["Frequencies"].size() == from["Frequencies"].size();
    for (const char* const bound : {"Min", "Max", "BinWidth"}) {
        if (!isAlike || into[bound] != from[bound]) {
            throw FileError{path + ": its classes are others: measure all pieces with one --min, --max and --classes"};
        }
    }
    for (std::size_t i = 0; i < into["Frequencies"].size(); ++i) {
        into["Frequencies"][i] =
            into["Frequencies"][i].get<std::uint64_t>() + from["Frequencies"].at(i).get<std::uint64_t>();
    }
}

/// What a file has: the measure, and the histograms in "results".
Json readHistograms(const std::string& path)
{
    const std::string bytes = readFile(path);
    try {
        std::string verb;
        const std::string_view text = unwrapState(bytes, verb);
        if (verb != histogramVerb) {
            return {{"measure", verb}};
        }
        Json content = Json::parse(text);
        content.at("measure").get<std::string>();
        for (const Json& row : content.at("results")) {
            for (const char* const bound : {"Min", "Max", "BinWidth"}) {
                row.at(bound);
            }
            row.at("Frequencies").get<std::vector<std::uint64_t>>();
        }
        return content;
    } catch (const MeasureException& error) {
        throw FileError{path + ": " + error.what()};
    } catch (const Json::exception&) {
        throw FileError{path + ": the state is damaged: it has no histograms"};
    }
}

Report mergeHistograms(const Options& options)
{
    Report report;
    std::map<Json, Json> merged; // by place: t, c, z
    for (const std::string& path : options.images) {
        Json content = readHistograms(path);
        if (!content.contains("results") || (!report.measure.empty() && content["measure"] != report.measure)) {
            throw FileError{path + ": states that merge are of one measure, with the same options: this one is of " +
                            content["measure"].get<std::string>()};
        }
        report.measure = content["measure"];
        for (Json& row : content["results"]) {
            const auto [place, isNew] = merged.try_emplace(getPlace(row), row);
            if (!isNew) {
                mergeHistogram(place->second, row, path);
            }
        }
    }
    for (auto& [place, row] : merged) {
        report.results.push_back(std::move(row));
    }
    return report;
}

} // namespace

void saveHistograms(Report& report, const Options& options)
{
    const Json content = {{"measure", report.measure}, {"results", report.results}};
    files::writeText(options.saveState, wrapState(histogramVerb, content.dump()));
    report.isSilent = true;
}

Report runMerge(const Options& options)
{
    if (getVerb(options.images.front()) == histogramVerb) {
        Report report = mergeHistograms(options);
        if (!options.saveState.empty()) {
            saveHistograms(report, options);
        }
        return report;
    }
    StatePtr merged;
    for (const std::string& path : options.images) {
        StatePtr state = readState(path);
        if (!merged) {
            merged = std::move(state);
            continue;
        }
        try {
            merged->merge(*state);
        } catch (const MeasureException& error) {
            throw FileError{path + ": " + error.what()};
        }
    }
    Report report;
    report.measure = merged->getMeasure().verb;
    finish(*merged, options, report);
    return report;
}

} // namespace orlix::app
