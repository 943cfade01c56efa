#include "Array.hpp"
#include "Values.hpp"
#include "Watch.hpp"

#include <ORLIX/Measures/Describe.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsr.hpp>

#include <files/Errors.hpp>

#include <framework/attribute/KDEDataSet.hpp>
#include <framework/core/Settings.hpp>

#include <nanobind/stl/optional.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <tuple>

namespace orlix::python
{

using namespace imaproc;
using image::BaseImage;
using image::eImageBufferType;
using image::ePlanKind;

namespace
{

/// Without names from the libraries, whose measures are on the list, the linker would leave them out.
[[maybe_unused]] const auto volatile linkedMeasures = &measures::describe;
[[maybe_unused]] const auto volatile linkedGlobalMeasures = &glbmsr::gaussianNoiseMsr;

const std::vector<Measure>& listMeasures()
{
    static const auto* const measures = new std::vector{MeasureList::getInstance().getMeasures()};
    return *measures;
}

const Measure& findMeasure(const std::string& verb)
{
    for (const Measure& measure : listMeasures()) {
        if (measure.verb == verb) {
            return measure;
        }
    }
    throw nb::value_error(("there is no measure " + verb).c_str());
}

const char* nameOf(Per per)
{
    return namesOf(per)[static_cast<std::size_t>(per)];
}

Per parsePer(const Measure& measure, std::string per)
{
    per = per == "plane" ? "plan" : per;
    std::string names;
    for (const Per each : listPers(measure)) {
        if (per == nameOf(each)) {
            return each;
        }
        names.append(names.empty() ? "" : " or ").append(nameOf(each));
    }
    throw nb::value_error((measure.verb + " takes per=" + names + ", not " + per).c_str());
}

NamedValues parseParameters(const Measure& measure, const nb::dict& given)
{
    NamedValues values;
    for (const auto& [key, value] : given) {
        std::string option = nb::cast<std::string>(key);
        std::replace(option.begin(), option.end(), '_', '-');
        const auto found = std::find_if(measure.parameters.begin(), measure.parameters.end(),
                                        [&](const attr::Parameter& each) { return each.info.option == option; });
        if (found == measure.parameters.end()) {
            throw nb::type_error((measure.verb + " has no parameter " + nb::cast<std::string>(key)).c_str());
        }
        if (!value.is_none()) {
            values.emplace_back(option, fromPython(value, *found));
        }
    }
    return values;
}

/// The images of a call, which keep what they look at.
class Inputs
{
public:
    Inputs(const nb::list& images, const std::string& axes, nb::handle mask, const std::string& maskAxes, Use use)
    {
        for (const nb::handle image : images) {
            arrays_.push_back(std::make_unique<Array>(image, axes, use));
        }
        if (!mask.is_none()) {
            mask_ = std::make_unique<Array>(mask, maskAxes, *arrays_[0]);
        }
    }

    const Array& front() const { return *arrays_[0]; }
    const std::vector<std::unique_ptr<Array>>& getArrays() const { return arrays_; }
    Ptr<const BaseImage> getMask() const { return mask_ ? mask_->getImage() : nullptr; }

    /// Whether a run may take longer than anybody wants to wait without being able to end it.
    bool areLarge() const
    {
        constexpr std::size_t small = std::size_t{4} << 20;
        std::size_t bytes = 0;
        bool areFetched = false;
        for (const auto& array : arrays_) {
            bytes += array->getImage()->getGeometry().nbPixels() * array->getImage()->getPixelSize();
            areFetched = areFetched || array->getImage()->hasSource();
        }
        return areFetched || bytes > small;
    }

    /// What ends a measure is a pixel that its conversion cannot hold, or else what it says itself.
    template <class Body>
    auto run(Body body) const
    {
        try {
            return body();
        } catch (const nb::python_error&) {
            throw;
        } catch (...) {
            for (const auto& array : arrays_) {
                array->checkPixels();
            }
            throw;
        }
    }

private:
    std::vector<std::unique_ptr<Array>> arrays_;
    std::unique_ptr<Array> mask_;
};

/// The image, of numbers where the form does not take binary ones.
Ptr<const BaseImage> asInput(const Ptr<const BaseImage>& image, const MeasureInput& input)
{
    return input.types.contains(eImageBufferType::eIBT_Binary) ? image : image->getBinaryAsNumbers();
}

std::vector<ResultRow> runForm(const Measure& measure, const MeasureForm& form, Per per, const Inputs& inputs,
                               NamedValues parameters, nb::object progress)
{
    MeasureCall call{measure, form, per, {}, inputs.getMask(), std::move(parameters)};
    for (std::size_t i = 0; i < inputs.getArrays().size(); ++i) {
        call.images.push_back(asInput(inputs.getArrays()[i]->getImage(), form.inputs[i]));
    }
    Watch watch{std::move(progress), countRuns(call), inputs.areLarge()};
    // There is one generator of samples, which starts with each of them.
    static std::mutex generator;
    std::unique_lock draws{generator, std::defer_lock};
    if (measure.verb == "kde") {
        const nb::gil_scoped_release released;
        draws.lock();
    }
    return inputs.run(
        [&] { return imaproc::measure(call, [&](const Ptr<BaseProcessor>& processor) { watch.run(processor); }); });
}

std::vector<ImageView> listViews(const Inputs& inputs)
{
    std::vector<ImageView> views;
    for (const auto& array : inputs.getArrays()) {
        views.emplace_back(array->getImage());
    }
    return views;
}

ResultRows runState(const Measure& measure, const Inputs& inputs, const NamedValues& options, bool isByPlan,
                    nb::object progress)
{
    const std::unique_ptr<BaseMeasureState> state = measure.state->entry.create(options);
    const std::vector<ImageView> views = listViews(inputs);
    const ImageView mask{inputs.getMask()};
    auto groups = isByPlan ? groupPlanes(*views[0], {}) : std::vector<Extent>{};
    const bool isCut = groups.size() > 1;
    std::vector<eImageBufferType> types(views.size());
    std::transform(views.begin(), views.end(), types.begin(), [](const ImageView& view) { return view->getType(); });
    const unsigned nbPasses = state->countPasses(types);
    Watch watch{std::move(progress), (isCut ? groups.size() : 1) * nbPasses, inputs.areLarge()};
    const auto run = [&](BaseMeasureState& part, const std::optional<Extent>& core) {
        unsigned pass = 0;
        do {
            watch.run([&](const RunControl& control) { part.add(views, mask, {}, core, control); });
            ++pass;
        } while (part.nextPass());
        watch.skip(nbPasses - pass);
        return part.finishRows();
    };
    return inputs.run([&] {
        if (!isCut) {
            return run(*state, {});
        }
        ResultRows all;
        for (const Extent& group : groups) {
            ResultRows rows = run(*state->clone(), group);
            std::move(rows.rows.begin(), rows.rows.end(), std::back_inserter(all.rows));
            all.columns = std::move(rows.columns);
        }
        const auto place = [](const ResultRow& row) { return std::tuple{row.place.t, row.place.c, row.place.z}; };
        std::stable_sort(all.rows.begin(), all.rows.end(),
                         [&](const ResultRow& a, const ResultRow& b) { return place(a) < place(b); });
        return all;
    });
}

/// The axes of an array that results per plan or volume have left, and whether that is one result.
nb::tuple describeResults(const Measure& measure, const Inputs& inputs, Per per, ResultRows rows, bool isTable)
{
    if (isTable) {
        return nb::make_tuple(listColumns(std::move(rows)), nb::none());
    }
    const std::string& axes = inputs.front().getAxes();
    const image::ImageGeometry& size = inputs.front().getImage()->getGeometry();
    std::string left;
    nb::list shape;
    for (const auto& [axis, side] : {std::pair{'T', size.t}, {'C', size.c}, {'Z', size.z}}) {
        if (per != Per::Image && axes.find(axis) != std::string::npos && (axis != 'Z' || per == Per::Plan)) {
            left += axis;
            shape.append(side);
        }
    }
    const bool isSingle = left.empty();
    // The results are in the order of T, C, Z: the array's own may be another.
    std::string own;
    for (const char axis : axes) {
        own += left.find(axis) != std::string::npos ? std::string{axis} : "";
    }
    nb::list order;
    for (const char axis : own) {
        order.append(left.find(axis));
    }
    return nb::make_tuple(listValues(measure.fields, std::move(rows.rows), isSingle),
                          isSingle ? nb::none()
                                   : nb::object(nb::make_tuple(
                                         nb::tuple(shape), own == left ? nb::none() : nb::object(nb::tuple(order)))));
}

/// What a measure finds: its values and the shape of their arrays (see listValues), or its columns.
nb::tuple runMeasure(const std::string& verb, const nb::list& images, const std::string& axes, nb::handle mask,
                     const std::string& maskAxes, const std::string& perName, const nb::dict& given,
                     nb::object progress)
{
    const Measure& measure = findMeasure(verb);
    const Per per = parsePer(measure, perName);
    NamedValues parameters = parseParameters(measure, given);
    const Inputs inputs{images, axes, mask, maskAxes, measure.state != nullptr ? Use::Values : Use::Pixels};
    if (measure.state != nullptr) {
        parameters.emplace_back("per", std::string{nameOf(per)});
        const bool isTable = measure.forms[0].inputs.back().isList;
        ResultRows rows = runState(measure, inputs, parameters, per == Per::Plan, std::move(progress));
        return describeResults(measure, inputs, per, std::move(rows), isTable);
    }
    const MeasureForm* const form = findForm(measure, per, !mask.is_none());
    if (form == nullptr) {
        throw nb::value_error((verb + " takes no mask").c_str());
    }
    ResultRows rows;
    rows.rows = runForm(measure, *form, per, inputs, std::move(parameters), std::move(progress));
    return describeResults(measure, inputs, per, std::move(rows), false);
}

/// The form of the projection along an axis.
const MeasureForm& findProjection(const Measure& measure, char axis)
{
    const std::string name = axis == 'T' ? "seq" : std::string{static_cast<char>(std::tolower(axis))};
    return *std::find_if(measure.forms.begin(), measure.forms.end(),
                         [&](const MeasureForm& form) { return form.function.starts_with(name); });
}

/// Profiles along x or y: as runMeasure().
nb::tuple profile(nb::handle image, const std::string& axes, char axis, const nb::dict& given, nb::object progress)
{
    const Measure& measure = findMeasure("project");
    nb::list images;
    images.append(image);
    const Inputs inputs{images, axes, nb::none(), "", Use::Pixels};
    ResultRows rows;
    rows.rows = runForm(measure, findProjection(measure, axis), Per::Plan, inputs, parseParameters(measure, given),
                        std::move(progress));
    return describeResults(measure, inputs, Per::Plan, std::move(rows), false);
}

/// Projects along z or t into an array of the image's axes but that one.
void project(nb::handle image, const std::string& axes, char axis, const nb::dict& given, nb::handle target,
             nb::object progress)
{
    const Measure& measure = findMeasure("project");
    const NamedValues parameters = parseParameters(measure, given);
    nb::list images;
    images.append(image);
    const Inputs inputs{images, axes, nb::none(), "", Use::Pixels};
    std::string left = inputs.front().getAxes();
    std::erase(left, axis);
    const Array output{target, left, Use::Pixels};
    if (output.getImage()->hasSource()) {
        throw nb::value_error("the array that a projection is written into has an x axis that is not contiguous");
    }
    const Ptr<BaseImage> whole = boost::const_pointer_cast<BaseImage>(output.getImage());
    const Ptr<const BaseImage> from = inputs.front().getImage()->getBinaryAsNumbers();
    const ePlanKind kind = axis == 'Z' ? ePlanKind::ePK_Volume3d : ePlanKind::ePK_Sequence2d;
    const image::PlanRange plans{whole->getGeometry(), ePlanKind::ePK_Plan2d};
    const MeasureForm& form = findProjection(measure, axis);
    Watch watch{std::move(progress), plans.size(), inputs.areLarge()};
    inputs.run([&] {
        for (std::size_t i = 0; i < plans.size(); ++i) {
            const Ptr<BaseProcessor> processor = form.create();
            processor->getAttributes().front()->setImage(from->getSubImage(plans[i], kind));
            processor->getAttributes().back()->setOutputImage(whole->getSubImage(plans[i], ePlanKind::ePK_Plan2d));
            for (const auto& [name, value] : parameters) {
                processor->setParameter(name, value);
            }
            watch.run(processor);
        }
    });
}

/// A state of a measure, which merges.
class State
{
public:
    explicit State(std::unique_ptr<BaseMeasureState> state) : state_{std::move(state)} {}

    static State create(const std::string& verb, const std::string& perName, const nb::dict& given)
    {
        const Measure& measure = findMeasure(verb);
        if (measure.state == nullptr) {
            throw nb::value_error((verb + " has no state").c_str());
        }
        NamedValues options = parseParameters(measure, given);
        options.emplace_back("per", std::string{nameOf(parsePer(measure, perName))});
        return State{measure.state->entry.create(options)};
    }

    static State read(const nb::bytes& bytes)
    {
        const std::string_view view{bytes.c_str(), bytes.size()};
        return State{findMeasure(getVerbOfState(view)).state->entry.read(view)};
    }

    nb::bytes write() const
    {
        const std::string bytes = state_->toBytes();
        return nb::bytes{bytes.data(), bytes.size()};
    }

    State clone() const { return State{state_->clone()}; }
    std::string getVerb() const { return state_->getMeasure().verb; }
    std::uint64_t getMargin() const { return state_->getMargin(); }
    unsigned countPasses(const std::vector<std::string>& names) const
    {
        std::vector<eImageBufferType> types(names.size());
        std::transform(names.begin(), names.end(), types.begin(), [](const std::string& name) {
            return name == "bool" ? eImageBufferType::eIBT_Binary
                                  : image::findImageBufferType(name).value_or(eImageBufferType::eIBT_Float32);
        });
        return state_->countPasses(types);
    }
    bool needsPass() const { return state_->needsPass(); }
    bool nextPass() { return state_->nextPass(); }

    void add(const nb::list& images, const std::string& axes, nb::handle mask, const std::string& maskAxes,
             const std::vector<std::uint64_t>& offset, const std::optional<std::vector<std::uint64_t>>& core,
             nb::object progress)
    {
        const Inputs inputs{images, axes, mask, maskAxes, Use::Values};
        const auto at = [](const std::vector<std::uint64_t>& list, std::size_t first) {
            return image::Position{list[first + 4], list[first + 3], list[first + 2], list[first + 1], list[first]};
        };
        std::optional<Extent> extent;
        if (core) {
            extent = Extent{at(*core, 0), at(*core, 5)};
        }
        Watch watch{std::move(progress), 1, inputs.areLarge()};
        inputs.run([&] {
            watch.run([&](const RunControl& control) {
                state_->add(listViews(inputs), ImageView{inputs.getMask()}, at(offset, 0), extent, control);
            });
        });
    }

    void merge(const State& other)
    {
        const nb::gil_scoped_release released;
        state_->merge(*other.state_);
    }

    /// As runMeasure(): values and the shape of their arrays, which is that of T, C, Z; or columns.
    nb::tuple finish() const
    {
        const Measure& measure = findMeasure(getVerb());
        ResultRows rows = state_->finishRows();
        if (measure.forms[0].inputs.back().isList) {
            return nb::make_tuple(listColumns(std::move(rows)), nb::none());
        }
        std::set<std::uint64_t> t, c, z;
        for (const ResultRow& row : rows.rows) {
            t.insert(row.place.t), c.insert(row.place.c), z.insert(row.place.z);
        }
        const bool isSingle = !rows.rows.empty() && rows.rows[0].place.per == Per::Image;
        return nb::make_tuple(listValues(measure.fields, std::move(rows.rows), isSingle),
                              isSingle ? nb::none() : nb::object(nb::make_tuple(t.size(), c.size(), z.size())));
    }

private:
    std::unique_ptr<BaseMeasureState> state_;
};

nb::object describeDefault(const std::optional<data::Value>& value)
{
    if (!value) {
        return nb::none();
    }
    data::FieldInfo info; // a list as a tuple
    static constexpr const char* unnamed[] = {""};
    info.columnNames = unnamed;
    return toPython(*value, info);
}

/// The measures, for whoever makes functions of them.
nb::list describeMeasures()
{
    nb::list measures;
    for (const Measure& measure : listMeasures()) {
        nb::list pers;
        for (const Per per : listPers(measure)) {
            pers.append(nameOf(per));
        }
        nb::list inputs;
        bool takesMask = false;
        for (const MeasureForm& form : measure.forms) {
            takesMask = takesMask || form.takesMask();
        }
        for (const MeasureInput& input : measure.forms[0].inputs) {
            if (!input.isMask) {
                nb::list types;
                for (std::size_t i = 0; i < image::nbImageBufferTypes; ++i) {
                    if (const auto type = static_cast<eImageBufferType>(i); input.types.contains(type)) {
                        types.append(image::getName(type));
                    }
                }
                nb::dict entry;
                entry["name"] = input.name;
                entry["is_list"] = input.isList;
                entry["types"] = types;
                inputs.append(entry);
            }
        }
        nb::list parameters;
        for (const attr::Parameter& parameter : measure.parameters) {
            nb::dict entry;
            entry["name"] = parameter.info.option;
            entry["help"] = parameter.info.help;
            entry["unit"] = parameter.info.unit;
            entry["default"] = describeDefault(parameter.defaultValue);
            entry["is_whole"] = parameter.isWhole;
            entry["names"] =
                std::vector<std::string>(parameter.info.enumerators.begin(), parameter.info.enumerators.end());
            parameters.append(entry);
        }
        nb::list fields;
        for (const data::FieldInfo& field : measure.fields) {
            nb::dict entry;
            entry["name"] = field.name;
            entry["help"] = field.help;
            entry["unit"] = field.unit;
            fields.append(entry);
        }
        nb::dict entry;
        entry["verb"] = measure.verb;
        entry["name"] = measure.name;
        entry["help"] = measure.help;
        entry["remark"] = measure.remark;
        entry["per"] = pers;
        entry["inputs"] = inputs;
        entry["takes_mask"] = takesMask;
        entry["is_state"] = measure.state != nullptr;
        entry["parameters"] = parameters;
        entry["fields"] = fields;
        measures.append(entry);
    }
    return measures;
}

/// The sums of absolute responses of the noise in groups of `step` rows of every plane of an array, from row `first` on
/// to before `last`; rows before and behind are looked at. The shape is (T, C, Z, group).
nb::object sumResponses(nb::handle object, const std::string& axes, std::size_t first, std::size_t last,
                        std::size_t step)
{
    const Array array{object, axes, Use::Pixels};
    const Ptr<const BaseImage> image = array.getImage()->getBinaryAsNumbers()->loadAll();
    const image::ImageGeometry& size = image->getGeometry();
    std::vector<double> sums;
    {
        const nb::gil_scoped_release released;
        const auto processor = makePtr<glbmsr::GaussianNoiseMsrLvl3>();
        (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
        const image::PlanRange plans{size, ePlanKind::ePK_Plan2d};
        for (std::size_t i = 0; i < plans.size(); ++i) {
            const auto plan = image->getSubImage(plans[i], ePlanKind::ePK_Plan2d);
            for (std::size_t y = first; y < last; y += step) {
                image::YStrip2d strip;
                strip.image = plan;
                strip.first = y;
                strip.count = std::min(step, last - y);
                processor->set<glbmsr::InKnlYStrip2d>(strip);
                executeSyncRun(processor);
                sums.push_back(processor->getStorage<glbmsr::OutGaussianNoiseStats>()->SumAbsLaplacian);
            }
        }
    }
    const std::size_t groups = (last - first + step - 1) / step;
    return makeArray(std::move(sums), {size.t, size.c, size.z, groups});
}

/// The bandwidth of a sample, by a rule or as given.
double computeBandwidth(nb::handle rule, const std::vector<double>& samples)
{
    attr::KDEBandwidthPolicy policy;
    policy.setParameter("Rule", nb::isinstance<nb::str>(rule) ? data::Value{nb::cast<std::string>(rule)}
                                                              : data::Value{nb::cast<double>(rule)});
    return attr::computeBandwidth(policy, samples);
}

void translate(const std::exception_ptr& exception, void*)
{
    try {
        std::rethrow_exception(exception);
    } catch (const PixelTypeException& error) {
        PyErr_SetString(PyExc_TypeError, (std::string{error.what()} +
                                          (error.takesBinary() ? ": pass an array of bool, as image != 0" : ""))
                                             .c_str());
    } catch (const files::FileError& error) {
        PyErr_SetString(PyExc_OSError, error.what());
    } catch (const files::OptionError& error) {
        PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const core::BaseException& error) {
        PyErr_SetString(PyExc_ValueError, error.what());
    }
}

} // namespace

} // namespace orlix::python

NB_MODULE(_core, module)
{
    using namespace orlix::python;
    using namespace nb::literals;
    nb::set_leak_warnings(false); // threads may outlive the interpreter's shutdown
    nb::register_exception_translator(translate);

    nb::class_<FileImage>(module, "FileImage")
        .def(nb::init<const std::string&, const std::string&, const std::string&, std::optional<std::size_t>, bool>(),
             "path"_a, "axes"_a, "pages"_a, "series"_a.none(), "scaled"_a)
        .def_prop_ro("axes", &FileImage::getAxes)
        .def_prop_ro("shape", &FileImage::getShape)
        .def_prop_ro("facts", &FileImage::getFacts)
        .def("read", &FileImage::read, "begin"_a, "end"_a);

    nb::class_<State>(module, "State")
        .def_static("create", &State::create)
        .def_static("read", &State::read)
        .def("write", &State::write)
        .def("clone", &State::clone)
        .def_prop_ro("verb", &State::getVerb)
        .def_prop_ro("margin", &State::getMargin)
        .def("count_passes", &State::countPasses)
        .def_prop_ro("needs_pass", &State::needsPass)
        .def("next_pass", &State::nextPass)
        .def("add", &State::add, "images"_a, "axes"_a, "mask"_a.none(), "mask_axes"_a, "offset"_a, "core"_a.none(),
             "progress"_a.none())
        .def("merge", &State::merge)
        .def("finish", &State::finish);

    module.def("list_measures", &describeMeasures);
    module.def("measure", &runMeasure, "verb"_a, "images"_a, "axes"_a, "mask"_a.none(), "mask_axes"_a, "per"_a,
               "parameters"_a, "progress"_a.none());
    module.def("profile", &profile, "image"_a, "axes"_a, "axis"_a, "parameters"_a, "progress"_a.none());
    module.def("project", &project, "image"_a, "axes"_a, "axis"_a, "parameters"_a, "target"_a, "progress"_a.none());
    module.def("sum_responses", &sumResponses);
    module.def("compute_bandwidth", &computeBandwidth);
    module.def("set_threads", &orlix::core::settings::setNbThreads);
    module.def("get_threads", &orlix::core::settings::getNbThreads);
}
