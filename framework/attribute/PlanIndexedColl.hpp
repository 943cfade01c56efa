#pragma once

#include <framework/core/Api.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DataItem.hpp>
#include <framework/image/Geometry.hpp>

#include <cstddef>
#include <utility>
#include <vector>

namespace orlix::imaproc::attr
{

using image::PlanIndex;

/// One object per plan, in the order of plans (t slowest, then c, then z).
class ORLIX_API BasePlanIndexedColl : public data::BaseDataItem
{
public:
    /// Adds an element, or replaces the one of that plan. Throws BaseException if it is null or not of the
    /// collection's class.
    void insert(const PlanIndex& plan, Ptr<data::BaseDataItem> element);
    /// The element of a plan; null if there is none.
    Ptr<data::BaseDataItem> getStorage(const PlanIndex& plan) const;

    std::size_t size() const { return elements_.size(); }
    const PlanIndex& getPlan(std::size_t i) const { return elements_[i].first; }
    const Ptr<data::BaseDataItem>& getElement(std::size_t i) const { return elements_[i].second; }
    void reserve(std::size_t plans) { elements_.reserve(plans); }

    void copy(const BaseDynamicObject& other) override;
    core::ProcessingResult write(data::OutputArchive& archive) const override;
    core::ProcessingResult read(data::InputArchive& archive) override;

private:
    virtual bool accepts(const data::BaseDataItem& element) const = 0;

    std::vector<std::pair<PlanIndex, Ptr<data::BaseDataItem>>> elements_;
};

/// A collection of Element. Self has `static constexpr const char* typeName`.
template <class Self, class ElementType>
class PlanIndexedColl : public data::DynamicObject<Self, BasePlanIndexedColl>
{
public:
    using Element = ElementType;

    void insert(const PlanIndex& plan, Ptr<Element> element) { BasePlanIndexedColl::insert(plan, std::move(element)); }
    Ptr<Element> getStorage(const PlanIndex& plan) const
    {
        return boost::static_pointer_cast<Element>(BasePlanIndexedColl::getStorage(plan));
    }
    Ptr<Element> getElement(std::size_t i) const
    {
        return boost::static_pointer_cast<Element>(BasePlanIndexedColl::getElement(i));
    }

private:
    bool accepts(const data::BaseDataItem& element) const final
    {
        return dynamic_cast<const Element*>(&element) != nullptr;
    }
};

} // namespace orlix::imaproc::attr
