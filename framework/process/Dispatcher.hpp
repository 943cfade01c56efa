#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/process/BaseProcessor.hpp>

#include <atomic>
#include <cstddef>
#include <mutex>

namespace orlix::imaproc
{

/// Runs processors below another one. What does not depend on their class is here.
class ORLIX_API BaseDispatcher : public ActionProvider
{
public:
    core::ProcessingResult process(const RunContext& context) final;

protected:
    /// What the next process() runs: `grain` children, at least, make it worth to use another thread. `inOrder`: they
    /// are begun in their order.
    void setChildren(std::size_t children, std::size_t grain, ePriority priority, bool inOrder = false)
    {
        children_ = children;
        grain_ = grain;
        priority_ = priority;
        inOrder_ = inOrder;
    }
    std::size_t getNbChildren() const { return children_; }

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
    std::size_t children_ = 0;
    std::size_t grain_ = 1;
    bool inOrder_ = false;
    ePriority priority_ = ePriority::eP_Normal;
};

} // namespace orlix::imaproc
