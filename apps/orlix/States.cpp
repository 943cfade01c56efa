#include <orlix/States.hpp>

#include <files/OutputFile.hpp>
#include <orlix/Errors.hpp>
#include <orlix/Inputs.hpp>

#include <ORLIX/Measures/Describe.hpp>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace orlix::app
{

using namespace imaproc;

namespace
{

/// Without a name from the library, whose measures are on the list, the linker would leave it out.
[[maybe_unused]] const auto volatile linked = &measures::describe;

using StatePtr = std::unique_ptr<BaseMeasureState>;

std::vector<double> parseList(const std::string& text)
{
    std::vector<double> numbers;
    std::istringstream stream{text == "none" ? "" : text};
    for (std::string each; std::getline(stream, each, ',');) {
        numbers.push_back(std::strtod(each.c_str(), nullptr));
    }
    return numbers;
}

/// The options of a measure that the command line gives, or has for it.
std::vector<std::pair<std::string, data::Value>> listOptions(const Measure& measure, const Options& options)
{
    std::vector<std::pair<std::string, data::Value>> values;
    if (!options.per.empty()) {
        values.emplace_back("per", options.per);
    }
    for (const attr::Parameter& parameter : measure.parameters) {
        const std::string name = parameter.info.option;
        if (!options.has(name)) {
            continue;
        }
        const auto hasKind = [&]<class T>(std::type_identity<T>) {
            return parameter.defaultValue && std::holds_alternative<T>(*parameter.defaultValue);
        };
        const bool isList = hasKind(std::type_identity<std::vector<double>>{});
        const bool isSwitch = hasKind(std::type_identity<bool>{});
        values.emplace_back(name, isSwitch                             ? data::Value{options.text(name) == "on"}
                                  : isList                             ? data::Value{parseList(options.text(name))}
                                  : parameter.info.enumerators.empty() ? data::Value{*options.number(name)}
                                                                       : data::Value{options.text(name)});
    }
    return values;
}

Json describeRow(const ResultRow& row)
{
    Json object = Json::object();
    const ResultPlace& place = row.place;
    if (place.per == Per::Plan) {
        object["z"] = place.z;
    }
    if (place.per != Per::Image) {
        object["c"] = place.c;
        object["t"] = place.t;
    }
    for (const auto& [name, field] : row.fields) {
        object[name] = toJson(field.value, field.info);
    }
    return object;
}

std::string readFile(const std::string& path)
{
    std::ifstream stream{path, std::ios::binary};
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    if (!stream || !bytes) {
        throw FileError{path + ": it cannot be read"};
    }
    return bytes.str();
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
        throw FileError{path + ": it is a state of " + verb + ", which is no measure here"};
    } catch (const MeasureException& error) {
        throw FileError{path + ": " + error.what()};
    }
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
        throw FileError{"percentiles of 32-bit pixels need another pass: write what is merged with --save-state FILE, "
                        "and measure all pieces again with --next-pass FILE (or without percentiles)"};
    }
    for (const ResultRow& row : state.finishRows()) {
        report.results.push_back(describeRow(row));
        for (const auto& [name, field] : row.fields) {
            if (field.info.columns == 1 && !field.info.columnNames.empty()) {
                report.columnNames[name] = {field.info.columnNames.begin(), field.info.columnNames.end()};
            }
        }
    }
    for (const std::string& note : state.getNotes()) {
        const bool hasImage = !report.images.empty();
        report.notes.push_back((hasImage ? report.images.front().second["path"].get<std::string>() + ": " : "") + note);
    }
}

StatePtr makeState(const Measure& measure, const Options& options)
{
    if (options.nextPass.empty()) {
        return measure.state->entry.create(listOptions(measure, options));
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

} // namespace

Report runState(const Measure& measure, const Options& options)
{
    const StatePtr state = makeState(measure, options);
    std::vector<ImageView> images;
    ImageView mask;
    files::Position at;
    Report report;
    if (measure.forms.front().inputs.back().isList) {
        LabelledInputs inputs{options};
        images = {inputs.labels};
        images.insert(images.end(), inputs.images.begin(), inputs.images.end());
        at = inputs.origin;
        report = std::move(inputs.report);
    } else {
        Inputs inputs{options};
        images = {inputs.image};
        if (inputs.image2) {
            images.emplace_back(inputs.image2);
        }
        mask = inputs.mask ? ImageView{inputs.mask} : ImageView{};
        at = inputs.origin;
        report = std::move(inputs.report);
    }
    report.measure = measure.verb;
    do {
        state->add(images, mask, {at.x, at.y, at.z, at.c, at.t}, {});
    } while (options.saveState.empty() && state->nextPass());
    finish(*state, options, report);
    return report;
}

Report runMerge(const Options& options)
{
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
