#include <framework/process/Level.hpp>

#include <framework/core/Settings.hpp>

#include <algorithm>

namespace orlix::imaproc
{

using attr::BaseAttribute;
using core::ProcessingResult;

LevelClass::LevelClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators,
                       std::vector<ChildClass> children, const Merge& merge, const GpuVariant* gpuVariant)
    : ProcessorClass{type, std::move(origin), creators}, children_{std::move(children)}, merge_{merge}, gpuVariant_{
                                                                                                            gpuVariant}
{}

bool LevelClass::mayUseGpu() const
{
    return gpuVariant_ != nullptr ? gpuVariant_->isUsable() : children_.front().processorClass->mayUseGpu();
}

Rule Level::makeRule() const
{
    return Rule{[this]() -> ProcessingResult {
        const BaseAttribute& first = *getAttributes().front();
        const BaseAttribute& output = *getAttributes().back();
        ProcessingResult result =
            output.getImage() != nullptr ? checkOutputSize(output, first) : checkImagePlans(output, first);
        for (const BaseAttribute* const attribute : getAttributes()) {
            if (result && attribute != &first && attribute->getRole() != attr::eAttributeRole::eAR_Output) {
                result = checkSize(first, *attribute);
            }
        }
        return result;
    }};
}

void Level::runChildren(std::size_t begin, std::size_t end, const RunContext& childContext, Failure& failure)
{
    // One processor serves the whole range, one child at a time.
    const Ptr<BaseProcessor> child = child_->processorClass->getCreators().processor();
    (void)child->init(eProcessorRulePolicy::eRP_CheckRules);
    child->setDispatchPolicy(getDispatchPolicy());
    const bool gathers = gathersChannels();
    for (std::size_t k = begin; k < end && !childContext.cancelled() && !failure; ++k) {
        const std::size_t i = gathers ? findGathered(k) : k;
        ProcessingResult result;
        try {
            const attr::Share share = getShare(i);
            for (std::size_t n = 0; n < child_->nbLinks; ++n) {
                const ChildClass::Link link = child_->links[n];
                child->getAttributes()[link.to]->take(share, *getAttributes()[link.from]);
            }
            giveResults(*child, i);
            prepareChild(*child, i);
            result = child->execute(childContext);
            if (result) {
                takeResults(*child);
            }
        } catch (...) {
            result = ProcessingResult::failure(core::describeCurrentException());
        }
        if (!result) {
            failure.report(i, std::move(result));
        }
    }
}

Ptr<ActionProvider> Level::asProvider()
{
    return {Ptr<ActionProvider>{}, this}; // which outlives its run
}

std::size_t Level::cut()
{
    const LevelClass& level = getLevelClass();
    child_ = &level.getChild(chooseChild());
    merge_ = &level.getMerge();
    const BaseAttribute& first = *getAttributes().front();
    const image::BaseImage& image = *first.getImage();
    if (child_->cut != nullptr) {
        const std::size_t minBytes = getMinStripPixels() * image.getPixelSize();
        cut_ = child_->cut(image, std::max(getDispatchPolicy().stripBytes, minBytes), getMinStripElements());
        return cut_.size();
    }
    collection_ = getAttributes().back()->getCollection();
    plans_ = image::PlanRange{image.getGeometry(), first.getPlanKind()};
    return collection_ != nullptr ? collection_->size() : plans_.size();
}

attr::Share Level::getShare(std::size_t child) const
{
    if (child_->cut != nullptr) {
        const std::size_t first = cut_.begin(child);
        return {.first = first, .count = cut_.begin(child + 1) - first};
    }
    return {.plan = collection_ != nullptr ? collection_->getPlan(child) : plans_[child]};
}

Ptr<ActionProvider> Level::tryToLaunchGpuProcess(ePriority priority)
{
    const GpuVariant* const variant = getLevelClass().getGpuVariant();
    if (variant == nullptr || !variant->isUsable()) {
        return nullptr;
    }
    const auto& attributes = getAttributes();
    if (!std::all_of(attributes.begin(), attributes.end(), [](const BaseAttribute* attribute) {
            return attribute->getImage() == nullptr || attribute->getImage()->isGpuImage();
        })) {
        return nullptr;
    }
    child_ = &variant->child;
    merge_ = &inPlace;
    collection_ = nullptr;
    plans_ = {{1, 1}, image::ePlanKind::ePK_Plan2d};
    setChildren(1, 1, priority);
    return asProvider();
}

ProcessingResult Level::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    provider = tryToLaunchGpuProcess(priority);
    if (provider) {
        return {};
    }
    const std::size_t children = cut();
    if (merge_->order == Merge::Order::InOrder) {
        parts_.resize(children * (child_->nbAttributes - child_->firstResult));
    } else if (merge_->order == Merge::Order::AnyOrder) {
        merge_->clear(*getAttributes().back()->getRecord());
    }
    const auto& attributes = getAttributes();
    const bool isFetched = std::any_of(attributes.begin(), attributes.end(), [](const BaseAttribute* attribute) {
        return attribute->getImage() != nullptr && attribute->getImage()->hasSource();
    });
    setChildren(children, findGrain(children), priority, isFetched);
    provider = asProvider();
    return {};
}

std::size_t Level::findGrain(std::size_t children) const
{
    if (child_->cut != nullptr || children <= 1) {
        return 1;
    }
    // Plans are taken together until they are worth another thread; and ranges of half a grain occur, too.
    const image::BaseImage& image = *getAttributes().front()->getImage();
    const auto kind = getAttributes().front()->getPlanKind();
    const std::size_t planBytes = getSubGeometry(image.getGeometry(), kind).nbPixels() * image.getPixelSize();
    const std::size_t maxParallel = getMaxParallelPlans();
    const std::size_t stripBytes = getDispatchPolicy().stripBytes;
    std::size_t grain = std::max<std::size_t>(1, stripBytes / std::max<std::size_t>(1, planBytes));
    if (maxParallel < children) {
        grain = std::max(grain, maxParallel <= 1 ? children : 2 * (children / maxParallel + 1));
    }
    // Large plans that are fetched come one after the other: their strips are enough for all threads.
    constexpr std::size_t enoughStrips = 16;
    const bool isLarge = planBytes / enoughStrips > stripBytes * core::settings::getNbThreads();
    for (const BaseAttribute* const attribute : getAttributes()) {
        if (const image::BaseImage* const each = attribute->getImage(); each != nullptr && each->hasSource()) {
            grain = isLarge || each->getLayout().isSequential ? children : grain;
        }
    }
    return grain;
}

bool Level::gathersChannels() const
{
    const BaseAttribute& first = *getAttributes().front();
    const bool isOfPlans = child_->cut == nullptr && plans_.size() == getNbChildren() &&
                           first.getPlanKind() == image::ePlanKind::ePK_Plan2d;
    return isOfPlans && takesAnyOrder() && first.getImage()->getLayout().block.c > 1;
}

std::size_t Level::findGathered(std::size_t i) const
{
    const image::ImageGeometry& size = getAttributes().front()->getImage()->getGeometry();
    const std::size_t c = i % size.c;
    const std::size_t z = i / size.c % size.z;
    const std::size_t t = i / size.c / size.z;
    return (t * size.c + c) * size.z + z;
}

void Level::giveResults(BaseProcessor& child, std::size_t index)
{
    const AttributeColl& attributes = child.getAttributes();
    const std::size_t nbResults = attributes.size() - child_->firstResult;
    for (std::size_t k = 0; k < nbResults; ++k) {
        BaseAttribute& result = *attributes[child_->firstResult + k];
        switch (merge_->order) {
        case Merge::Order::InPlace:
            result.setRecord(getAttributes().back()->shareRecord());
            break;
        case Merge::Order::InOrder:
            result.setRecord(parts_[index * nbResults + k] = result.createRecord());
            break;
        case Merge::Order::AnyOrder:
            if (getNbChildren() == 1) {
                result.setRecord(getAttributes().back()->shareRecord());
            } else {
                const std::lock_guard lock{mutex_};
                if (parts_.empty()) {
                    result.setRecord(boost::static_pointer_cast<data::BaseDataItem>(
                        getAttributes().back()->getRecord()->duplicateShared()));
                } else {
                    result.setRecord(parts_.back());
                    parts_.pop_back();
                }
            }
            break;
        }
    }
}

void Level::takeResults(BaseProcessor& child)
{
    if (merge_->order == Merge::Order::AnyOrder && getNbChildren() > 1) {
        const std::lock_guard lock{mutex_};
        parts_.push_back(child.getAttributes().back()->shareRecord());
        merge_->add(*getAttributes().back()->getRecord(), *parts_.back());
    }
}

void Level::clearIntermediateDataDerived()
{
    parts_.clear();
    child_ = nullptr;
}

ProcessingResult Level::postProcess()
{
    if (child_ != nullptr && merge_->merge != nullptr) {
        merge_->merge(getParts(), *getAttributes().back()->getRecord(), *this);
    }
    return {};
}

} // namespace orlix::imaproc
