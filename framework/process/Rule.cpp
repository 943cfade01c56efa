#include <framework/process/Rule.hpp>

#include <framework/process/ProcessorMessages.hpp>

namespace orlix::imaproc
{

using core::ProcessingResult;

Rule operator&&(Rule first, Rule second)
{
    if (!first.check_ || !second.check_) {
        return first.check_ ? first : second;
    }
    return Rule{[first = std::move(first), second = std::move(second)] {
        ProcessingResult result = first.check();
        return result ? second.check() : result;
    }};
}

Rule operator||(Rule first, Rule second)
{
    return Rule{[first = std::move(first), second = std::move(second)] {
        ProcessingResult one = first.check();
        if (one) {
            return one;
        }
        ProcessingResult other = second.check();
        return other ? other : ProcessingResult::failure(one.getMessage() + ", or " + other.getMessage());
    }};
}

Rule If(Rule condition, Rule then, Rule otherwise)
{
    return Rule{[condition = std::move(condition), then = std::move(then), otherwise = std::move(otherwise)] {
        return condition.check() ? then.check() : otherwise.check();
    }};
}

Rule matchImagePlans(const attr::BaseAttribute& output, const attr::BaseAttribute& input)
{
    return Rule{[&output, &input] { return checkImagePlans(output, input); }};
}
Rule matchOutputSize(const attr::BaseAttribute& output, const attr::BaseAttribute& input)
{
    return Rule{[&output, &input] { return checkOutputSize(output, input); }};
}
Rule matchSize(const attr::BaseAttribute& first, const attr::BaseAttribute& second)
{
    return Rule{[&first, &second] { return checkSize(first, second); }};
}

ProcessingResult checkImagePlans(const attr::BaseAttribute& output, const attr::BaseAttribute& input)
{
    const attr::BasePlanIndexedColl* const collection = output.getCollection();
    const image::BaseImage* const image = input.getImage();
    if (collection == nullptr || image == nullptr) {
        return {};
    }
    if (collection->size() == 1 && collection->getPlan(0) == image::PlanIndex{}) {
        return {};
    }
    const image::PlanRange plans{image->getGeometry(), input.getPlanKind()};
    bool same = collection->size() == plans.size();
    for (std::size_t i = 0; same && i < plans.size(); ++i) {
        same = collection->getPlan(i) == plans[i];
    }
    return same ? ProcessingResult{}
                : ProcessingResult::failure(core::formatMessage(eProcessorMessage::eWrongPlans, output.getName(),
                                                                collection->size(), input.getName(), plans.size()));
}

ProcessingResult checkOutputSize(const attr::BaseAttribute& output, const attr::BaseAttribute& input)
{
    if (!output.isSet() || !input.isSet()) {
        return {};
    }
    const image::ImageGeometry& size = output.getImage()->getGeometry();
    const image::ImageGeometry& inputSize = input.getImage()->getGeometry();
    const image::ImageGeometry needed = output.getOutputGeometry(inputSize);
    return size == needed
               ? ProcessingResult{}
               : ProcessingResult::failure(core::formatMessage(eProcessorMessage::eWrongOutputSize, output.getName(),
                                                               toString(size), toString(needed), input.getName(),
                                                               toString(inputSize)));
}

ProcessingResult checkSize(const attr::BaseAttribute& first, const attr::BaseAttribute& second)
{
    const image::BaseImage* const one = first.getImage();
    const image::BaseImage* const other = second.getImage();
    if (one == nullptr || other == nullptr || one->getGeometry() == other->getGeometry()) {
        return {};
    }
    return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eUnequalSizes, second.getName(),
                                                         toString(other->getGeometry()), first.getName(),
                                                         toString(one->getGeometry())));
}

Rule matchType(const attr::BaseAttribute& first, const attr::BaseAttribute& second)
{
    return Rule{[&first, &second]() -> ProcessingResult {
        const image::BaseImage* const one = first.getImage();
        const image::BaseImage* const other = second.getImage();
        if (one == nullptr || other == nullptr || one->getType() == other->getType()) {
            return {};
        }
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eUnequalTypes, second.getName(),
                                                             image::getName(other->getType()), first.getName(),
                                                             image::getName(one->getType())));
    }};
}

} // namespace orlix::imaproc
