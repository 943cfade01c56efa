#include <framework/attribute/PlanIndexedColl.hpp>

#include <framework/attribute/AttributeMessages.hpp>

#include <log4cplus/logger.h>

#include <algorithm>

namespace orlix::imaproc::attr
{

using core::ProcessingResult;

namespace
{

constexpr auto before = [](const auto& element, const PlanIndex& plan) { return element.first < plan; };

} // namespace

void BasePlanIndexedColl::insert(const PlanIndex& plan, Ptr<data::BaseDataItem> element)
{
    if (!element || !accepts(*element)) {
        core::raise<core::BaseException>(core::getLibraryLogger("Attribute"), ORLIX_HERE,
                                         eAttributeMessage::eAM_WrongElement, getClassName(),
                                         element ? element->getClassName() : "null");
    }
    const auto place = std::lower_bound(elements_.begin(), elements_.end(), plan, before);
    if (place != elements_.end() && place->first == plan) {
        place->second = std::move(element);
    } else {
        elements_.emplace(place, plan, std::move(element));
    }
}

Ptr<data::BaseDataItem> BasePlanIndexedColl::getStorage(const PlanIndex& plan) const
{
    const auto place = std::lower_bound(elements_.begin(), elements_.end(), plan, before);
    return place != elements_.end() && place->first == plan ? place->second : nullptr;
}

void BasePlanIndexedColl::copy(const BaseDynamicObject& other)
{
    core::guarded(ORLIX_HERE, [&] {
        auto copied = dynamic_cast<const BasePlanIndexedColl&>(other).elements_;
        for (auto& [plan, element] : copied) {
            if (!accepts(*element)) {
                throw std::bad_cast{};
            }
            element = boost::dynamic_pointer_cast<data::BaseDataItem>(element->duplicateShared());
        }
        elements_ = std::move(copied);
    });
}

ProcessingResult BasePlanIndexedColl::write(data::OutputArchive& archive) const
{
    archive.write("size", elements_.size());
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        const auto& [plan, element] = elements_[i];
        const auto section = archive.openSection(std::to_string(i));
        archive.write("z", std::uint64_t{plan.z});
        archive.write("c", std::uint64_t{plan.c});
        archive.write("t", std::uint64_t{plan.t});
        if (ProcessingResult result = archive.write("element", element.get()); !result) {
            return result;
        }
    }
    return {};
}

ProcessingResult BasePlanIndexedColl::read(data::InputArchive& archive)
{
    elements_.clear();
    std::uint64_t size = 0;
    ProcessingResult result = archive.read("size", size);
    for (std::uint64_t i = 0; result && i < size; ++i) {
        const std::string name = std::to_string(i);
        const auto section = archive.openSection(name);
        if (!section) {
            return ProcessingResult::failure(
                core::formatMessage(eAttributeMessage::eAM_NoElement, name, getClassName()));
        }
        PlanIndex plan;
        Ptr<data::BaseDataItem> element;
        for (auto [key, coordinate] : {std::pair{"z", &plan.z}, std::pair{"c", &plan.c}, std::pair{"t", &plan.t}}) {
            if (result) {
                result = archive.read(key, *coordinate);
            }
        }
        if (result) {
            result = archive.read("element", element);
        }
        if (result && (!element || !accepts(*element))) {
            result = ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_WrongElement, getClassName(),
                                                                   element ? element->getClassName() : "null"));
        }
        if (result) {
            insert(plan, std::move(element));
        }
    }
    return result;
}

} // namespace orlix::imaproc::attr
