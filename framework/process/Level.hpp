#pragma once

#include <framework/process/Dispatcher.hpp>
#include <framework/process/Merge.hpp>
#include <framework/process/Processor.hpp>
#include <framework/process/StripCut.hpp>

#include <boost/container/small_vector.hpp>

#include <array>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

namespace orlix::imaproc
{

/// A class of children as their parent knows it: which of its attributes become theirs, and how it is cut for them.
struct ChildClass
{
    struct Link
    {
        std::uint8_t from = 0; ///< number of the parent's attribute
        std::uint8_t to = 0;   ///< number of the child's
    };

    ProcessorClass* processorClass = nullptr;
    std::array<Link, AttributeColl::static_capacity> links{};
    std::size_t nbLinks = 0;
    std::size_t nbAttributes = 0;
    /// The first of the child's outputs that are no share of an output of the parent, but parts of its result.
    std::size_t firstResult = 0;
    /// The cut of the parent's plan into the child's strips; null where children take plans.
    StripCut (*cut)(const image::BaseImage& plan, std::size_t stripBytes, std::size_t minElements) = nullptr;
};

/// Every attribute of a child takes the first one that can be shared with it of those of its parent that none took yet:
/// inputs of inputs, outputs of outputs. Any other is for the parent to set in prepareChild().
template <class Parent, class Child>
consteval ChildClass childOf();

/// How a class runs on a GPU. It is empty until the GPU level, which is built where there is a CUDA compiler, fills it
/// in.
struct GpuVariant
{
    bool (*isActivated)() = nullptr;
    ChildClass child; ///< the one child, which writes the result itself

    bool isUsable() const { return isActivated != nullptr && isActivated(); }
};

/// What all levels of one class share: their children, and how those' results become one.
class ORLIX_API LevelClass final : public ProcessorClass
{
public:
    LevelClass(const std::type_info& type, Origin origin, const ProcessorCreators& creators,
               std::vector<ChildClass> children, const Merge& merge, const GpuVariant* gpuVariant = nullptr);

    const ChildClass& getChild(std::size_t i) const { return children_[i]; }
    const Merge& getMerge() const { return merge_; }
    /// Null for a class that has none.
    const GpuVariant* getGpuVariant() const { return gpuVariant_; }
    bool mayUseGpu() const override;

private:
    std::vector<ChildClass> children_;
    Merge merge_;
    const GpuVariant* gpuVariant_;
};

/// A processor that shares its work among children of another class: level 1, one child per plan of its first image, or
/// level 2, one per strip. All images that it takes have the size of the first. Self has a `static LevelClass
/// processorClass`.
class ORLIX_API Level : public BaseAsync1Processor, protected BaseDispatcher
{
protected:
    Rule makeRule() const override;
    bool acceptsGpuImages() const final { return getProcessorClass().mayUseGpu(); }
    void clearIntermediateDataDerived() override;
    core::ProcessingResult retrieveProvider(ePriority priority, Ptr<ActionProvider>& provider) override;
    core::ProcessingResult postProcess() override;

    /// Which of the classes of children runs.
    virtual std::size_t chooseChild() const { return 0; }
    /// Strips of fewer pixels, or elements, are not worth their results. This depends only on the image and the
    /// parameters.
    virtual std::size_t getMinStripPixels() const { return 0; }
    virtual std::size_t getMinStripElements() const { return 1; }
    /// How many plans may be measured at once.
    virtual std::size_t getMaxParallelPlans() const { return std::numeric_limits<std::size_t>::max(); }
    /// Whether plans may be measured in any order.
    virtual bool takesAnyOrder() const { return true; }
    /// Sets what a child does not take from its parent.
    virtual void prepareChild(BaseProcessor&, std::size_t) {}

    /// The provider of the GPU level, if GPU support is activated and all images lie on the GPU; else null.
    Ptr<ActionProvider> tryToLaunchGpuProcess(ePriority priority);

    /// Cuts the first image for the children, and returns their number.
    std::size_t cut();
    /// How many children are worth another thread.
    std::size_t findGrain(std::size_t children) const;
    /// Whether channels that are decoded together are measured one behind the other.
    bool gathersChannels() const;
    /// The child that is the i-th to begin, then.
    std::size_t findGathered(std::size_t i) const;
    attr::Share getShare(std::size_t child) const;
    /// What the children left in their outputs, child by child.
    Merge::Parts getParts() const { return {parts_.data(), parts_.size()}; }

private:
    void runChildren(std::size_t begin, std::size_t end, const RunContext& childContext, Failure& failure) final;
    Ptr<ActionProvider> asProvider();

    const LevelClass& getLevelClass() const { return static_cast<const LevelClass&>(getProcessorClass()); }
    void giveResults(BaseProcessor& child, std::size_t index);
    void takeResults(BaseProcessor& child);

    const ChildClass* child_ = nullptr; ///< of the run; what follows holds while there is one
    const Merge* merge_ = nullptr;
    StripCut cut_{0, 0, 0};
    image::PlanRange plans_{{}, image::ePlanKind::ePK_Plan2d};
    const attr::BasePlanIndexedColl* collection_ = nullptr; ///< whose plans these are, if it has some of its own
    boost::container::small_vector<Ptr<data::BaseDataItem>, 4>
        parts_; ///< those in any order: no more than children run at once, and idle
    std::mutex mutex_;
};

namespace detail
{

template <class Parent, class Child>
struct Links
{
    template <std::size_t I>
    using From = std::tuple_element_t<I, typename Parent::AttributeTypes>;
    template <std::size_t I>
    using To = std::tuple_element_t<I, typename Child::AttributeTypes>;

    static constexpr std::size_t nbFrom = std::tuple_size_v<typename Parent::AttributeTypes>;
    static constexpr std::size_t nbTo = std::tuple_size_v<typename Child::AttributeTypes>;

    template <class A>
    static constexpr bool isInput =
        A::role == attr::eAttributeRole::eAR_Input || A::role == attr::eAttributeRole::eAR_OptionalInput;
    /// Whole records are results, which become one.
    template <class A, class B>
    static constexpr bool canTake = isInput<A> == isInput<B>&& attr::takesFrom<A, B> &&
                                    (isInput<A> || !std::same_as<typename A::Storage, typename B::Storage> ||
                                     requires { A::kind; });

    template <std::size_t ToIndex, std::size_t... FromIndex>
    static constexpr void linkOne(ChildClass& child, std::array<bool, nbFrom>& taken, std::index_sequence<FromIndex...>)
    {
        const auto tryLink = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
            if (!canTake<To<ToIndex>, From<I>> || taken[I]) {
                return false;
            }
            taken[I] = true;
            child.links[child.nbLinks++] = {I, ToIndex};
            return true;
        };
        const bool isLinked = (tryLink(std::integral_constant<std::size_t, FromIndex>{}) || ...);
        if (isInput<To<ToIndex>> || isLinked) {
            child.firstResult = ToIndex + 1;
        }
    }

    template <std::size_t... ToIndex>
    static constexpr ChildClass link(std::index_sequence<ToIndex...>)
    {
        ChildClass child{.processorClass = &Child::processorClass, .nbAttributes = nbTo};
        std::array<bool, nbFrom> taken{};
        (linkOne<ToIndex>(child, taken, std::make_index_sequence<nbFrom>{}), ...);
        if constexpr (requires { typename To<0>::Strip; }) {
            child.cut = &StripCut::of<typename To<0>::Strip>;
        }
        return child;
    }
};

} // namespace detail

template <class Parent, class Child>
consteval ChildClass childOf()
{
    return detail::Links<Parent, Child>::link(std::make_index_sequence<detail::Links<Parent, Child>::nbTo>{});
}

} // namespace orlix::imaproc
