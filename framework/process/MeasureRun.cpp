#include <framework/process/MeasureRun.hpp>

#include <algorithm>

namespace orlix::imaproc
{

using image::BaseImage;
using image::ePlanKind;

namespace
{

const char* nameOf(Per per)
{
    return namesOf(per)[static_cast<std::size_t>(per)];
}

/// Whether a call measures each plan or volume as an image of its own.
bool isByParts(const MeasureCall& call)
{
    return call.form.isSingle && call.per != Per::Image;
}

ePlanKind getKind(Per per)
{
    return per == Per::Volume ? ePlanKind::ePK_Volume3d : ePlanKind::ePK_Plan2d;
}

std::string listTypes(const image::PixelTypes& types)
{
    std::vector<std::string> names;
    for (std::size_t i = 0; i < image::nbImageBufferTypes; ++i) {
        const auto type = static_cast<image::eImageBufferType>(i);
        if (types.contains(type)) {
            names.emplace_back(image::getName(type));
        }
    }
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i) {
        list.append(i == 0 ? "" : i + 1 == names.size() ? " or " : ", ").append(names[i]);
    }
    return list;
}

void checkType(const MeasureCall& call, const MeasureInput& input, const BaseImage& image)
{
    if (input.types.contains(image.getType())) {
        return;
    }
    const bool takesBinary = input.types.contains(image::eImageBufferType::eIBT_Binary);
    std::string text = "it is ";
    text.append(image::getName(image.getType())).append(", and ").append(call.measure.verb).append(" takes ");
    text += input.types == image::binaryType ? "a binary image" : listTypes(input.types) + " pixels";
    throw PixelTypeException{text, takesBinary, ORLIX_HERE};
}

/// Hands over the images, or what lies in a part of them, and the parameters.
void prepare(BaseProcessor& processor, const MeasureCall& call, const std::optional<image::PlanIndex>& part)
{
    auto next = call.images.begin();
    for (const MeasureInput& input : call.form.inputs) {
        Ptr<const BaseImage> image = input.isMask ? call.mask : *next++;
        if (!image) {
            continue;
        }
        if (!input.isMask) {
            checkType(call, input, *image);
        }
        processor.getAttribute(input.name).setImage(part ? image->getSubImage(*part, getKind(call.per)) : image);
    }
    const MeasureExtras& extras = call.measure.extras;
    for (const auto& [option, value] : call.parameters) {
        const auto isIt = [&option = option](const attr::Parameter& each) { return each.info.option == option; };
        if (std::none_of(extras.parameters.begin(), extras.parameters.end(), isIt)) {
            processor.setParameter(option, value);
        }
    }
    if (extras.prepare != nullptr) {
        extras.prepare(processor, call.parameters);
    }
}

} // namespace

const MeasureForm* findForm(const Measure& measure, Per per, bool isMasked)
{
    const bool isOfParts = per != Per::Image && measure.isOfWholeImages();
    for (const MeasureForm& form : measure.forms) {
        if ((isOfParts || form.per == nameOf(per)) && (isMasked ? form.takesMask() : !form.needsMask())) {
            return &form;
        }
    }
    return nullptr;
}

std::vector<Per> listPers(const Measure& measure)
{
    std::vector<Per> pers;
    for (const Per per : {Per::Image, Per::Plan, Per::Volume}) {
        const auto isOne = [per](const MeasureForm& form) { return form.per == nameOf(per); };
        if (measure.isOfWholeImages() || std::any_of(measure.forms.begin(), measure.forms.end(), isOne)) {
            pers.push_back(per);
        }
    }
    return pers;
}

std::size_t countRuns(const MeasureCall& call)
{
    return isByParts(call) ? image::PlanRange{call.images[0]->getGeometry(), getKind(call.per)}.size() : 1;
}

NamedFields listFields(const data::BaseDataItem& record)
{
    data::FieldCollector collector;
    const_cast<data::BaseDataItem&>(record).visitFields(collector);
    NamedFields fields;
    for (data::Field& field : collector.fields) {
        fields.emplace_back(field.info.name, std::move(field));
    }
    return fields;
}

std::vector<ResultRow> measure(const MeasureCall& call, const std::function<void(const Ptr<BaseProcessor>&)>& run)
{
    if (call.measure.extras.check != nullptr) {
        call.measure.extras.check(call.parameters);
    }
    const image::ImageGeometry& size = call.images[0]->getGeometry();
    const image::ImageGeometry part = call.per == Per::Image ? size : getSubGeometry(size, getKind(call.per));
    const Extent whole{{}, {size.x, size.y, size.z, size.c, size.t}};
    std::vector<ResultRow> rows;
    const auto add = [&](const image::PlanIndex& plan, const data::BaseDataItem& record) {
        rows.push_back({{call.per, plan.z, plan.c, plan.t, whole}, listFields(record)});
        if (call.measure.extras.finish != nullptr) {
            call.measure.extras.finish(rows.back().fields, call.parameters, part);
        }
    };
    const Ptr<BaseProcessor> processor = call.form.create();
    if (isByParts(call)) {
        const image::PlanRange plans{size, getKind(call.per)};
        for (std::size_t i = 0; i < plans.size(); ++i) {
            prepare(*processor, call, plans[i]);
            run(processor);
            add(plans[i], *processor->getAttributes().back()->getRecord());
        }
        return rows;
    }
    prepare(*processor, call, {});
    run(processor);
    const attr::BaseAttribute& output = *processor->getAttributes().back();
    if (const attr::BasePlanIndexedColl* const collection = output.getCollection()) {
        for (std::size_t i = 0; i < collection->size(); ++i) {
            add(collection->getPlan(i), *collection->getElement(i));
        }
    } else {
        add({}, *output.getRecord());
    }
    return rows;
}

std::vector<Extent> groupPlanes(const BaseImage& image, const Position& at)
{
    constexpr std::size_t most = 64;
    const image::ImageGeometry& size = image.getGeometry();
    const image::SourceLayout layout = image.getLayout();
    const image::ImageGeometry& block = layout.block;
    const std::size_t layers = std::max<std::size_t>(1, most / (block.z * block.c * block.t));
    const auto cut = [](std::size_t whole, std::size_t step, std::uint64_t phase) {
        std::vector<std::uint64_t> cuts{0};
        while (cuts.back() < whole) {
            cuts.push_back(std::min<std::uint64_t>(whole, cuts.back() + step - (cuts.back() + phase) % step));
        }
        return cuts;
    };
    const auto z = cut(size.z, block.z * layers, layout.phase.z);
    const auto c = cut(size.c, block.c, layout.phase.c);
    const auto t = cut(size.t, block.t, layout.phase.t);
    std::vector<Extent> groups;
    for (std::size_t k = 0; k + 1 < t.size(); ++k) {
        for (std::size_t j = 0; j + 1 < c.size(); ++j) {
            for (std::size_t i = 0; i + 1 < z.size(); ++i) {
                groups.push_back({{at.x, at.y, at.z + z[i], at.c + c[j], at.t + t[k]},
                                  {at.x + size.x, at.y + size.y, at.z + z[i + 1], at.c + c[j + 1], at.t + t[k + 1]}});
            }
        }
    }
    return groups;
}

} // namespace orlix::imaproc
