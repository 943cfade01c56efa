#include <framework/process/Level.hpp>

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
            (output.getImage() != nullptr ? matchOutputSize(output, first) : matchImagePlans(output, first)).check();
        for (const BaseAttribute* const attribute : getAttributes()) {
            if (result && attribute->getRole() != attr::eAttributeRole::eAR_Output) {
                result = matchSize(first, *attribute).check();
            }
        }
        return result;
    }};
}

/// The children of one run.
class Level::Children final : public BaseDispatcher
{
public:
    Children(Level& level, std::size_t grain, ePriority priority)
        : BaseDispatcher{level.nbChildren_, grain, priority}, level_{level}
    {}

private:
    void runChildren(std::size_t begin, std::size_t end, const RunContext& childContext, Failure& failure) override
    {
        // One processor serves the whole range, one child at a time.
        const ChildClass& childClass = *level_.child_;
        const Ptr<BaseProcessor> child = childClass.processorClass->getCreators().processor();
        (void)child->init(eProcessorRulePolicy::eRP_CheckRules);
        child->setDispatchPolicy(level_.getDispatchPolicy());
        for (std::size_t i = begin; i < end && !childContext.cancelled() && !failure; ++i) {
            ProcessingResult result;
            try {
                const attr::Share share = level_.getShare(i);
                for (std::size_t k = 0; k < childClass.nbLinks; ++k) {
                    const ChildClass::Link link = childClass.links[k];
                    child->getAttributes()[link.to]->take(share, *level_.getAttributes()[link.from]);
                }
                level_.giveResults(*child, i);
                level_.prepareChild(*child, i);
                result = child->execute(childContext);
                if (result) {
                    level_.takeResults(*child);
                }
            } catch (...) {
                result = ProcessingResult::failure(core::describeCurrentException());
            }
            if (!result) {
                failure.report(i, std::move(result));
            }
        }
    }

    Level& level_;
};

const Merge& Level::getMerge() const
{
    return isOnGpu_ ? inPlace : getLevelClass().getMerge();
}

std::size_t Level::cut()
{
    child_ = &getLevelClass().getChild(chooseChild());
    const BaseAttribute& first = *getAttributes().front();
    const image::BaseImage& image = *first.getImage();
    if (child_->cut != nullptr) {
        const std::size_t minBytes = getMinStripPixels() * image.getPixelSize();
        cut_ = child_->cut(image, std::max(getDispatchPolicy().stripBytes, minBytes), getMinStripElements());
        return nbChildren_ = cut_->size();
    }
    collection_ = dynamic_cast<const attr::BasePlanIndexedColl*>(getAttributes().back()->getRecord().get());
    plans_.emplace(image.getGeometry(), first.getPlanKind());
    return nbChildren_ = collection_ != nullptr ? collection_->size() : plans_->size();
}

attr::Share Level::getShare(std::size_t child) const
{
    if (isOnGpu_) {
        return {};
    }
    if (cut_) {
        const std::size_t first = cut_->begin(child);
        return {.first = first, .count = cut_->begin(child + 1) - first};
    }
    return {.plan = collection_ != nullptr ? collection_->getPlan(child) : (*plans_)[child]};
}

Ptr<ActionProvider> Level::tryToLaunchGpuProcess(ePriority priority)
{
    const GpuVariant* const variant = getLevelClass().getGpuVariant();
    const auto& attributes = getAttributes();
    isOnGpu_ = variant != nullptr && variant->isUsable() &&
               std::all_of(attributes.begin(), attributes.end(), [](const BaseAttribute* attribute) {
                   return attribute->getImage() == nullptr || attribute->getImage()->isGpuImage();
               });
    if (!isOnGpu_) {
        return nullptr;
    }
    child_ = &variant->child;
    nbChildren_ = 1;
    return makePtr<Children>(*this, std::size_t{1}, priority);
}

ProcessingResult Level::retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider)
{
    provider = tryToLaunchGpuProcess(priority);
    if (provider) {
        return {};
    }
    cut();
    std::size_t grain = 1;
    if (!cut_) {
        // Plans are taken together until they are worth another thread; and ranges of half a grain occur, too.
        const BaseAttribute& first = *getAttributes().front();
        const image::BaseImage& image = *first.getImage();
        const std::size_t planBytes =
            getSubGeometry(image.getGeometry(), first.getPlanKind()).nbPixels() * image.getPixelSize();
        const std::size_t maxParallel = getMaxParallelPlans();
        grain = std::max({std::size_t{1}, getDispatchPolicy().stripBytes / std::max<std::size_t>(1, planBytes),
                          maxParallel >= nbChildren_ ? 1
                          : maxParallel <= 1         ? nbChildren_
                                                     : 2 * (nbChildren_ / maxParallel + 1)});
    }
    const std::size_t nbResults = child_->nbAttributes - child_->firstResult;
    if (getMerge().order == Merge::Order::InOrder) {
        parts_.resize(nbChildren_ * nbResults);
    } else if (getMerge().order == Merge::Order::AnyOrder) {
        getMerge().clear(*getAttributes().back()->getRecord());
    }
    provider = makePtr<Children>(*this, grain, priority);
    return {};
}

void Level::giveResults(BaseProcessor& child, std::size_t index)
{
    const AttributeColl& attributes = child.getAttributes();
    const std::size_t nbResults = attributes.size() - child_->firstResult;
    for (std::size_t k = 0; k < nbResults; ++k) {
        BaseAttribute& result = *attributes[child_->firstResult + k];
        const auto own = getAttributes().back()->getRecord();
        switch (getMerge().order) {
        case Merge::Order::InPlace:
            result.setRecord(own);
            break;
        case Merge::Order::InOrder:
            result.setRecord(parts_[index * nbResults + k] = result.createRecord());
            break;
        case Merge::Order::AnyOrder:
            if (nbChildren_ == 1) {
                result.setRecord(own);
            } else {
                const std::lock_guard lock{mutex_};
                if (parts_.empty()) {
                    result.setRecord(boost::static_pointer_cast<data::BaseDataItem>(own->duplicateShared()));
                } else {
                    result.setRecord(std::move(parts_.back()));
                    parts_.pop_back();
                }
            }
            break;
        }
    }
}

void Level::takeResults(BaseProcessor& child)
{
    if (getMerge().order == Merge::Order::AnyOrder && nbChildren_ > 1) {
        const std::lock_guard lock{mutex_};
        parts_.push_back(child.getAttributes().back()->getRecord());
        getMerge().add(*getAttributes().back()->getRecord(), *parts_.back());
    }
}

void Level::clearIntermediateDataDerived()
{
    parts_.clear();
    cut_.reset();
    plans_.reset();
    collection_ = nullptr;
    child_ = nullptr;
    nbChildren_ = 0;
    isOnGpu_ = false;
}

ProcessingResult Level::postProcess()
{
    if (getMerge().merge != nullptr && child_ != nullptr) {
        getMerge().merge(parts_, *getAttributes().back()->getRecord(), *this);
    }
    return {};
}

} // namespace orlix::imaproc
