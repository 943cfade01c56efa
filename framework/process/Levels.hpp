#pragma once

#include <framework/process/Dispatcher.hpp>
#include <framework/process/Processor.hpp>

#include <optional>

/// The three shapes that most processors have: a level 1 that keeps the results of its plans apart, a level 1 that
/// merges them, and a level 2 that cuts its plan into strips. A measure derives from them and says which attribute of
/// its own becomes which attribute of the level below.
namespace orlix::imaproc
{

/// A processor's attribute From becomes its children's attribute To: an image is split, any other value is passed on.
template <class From, class To = From>
struct Pass
{
    using Source = From;
    using Target = To;
};

namespace detail
{

template <class Child, class From, class To>
auto splitByPlan(const From& attribute, const PlanList& plans)
{
    if constexpr (attr::ImageAttribute<From>) {
        return SubImageSplit<Child, To>{attribute.get(), plans};
    } else {
        return StaticNoSplit<Child, To>{attribute.get()};
    }
}

template <class Child, class From, class To>
auto splitByStrip(const From& attribute, const StripCut& cut)
{
    if constexpr (attr::ImageAttribute<From>) {
        return ImageStripSplit<Child, const image::BaseImage, To>{attribute.get(), cut};
    } else {
        return DynamicNoSplit<Child, To>{attribute.get()};
    }
}

inline std::size_t planBytes(const image::BaseImage& image, image::ePlanKind kind)
{
    const image::ImageGeometry& size = image.getGeometry();
    return size.x * size.y * (kind == image::ePlanKind::ePK_Volume3d ? size.z : 1) * image.getPixelSize();
}

template <class First, class...>
struct FirstOf
{
    using Type = First;
};

} // namespace detail

/// Level 1: one child per plan of the first image, whose result is the plan's element of the output collection.
template <class Self, class Child, class Output, class... Inputs>
class PlanIndexedLvl1 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., typename Output::Source>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;
    using Collection = typename Output::Source::Value;

protected:
    Rule makeRule() const override
    {
        return matchImagePlans(this->template attribute<typename Output::Source>(), this->template attribute<Image>());
    }

    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const Collection& collection = this->template value<typename Output::Source>();
        const image::BaseImage& image = this->template value<Image>();
        plans_.emplace(collection);
        provider = makeStaticDispatcher<Child>(
            priority, this->getDispatchPolicy(), plans_->size(), detail::planBytes(image, Image::kind),
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
class MergedLvl1 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., Output>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;

public:
    void clearIntermediateData() override { results_.clear(); }

protected:
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const image::BaseImage& image = this->template value<Image>();
        plans_.emplace(image.getGeometry(), Image::kind);
        results_.resize(plans_->size());
        provider = makeStaticDispatcher<Child>(
            priority, this->getDispatchPolicy(), plans_->size(), detail::planBytes(image, Image::kind),
            StaticResultSplit<Child, Output>{results_},
            detail::splitByPlan<Child, typename Inputs::Source, typename Inputs::Target>(
                this->template attribute<typename Inputs::Source>(), *plans_)...);
        return {};
    }

    core::ProcessingResult postProcess() override { return Merge::merge(results_, this->template value<Output>()); }

private:
    std::optional<PlanList> plans_;
    PartialResults<typename Output::Value> results_;
};

/// Level 2: one child per strip of the first image; Merge makes one result of theirs.
template <class Self, class Child, class Output, class Merge, class... Inputs>
class StripsLvl2 : public Processor<Self, BaseAsync1Processor, typename Inputs::Source..., Output>
{
    using Image = typename detail::FirstOf<typename Inputs::Source...>::Type;
    using Strip = typename detail::FirstOf<typename Inputs::Target...>::Type::Strip;

public:
    void clearIntermediateData() override { results_.clear(); }

protected:
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override
    {
        const image::BaseImage& image = this->template value<Image>();
        cut_.emplace(Strip::getNbElements(image), Strip::getElementPixels(image) * image.getPixelSize(),
                     this->getDispatchPolicy().stripBytes);
        results_.resize(cut_->size());
        provider = makeDynamicDispatcher<Child>(
            priority, this->getDispatchPolicy(), cut_->size(), DynamicByCreationResultSplit<Child, Output>{results_},
            detail::splitByStrip<Child, typename Inputs::Source, typename Inputs::Target>(
                this->template attribute<typename Inputs::Source>(), *cut_)...);
        return {};
    }

    core::ProcessingResult postProcess() override { return Merge::merge(results_, this->template value<Output>()); }

private:
    std::optional<StripCut> cut_;
    PartialResults<typename Output::Value> results_;
};

} // namespace orlix::imaproc
