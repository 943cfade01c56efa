#pragma once

#include <framework/process/Dispatcher.hpp>
#include <framework/process/GpuVariant.hpp>
#include <framework/process/Processor.hpp>

#include <algorithm>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

/// The shapes that most processors have: a level 1 that keeps the results of its plans apart, one that merges them, one
/// whose plans write an image, and a level 2 that cuts its plan into strips. A measure derives from them and says which
/// attribute of its own becomes which attribute of the level below. All images that a level takes have the same size.
namespace orlix::imaproc
{

/// A processor's attribute From becomes its children's attribute To: an image is split, any other value is passed on.
template <class From, class To = From>
struct Pass
{
    using Source = From;
    using Target = To;
};

/// An attribute that the processor keeps to itself.
template <class Attribute>
using Keep = Pass<Attribute, void>;

/// Merges by adding up, in any order: for results whose addition is exact.
struct AddUp
{
};

/// The class itself merges, in its postProcess().
struct MergeItself
{
};

namespace detail
{

/// The results of a processor's children until they are one: in the order of the children, for Merge to merge.
template <class Output, class Merge>
class PartialResults
{
    using Result = typename Output::Target::Value;

public:
    void begin(const typename Output::Source&, std::size_t children) { results_.resize(children); }
    template <class Child>
    auto split()
    {
        return StaticResultSplit<Child, typename Output::Target>{results_};
    }
    core::ProcessingResult merge(typename Output::Source::Value& merged)
    {
        if constexpr (std::is_same_v<Merge, MergeItself>) {
            return {};
        } else {
            return Merge::merge(results_, merged);
        }
    }
    const std::vector<Ptr<Result>>& get() const { return results_; }
    void clear() { results_.clear(); }

private:
    std::vector<Ptr<Result>> results_;
};

/// The same for results that add up at once.
template <class Output>
class PartialResults<Output, AddUp>
{
    using Result = typename Output::Source::Value;

public:
    void begin(const typename Output::Source& output, std::size_t children) { total_.begin(output.get(), children); }
    template <class Child>
    auto split()
    {
        return DynamicByCopyResultSplit<Child, typename Output::Target>{total_};
    }
    core::ProcessingResult merge(Result&) { return {}; }
    void clear() { total_.end(); }

private:
    RunningTotal<Result> total_;
};

template <class Child, class From, class To>
auto splitByPlan(const From& attribute, const PlanList& plans)
{
    if constexpr (std::is_void_v<To>) {
        return NoSplit{};
    } else if constexpr (attr::ImageAttribute<From>) {
        return SubImageSplit<Child, To, typename From::Storage::element_type>{attribute.get(), plans};
    } else if constexpr (attr::PlanIndexedAttribute<From>) {
        return PlanIndexedInputSplit<Child, typename From::Value, To>{attribute.get(), plans};
    } else if constexpr (attr::DefaultedAttribute<From>) {
        return StaticNoSplit<Child, To>{attribute.isSet() ? attribute.get() : From::getDefault()};
    } else {
        return StaticNoSplit<Child, To>{attribute.get()};
    }
}

template <class Child, class From, class To>
auto splitByStrip(const From& attribute, const StripCut& cut)
{
    if constexpr (std::is_void_v<To>) {
        return NoSplit{};
    } else if constexpr (attr::ImageAttribute<From>) {
        return ImageStripSplit<Child, const image::BaseImage, To>{attribute.get(), cut};
    } else {
        return DynamicNoSplit<Child, To>{attribute.get()};
    }
}

inline std::size_t planBytes(const image::BaseImage& image, image::ePlanKind kind)
{
    return getSubGeometry(image.getGeometry(), kind).nbPixels() * image.getPixelSize();
}

template <class First, class...>
struct FirstOf
{
    using Type = First;
};

template <class First, class Other>
Rule matchSizeOfImage(const First& first, const Other& other)
{
    if constexpr (attr::ImageAttribute<Other>) {
        return matchSize(first, other);
    } else {
        return none();
    }
}

/// Every further image has the size of the first.
template <class First, class... Others>
Rule matchSizes([[maybe_unused]] const First& first, const Others&... others)
{
    return (none() && ... && matchSizeOfImage(first, others));
}

} // namespace detail

/// Level 1: one child per plan of the first image, whose result is the plan's element of the output collection.
template <class Self, class Child, class Output, class... Inputs>
class PlanIndexedLvl1 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., typename Output::Source>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;
    using Collection = typename Output::Source::Value;

protected:
    bool acceptsGpuImages() const final { return mayUseGpu<Child>(); }

    Rule makeRule() const override
    {
        return matchImagePlans(this->template attribute<typename Output::Source>(),
                               this->template attribute<Image>()) &&
               detail::matchSizes(this->template attribute<typename Inputs::Source>()...);
    }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const Collection& collection = this->template value<typename Output::Source>();
        const image::BaseImage& image = this->template value<Image>();
        plans_.emplace(collection);
        provider =
            makeStaticDispatcher<Child>(priority, this->getDispatchPolicy(), plans_->size(),
                                        detail::planBytes(image, Image::kind), std::numeric_limits<std::size_t>::max(),
                                        PlanIndexedSplit<Child, Collection, typename Output::Target>{collection},
                                        detail::splitByPlan<Child, typename Inputs::Source, typename Inputs::Target>(
                                            this->template attribute<typename Inputs::Source>(), *plans_)...);
        return {};
    }

private:
    std::optional<PlanList> plans_;
};

/// Level 1: one child per plan of the first image; Merge makes one result of theirs.
template <class Self, class Child, class Output, class Merge, class... Inputs>
class MergedLvl1 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., typename Output::Source>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;

protected:
    void clearIntermediateDataDerived() override { results_.clear(); }

    Rule makeRule() const override
    {
        return detail::matchSizes(this->template attribute<typename Inputs::Source>()...);
    }

    bool acceptsGpuImages() const final { return mayUseGpu<Child>(); }

    /// How many plans may be measured at once.
    virtual std::size_t getMaxParallelPlans() const { return std::numeric_limits<std::size_t>::max(); }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const image::BaseImage& image = this->template value<Image>();
        plans_.emplace(image.getGeometry(), Image::kind);
        results_.begin(this->template attribute<typename Output::Source>(), plans_->size());
        provider = makeStaticDispatcher<Child>(
            priority, this->getDispatchPolicy(), plans_->size(), detail::planBytes(image, Image::kind),
            getMaxParallelPlans(), results_.template split<Child>(),
            detail::splitByPlan<Child, typename Inputs::Source, typename Inputs::Target>(
                this->template attribute<typename Inputs::Source>(), *plans_)...);
        return {};
    }

    core::ProcessingResult postProcess() override
    {
        return results_.merge(this->template value<typename Output::Source>());
    }

private:
    std::optional<PlanList> plans_;
    detail::PartialResults<Output, Merge> results_;
};

/// Level 1: one child per plan of the first image, which writes its plan of the output image.
template <class Self, class Child, class Output, class... Inputs>
class ImageLvl1 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., typename Output::Source>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;

protected:
    Rule makeRule() const override
    {
        return matchOutputSize(this->template attribute<typename Output::Source>(), this->template attribute<Image>());
    }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const image::BaseImage& image = this->template value<Image>();
        plans_.emplace(image.getGeometry(), Image::kind);
        provider =
            makeStaticDispatcher<Child>(priority, this->getDispatchPolicy(), plans_->size(),
                                        detail::planBytes(image, Image::kind), std::numeric_limits<std::size_t>::max(),
                                        detail::splitByPlan<Child, typename Output::Source, typename Output::Target>(
                                            this->template attribute<typename Output::Source>(), *plans_),
                                        detail::splitByPlan<Child, typename Inputs::Source, typename Inputs::Target>(
                                            this->template attribute<typename Inputs::Source>(), *plans_)...);
        return {};
    }

private:
    std::optional<PlanList> plans_;
};

/// Level 2: one child per strip of the first image; Merge makes one result of theirs.
template <class Self, class Child, class Output, class Merge, class... Inputs>
class StripsLvl2 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., typename Output::Source>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;
    using Strip = typename detail::FirstOf<typename Inputs::Target...>::Type::Strip;

protected:
    void clearIntermediateDataDerived() override { results_.clear(); }

    Rule makeRule() const override
    {
        return detail::matchSizes(this->template attribute<typename Inputs::Source>()...);
    }

    bool acceptsGpuImages() const final { return mayUseGpu<Self>(); }

    /// Strips of fewer pixels are not worth their results; it depends on the image and the parameters alone.
    virtual std::size_t getMinStripPixels() const { return 0; }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        provider = tryToLaunchGpuProcess(priority);
        isOnGpu_ = provider != nullptr;
        if (!isOnGpu_) {
            provider = makeStripsProvider(priority);
        }
        return {};
    }

    /// The provider of the GPU level, if GPU support is activated and all images lie on the GPU; else null. Its one
    /// child writes the output itself.
    Ptr<ActionProvider> tryToLaunchGpuProcess(ePriority priority)
    {
        if constexpr (requires { Self::gpuVariant; }) {
            const auto& attributes = this->getAttributes();
            const bool areOnGpu = std::all_of(attributes.begin(), attributes.end(), [](const auto* attribute) {
                return attribute->getImage() == nullptr || attribute->getImage()->isGpuImage();
            });
            if (areOnGpu && mayUseGpu<Self>()) {
                return Self::gpuVariant.launch(priority, *this);
            }
        }
        return nullptr;
    }

    const StripCut& cutIntoStrips()
    {
        const image::BaseImage& image = this->template value<Image>();
        const std::size_t minBytes = this->getMinStripPixels() * image.getPixelSize();
        return cut_.emplace(StripCut::of<Strip>(image, std::max(this->getDispatchPolicy().stripBytes, minBytes), 1));
    }

    /// The provider of the strips; `more` are splits of values that are none of the inputs.
    template <class... More>
    Ptr<ActionProvider> makeStripsProvider(ePriority priority, More... more)
    {
        cutIntoStrips();
        results_.begin(this->template attribute<typename Output::Source>(), cut_->size());
        return makeDynamicDispatcher<Child>(
            priority, this->getDispatchPolicy(), cut_->size(), results_.template split<Child>(), std::move(more)...,
            detail::splitByStrip<Child, typename Inputs::Source, typename Inputs::Target>(
                this->template attribute<typename Inputs::Source>(), *cut_)...);
    }

    /// The results of the strips, in their order.
    const auto& getParts() const { return results_.get(); }

    core::ProcessingResult postProcess() override
    {
        return isOnGpu_ ? core::ProcessingResult{} : results_.merge(this->template value<typename Output::Source>());
    }

private:
    bool isOnGpu_ = false;
    std::optional<StripCut> cut_;
    detail::PartialResults<Output, Merge> results_;
};

} // namespace orlix::imaproc
