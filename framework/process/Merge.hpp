#pragma once

#include <framework/core/Ptr.hpp>
#include <framework/data/DataItem.hpp>

#include <span>

namespace orlix::imaproc
{

class BaseProcessor;

/// How the results of a processor's children become its own. A measure M is merged by
///
///     struct State;                                        // what is kept of the parts, at first value-initialised
///     static void combine(State& into, const Part& part);  // Part is a record, M::Part or else M::Result
///     static void finish(const State& state, Result& merged [, const BaseProcessor& level]);
///
/// in the order of the children, or, where `combine` is exact, as they come, State being the result itself.
struct Merge
{
    enum class Order
    {
        InPlace, ///< every child writes its own part of the result
        InOrder,
        AnyOrder
    };
    using Parts = std::span<const Ptr<data::BaseDataItem>>;

    Order order = Order::InPlace;
    /// In order: makes the result of the parts; null where the processor does so itself.
    void (*merge)(Parts parts, data::BaseDataItem& merged, const BaseProcessor& level) = nullptr;
    /// In any order: a total begins empty, and parts are added to it.
    void (*clear)(data::BaseDataItem& total) = nullptr;
    void (*add)(data::BaseDataItem& total, const data::BaseDataItem& part) = nullptr;
};

inline constexpr Merge inPlace{};
/// The processor merges its parts itself, in its postProcess().
inline constexpr Merge byItself{Merge::Order::InOrder};

namespace detail
{

template <class M>
struct PartOf
{
    using Type = typename M::Result;
};
template <class M>
requires requires
{
    typename M::Part;
}
struct PartOf<M>
{
    using Type = typename M::Part;
};

} // namespace detail

template <class M>
inline constexpr Merge inOrder{Merge::Order::InOrder, [](Merge::Parts parts, data::BaseDataItem& merged,
                                                         [[maybe_unused]] const BaseProcessor& level) {
                                   typename M::State state{};
                                   for (const Ptr<data::BaseDataItem>& part : parts) {
                                       M::combine(state, static_cast<const typename detail::PartOf<M>::Type&>(*part));
                                   }
                                   auto& result = static_cast<typename M::Result&>(merged);
                                   if constexpr (requires { M::finish(state, result, level); }) {
                                       M::finish(state, result, level);
                                   } else {
                                       M::finish(state, result);
                                   }
                               }};

/// For a Result with clear(), which keeps its form, and operator+=.
template <class Result>
inline constexpr Merge inAnyOrder{Merge::Order::AnyOrder, nullptr,
                                  [](data::BaseDataItem& total) { static_cast<Result&>(total).clear(); },
                                  [](data::BaseDataItem& total, const data::BaseDataItem& part) {
                                      static_cast<Result&>(total) += static_cast<const Result&>(part);
                                  }};

} // namespace orlix::imaproc
