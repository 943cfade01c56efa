#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/process/BaseProcessor.hpp>
#include <framework/process/Splits.hpp>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <tuple>

namespace orlix::imaproc
{

/// Runs processors below another one. What does not depend on their class is here.
class ORLIX_API BaseDispatcher : public ActionProvider
{
public:
    core::ProcessingResult process(const RunContext& context) final;

protected:
    /// `grain` children, at least, make it worth to use another thread.
    BaseDispatcher(std::size_t children, std::size_t grain, ePriority priority)
        : children_{children}, grain_{grain}, priority_{priority}
    {}

    /// The failure of the first child that fails, in the children's order among those that ran.
    class Failure
    {
    public:
        explicit operator bool() const { return failed_.load(std::memory_order_relaxed); }
        void report(std::size_t child, core::ProcessingResult result);
        core::ProcessingResult take() { return std::move(result_); }

    private:
        std::atomic<bool> failed_{false};
        std::mutex mutex_;
        std::size_t child_ = 0;
        core::ProcessingResult result_;
    };

    /// Runs children [begin, end), until one fails or the run is cancelled.
    virtual void runChildren(std::size_t begin, std::size_t end, const RunContext& childContext, Failure& failure) = 0;

private:
    std::size_t children_;
    std::size_t grain_;
    ePriority priority_;
};

/// A split that takes back what it gave to a child that succeeded.
template <class Split, class Child>
concept CollectingSplit = requires(const Split& split, Child& child)
{
    split.collect(child);
};

/// A dispatcher of Child processors, each of which gets its share of the parent's values from the splits.
template <class Child, class... Splits>
class Dispatcher final : public BaseDispatcher
{
public:
    Dispatcher(std::size_t children, std::size_t grain, ePriority priority, const ProcessorDispatchPolicy& policy,
               Splits... splits)
        : BaseDispatcher{children, grain, priority}, policy_{policy}, splits_{std::move(splits)...}
    {}

private:
    void runChildren(std::size_t begin, std::size_t end, const RunContext& childContext, Failure& failure) override
    {
        // One processor serves the whole range, one child at a time.
        const auto child = makePtr<Child>();
        (void)child->init(eProcessorRulePolicy::eRP_CheckRules);
        child->setDispatchPolicy(policy_);
        for (std::size_t i = begin; i < end && !childContext.cancelled() && !failure; ++i) {
            core::ProcessingResult result;
            try {
                std::apply([&](const Splits&... split) { (split.assign(*child, i), ...); }, splits_);
                result = child->execute(childContext);
                if (result) {
                    std::apply([&](const Splits&... split) { (collect(split, *child), ...); }, splits_);
                }
            } catch (...) {
                result = core::ProcessingResult::failure(core::describeCurrentException());
            }
            if (!result) {
                failure.report(i, std::move(result));
            }
        }
    }

    template <class Split>
    static void collect(const Split& split, Child& child)
    {
        if constexpr (CollectingSplit<Split, Child>) {
            split.collect(child);
        }
    }

    ProcessorDispatchPolicy policy_;
    std::tuple<Splits...> splits_;
};

/// Children that are known in advance, one per plan; they take over the policy. `childBytes` is the size of one plan's
/// pixels; no more than `maxParallel` children run at once.
template <class Child, class... Splits>
Ptr<ActionProvider> makeStaticDispatcher(ePriority priority, const ProcessorDispatchPolicy& policy,
                                         std::size_t children, std::size_t childBytes, std::size_t maxParallel,
                                         Splits... splits)
{
    // Ranges of half a grain occur, too.
    const std::size_t grain = std::max({std::size_t{1}, policy.stripBytes / std::max<std::size_t>(1, childBytes),
                                        maxParallel >= children ? 1
                                        : maxParallel <= 1      ? children
                                                                : 2 * (children / maxParallel + 1)});
    return makePtr<Dispatcher<Child, Splits...>>(children, grain, priority, policy, std::move(splits)...);
}

/// Children that each take one strip.
template <class Child, class... Splits>
Ptr<ActionProvider> makeDynamicDispatcher(ePriority priority, const ProcessorDispatchPolicy& policy,
                                          std::size_t children, Splits... splits)
{
    return makePtr<Dispatcher<Child, Splits...>>(children, std::size_t{1}, priority, policy, std::move(splits)...);
}

} // namespace orlix::imaproc
