#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/image/Strip.hpp>

#include <algorithm>
#include <cstddef>
#include <mutex>
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

/// The cut of a sub image into strips of whole elements (rows, columns or planes): as even as it goes, and the same for
/// the same sizes and the same policy.
class StripCut
{
public:
    /// Strips of about `stripBytes`, but of at least `minElements`.
    template <class Strip>
    static StripCut of(const image::BaseImage& image, std::size_t stripBytes, std::size_t minElements)
    {
        const std::size_t elementBytes = Strip::getElementPixels(image) * image.getPixelSize();
        return {Strip::getNbElements(image), elementBytes, std::max(stripBytes, minElements * elementBytes)};
    }

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

/// The element of a plan-indexed input for the child's plan; null where it has none.
template <class Child, class Collection, class A>
class PlanIndexedInputSplit
{
public:
    PlanIndexedInputSplit(Ptr<const Collection> collection, const PlanList& plans)
        : collection_{std::move(collection)}, plans_{plans}
    {}
    void assign(Child& child, std::size_t i) const
    {
        child.template set<A>(collection_ ? collection_->getStorage(plans_[i]) : nullptr);
    }

private:
    Ptr<const Collection> collection_;
    const PlanList& plans_;
};

/// One plan of an image, as a sub image.
template <class Child, class A, class Image = const image::BaseImage>
class SubImageSplit
{
public:
    SubImageSplit(Ptr<Image> image, const PlanList& plans) : image_{std::move(image)}, plans_{plans} {}
    void assign(Child& child, std::size_t i) const
    {
        if (!image_) {
            child.template set<A>(nullptr); // an optional image that is not there
            return;
        }
        // An image of one plan is its own sub image.
        const bool whole = getSubGeometry(image_->getGeometry(), A::kind) == image_->getGeometry();
        const image::PlanIndex plan = plans_[i];
        child.template set<A>(whole && plan == image::PlanIndex{} ? image_ : image_->getSubImage(plan, A::kind));
    }

private:
    Ptr<Image> image_;
    const PlanList& plans_;
};

/// Nothing for any child.
struct NoSplit
{
    template <class Child>
    void assign(Child&, std::size_t) const
    {}
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

/// A fresh result for every child, which stays in `results` for the merge, in the order of the children.
template <class Child, class A>
class StaticResultSplit
{
public:
    explicit StaticResultSplit(std::vector<Ptr<typename A::Value>>& results) : results_{results} {}
    void assign(Child& child, std::size_t i) const
    {
        results_[i] = data::makeRecord<typename A::Value>();
        child.template set<A>(results_[i]);
    }

private:
    std::vector<Ptr<typename A::Value>>& results_;
};

template <class Child, class A>
using DynamicByCreationResultSplit = StaticResultSplit<Child, A>;

/// Adds up results whose addition is exact, so that their order does not matter: counts. No more copies are alive at
/// once than children run. Result has clear(), which keeps its form, and operator+=; children clear what they are
/// given.
template <class Result>
class RunningTotal
{
public:
    /// `total`, whose form the copies take, begins at zero.
    void begin(Ptr<Result> total, std::size_t children)
    {
        total_ = std::move(total);
        children_ = children;
        total_->clear();
    }
    void end()
    {
        total_.reset();
        idle_.clear();
    }

    /// A copy; the total itself where there is one child alone.
    Ptr<Result> take()
    {
        if (children_ == 1) {
            return total_;
        }
        const std::lock_guard lock{mutex_};
        if (idle_.empty()) {
            return makePtr<Result>(*total_);
        }
        Ptr<Result> part = std::move(idle_.back());
        idle_.pop_back();
        return part;
    }
    void give(const Ptr<Result>& part)
    {
        if (part == total_) {
            return;
        }
        const std::lock_guard lock{mutex_};
        *total_ += *part;
        idle_.push_back(part);
    }

private:
    std::mutex mutex_;
    Ptr<Result> total_;
    std::size_t children_ = 0;
    std::vector<Ptr<Result>> idle_;
};

/// A copy of the parent's result for every child, added to it when the child has ended.
template <class Child, class A>
class DynamicByCopyResultSplit
{
public:
    explicit DynamicByCopyResultSplit(RunningTotal<typename A::Value>& total) : total_{total} {}
    void assign(Child& child, std::size_t) const { child.template set<A>(total_.take()); }
    void collect(Child& child) const { total_.give(child.template getStorage<A>()); }

private:
    RunningTotal<typename A::Value>& total_;
};

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
using ImageXStrip2dSplit = ImageStripSplit<Child, Image, A>;
template <class Child, class Image, class A>
using ImageYStrip2dSplit = ImageStripSplit<Child, Image, A>;
/// The strips of a sub image whose children read the neighbouring rows as well: a strip knows its image.
template <class Child, class Image, class A>
using ImageYStrip2dWithKernelSplit = ImageStripSplit<Child, Image, A>;
template <class Child, class Image, class A>
using ImageZStrip3dSplit = ImageStripSplit<Child, Image, A>;
template <class Child, class Image, class A>
using ImageYStripSeq2dSplit = ImageStripSplit<Child, Image, A>;

} // namespace orlix::imaproc
