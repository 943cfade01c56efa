#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/image/Strip.hpp>

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

/// How the values of a processor reach the processors below it. A split hands child i its share; the static splits cut
/// into plans, the dynamic ones into strips.
namespace orlix::imaproc
{

/// The plans that a level 1 processor runs: those of a collection, or all of an image.
class PlanList
{
public:
    PlanList(const image::ImageGeometry& geometry, image::ePlanKind kind) : range_{geometry, kind} {}
    explicit PlanList(const attr::BasePlanIndexedColl& collection)
        : range_{{}, image::ePlanKind::ePK_Plan2d}, collection_{&collection}
    {}
    std::size_t size() const { return collection_ != nullptr ? collection_->size() : range_.size(); }
    image::PlanIndex operator[](std::size_t i) const
    {
        return collection_ != nullptr ? collection_->getPlan(i) : range_[i];
    }

private:
    image::PlanRange range_;
    const attr::BasePlanIndexedColl* collection_ = nullptr;
};

/// The cut of a sub image into strips of whole rows or planes: as even as it goes, and the same for the same sizes and
/// the same policy.
class StripCut
{
public:
    StripCut(std::size_t nbElements, std::size_t elementBytes, std::size_t stripBytes) : nbElements_{nbElements}
    {
        const std::size_t bytes = nbElements * elementBytes;
        const std::size_t limit = std::max<std::size_t>(1, stripBytes);
        size_ = std::min(nbElements, bytes / limit + (bytes % limit != 0));
    }
    std::size_t size() const { return size_; }
    std::size_t begin(std::size_t i) const { return nbElements_ / size_ * i + std::min(i, nbElements_ % size_); }

private:
    std::size_t nbElements_;
    std::size_t size_;
};

/// Partial results in the order of their strips or plans. Where one was never made, the pointer is null.
template <class Result>
using PartialResults = std::vector<Ptr<Result>>;

/// The element of a plan-indexed output for the child's plan.
template <class Child, class Collection, class A>
class PlanIndexedSplit
{
public:
    explicit PlanIndexedSplit(const Collection& collection) : collection_{collection} {}
    void assign(Child& child, std::size_t i) const { child.template set<A>(collection_.getElement(i)); }

private:
    const Collection& collection_;
};

/// One plan of an image, as a sub image.
template <class Child, class A>
class SubImageSplit
{
public:
    SubImageSplit(Ptr<const image::BaseImage> image, const PlanList& plans) : image_{std::move(image)}, plans_{plans} {}
    void assign(Child& child, std::size_t i) const
    {
        if (!image_) {
            child.template set<A>(nullptr); // an optional image that is not there
            return;
        }
        // An image of one plan is its own sub image.
        const image::ImageGeometry& size = image_->getGeometry();
        const bool whole = size.c == 1 && size.t == 1 && (A::kind == image::ePlanKind::ePK_Volume3d || size.z == 1);
        const image::PlanIndex plan = plans_[i];
        child.template set<A>(whole && plan == image::PlanIndex{} ? image_ : image_->getSubImage(plan, A::kind));
    }

private:
    Ptr<const image::BaseImage> image_;
    const PlanList& plans_;
};

/// The same value for every child.
template <class Child, class A>
class StaticNoSplit
{
public:
    explicit StaticNoSplit(typename A::Storage value) : value_{std::move(value)} {}
    void assign(Child& child, std::size_t) const { child.template set<A>(value_); }

private:
    typename A::Storage value_;
};

template <class Child, class A>
using DynamicNoSplit = StaticNoSplit<Child, A>;

/// Makes an empty result.
template <class Result>
struct DefaultCreation
{
    Ptr<Result> operator()() const { return makePtr<Result>(); }
};

/// A result of its own for every child, which stays in `results` for the merge.
template <class Child, class A, class Creation = DefaultCreation<typename A::Value>>
class StaticResultSplit
{
public:
    using Result = typename A::Value;

    explicit StaticResultSplit(PartialResults<Result>& results, Creation create = {})
        : results_{results}, create_{std::move(create)}
    {}
    void assign(Child& child, std::size_t i) const
    {
        results_[i] = create_();
        child.template set<A>(results_[i]);
    }

private:
    PartialResults<Result>& results_;
    Creation create_;
};

/// A fresh partial result for every strip.
template <class Child, class A, class Creation = DefaultCreation<typename A::Value>>
using DynamicByCreationResultSplit = StaticResultSplit<Child, A, Creation>;

/// The strips of a sub image.
template <class Child, class Image, class A>
class ImageStripSplit
{
public:
    ImageStripSplit(Ptr<Image> image, const StripCut& cut) : image_{std::move(image)}, cut_{cut} {}
    void assign(Child& child, std::size_t i) const
    {
        const std::size_t first = cut_.begin(i);
        child.template set<A>({image_, first, cut_.begin(i + 1) - first});
    }

private:
    Ptr<Image> image_;
    const StripCut& cut_;
};

template <class Child, class Image, class A>
requires(A::Strip::kind == image::ePlanKind::ePK_Plan2d) using ImageYStrip2dSplit = ImageStripSplit<Child, Image, A>;

template <class Child, class Image, class A>
requires(A::Strip::kind == image::ePlanKind::ePK_Volume3d) using ImageZStrip3dSplit = ImageStripSplit<Child, Image, A>;

} // namespace orlix::imaproc
