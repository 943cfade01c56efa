#include <framework/process/MeasureList.hpp>

#include <algorithm>
#include <cctype>

namespace orlix::imaproc
{

namespace
{

const char* getPer(const AttributeColl& attributes)
{
    const attr::BaseAttribute& image = *attributes.front();
    if (!attributes.back()->isCollection()) {
        return image.isOnePlan() ? "plan" : "image";
    }
    return image.getPlanKind() == image::ePlanKind::ePK_Volume3d ? "volume" : "plan";
}

/// "StatsMsr2dLvl1" is what statsMsr2d() runs.
std::string getFunction(const ProcessorClass& level1)
{
    std::string name = level1.getObjectName();
    name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    return name.substr(0, name.rfind("Lvl1"));
}

MeasureForm makeForm(const ProcessorClass& level1, const AttributeColl& attributes)
{
    MeasureForm form{getFunction(level1), getPer(attributes), {}, &level1, !attributes.back()->isCollection()};
    for (const attr::BaseAttribute* const attribute : attributes) {
        if (attribute->isImage() && attribute->getRole() != attr::eAttributeRole::eAR_Output) {
            form.inputs.push_back({attribute->getName(), attribute->isMask(),
                                   attribute->getRole() == attr::eAttributeRole::eAR_OptionalInput, false,
                                   attribute->getPixelTypes()});
        }
    }
    return form;
}

Measure makeMeasure(const MeasureDescription& description)
{
    Measure measure{description.name, description.verb, description.help, description.remark};
    measure.extras = description.extras;
    for (const ProcessorClass* const level1 : description.classes) {
        const Ptr<BaseProcessor> processor = level1->getCreators().processor();
        (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
        const AttributeColl& attributes = processor->getAttributes();
        measure.forms.push_back(makeForm(*level1, attributes));
        if (measure.fields.empty()) {
            if (const auto record = attributes.back()->createRecord()) {
                measure.fields = record->getFields();
            }
            for (const attr::BaseAttribute* const attribute : attributes) {
                attribute->addParameters(measure.parameters);
            }
        }
    }
    const MeasureExtras& extras = measure.extras;
    measure.parameters.insert(measure.parameters.end(), extras.parameters.begin(), extras.parameters.end());
    measure.fields = extras.fields.empty() ? measure.fields : extras.fields;
    return measure;
}

/// One form for each thing that a result may cover.
Measure makeMeasure(const StateMeasure& state)
{
    Measure measure{state.name, state.verb, state.help, state.remark, {}, {}, {}, &state};
    for (const char* const per : namesOf(Per{})) {
        MeasureForm form{state.verb, per, {}, nullptr};
        for (const StateInput& input : state.inputs) {
            form.inputs.push_back({input.name, false, input.isList, input.isList});
        }
        if (state.takesMask) {
            form.inputs.push_back({"Mask", true, true});
        }
        measure.forms.push_back(std::move(form));
    }
    for (data::Field& option : state.entry.getOptions()) {
        if (*option.info.option != 0) {
            const bool isWhole = std::holds_alternative<std::uint64_t>(option.value);
            measure.parameters.push_back(
                {option.info, isWhole, option.isThere ? std::optional{std::move(option.value)} : std::nullopt});
        }
    }
    for (const data::Field& field : state.entry.getFields()) {
        measure.fields.push_back(field.info);
    }
    return measure;
}

} // namespace

std::optional<double> findNumber(const NamedValues& parameters, std::string_view option)
{
    for (const auto& [name, value] : parameters) {
        if (name == option) {
            const auto* const whole = std::get_if<std::uint64_t>(&value);
            return whole != nullptr ? static_cast<double>(*whole) : std::get<double>(value);
        }
    }
    return {};
}

bool Measure::isOfWholeImages() const
{
    return std::all_of(forms.begin(), forms.end(), [](const MeasureForm& form) { return form.per == "image"; });
}

bool MeasureForm::takesMask() const
{
    return std::any_of(inputs.begin(), inputs.end(), [](const MeasureInput& input) { return input.isMask; });
}

bool MeasureForm::needsMask() const
{
    return std::any_of(inputs.begin(), inputs.end(),
                       [](const MeasureInput& input) { return input.isMask && !input.isOptional; });
}

Ptr<BaseProcessor> MeasureForm::create() const
{
    if (processorClass == nullptr) {
        throw core::BaseException{function + " has no processor: Measure::state makes its state", ORLIX_HERE};
    }
    Ptr<BaseProcessor> processor = processorClass->getCreators().processor();
    (void)processor->init(eProcessorRulePolicy::eRP_CheckRules);
    return processor;
}

MeasureList& MeasureList::getInstance()
{
    static MeasureList list;
    return list;
}

std::vector<Measure> MeasureList::getMeasures() const
{
    const std::lock_guard lock{mutex_};
    std::vector<Measure> measures;
    for (const MeasureDescription* const description : descriptions_) {
        measures.push_back(makeMeasure(*description));
    }
    for (const StateMeasure* const state : states_) {
        measures.push_back(makeMeasure(*state));
    }
    std::sort(measures.begin(), measures.end(), [](const Measure& a, const Measure& b) { return a.verb < b.verb; });
    return measures;
}

MeasureRegistration::MeasureRegistration(MeasureDescription description) : description_{std::move(description)}
{
    MeasureList& list = MeasureList::getInstance();
    const std::lock_guard lock{list.mutex_};
    list.descriptions_.push_back(&description_);
}

MeasureRegistration::MeasureRegistration(const StateMeasure* measure) : state_{measure}
{
    MeasureList& list = MeasureList::getInstance();
    const std::lock_guard lock{list.mutex_};
    list.states_.push_back(state_);
}

MeasureRegistration::~MeasureRegistration()
{
    MeasureList& list = MeasureList::getInstance();
    const std::lock_guard lock{list.mutex_};
    std::erase(list.descriptions_, &description_);
    std::erase(list.states_, state_);
}

} // namespace orlix::imaproc
