#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/core/Ptr.hpp>
#include <framework/data/BaseDynamicObject.hpp>
#include <framework/process/Executor.hpp>

#include <boost/smart_ptr/enable_shared_from_this.hpp>

#include <atomic>
#include <mutex>

namespace orlix::imaproc
{

enum class eSynchroType
{
    eST_Synchronous = 0,
    eST_Asynchronous = 1
};

/// What all actions of one run share.
struct RunState
{
    std::atomic<bool> cancelled{false};
    std::atomic<double> progress{0};
    std::atomic<std::size_t> resultBytes{0}; ///< that results have reserved
};

/// What a run hands to the actions below it.
struct RunContext
{
    RunState* state = nullptr;
    double share = 1; ///< of the whole run's progress
    ePriority priority = ePriority::eP_Normal;

    bool cancelled() const { return state->cancelled.load(std::memory_order_relaxed); }
    /// Whether the results of the whole run, with so many bytes more, stay within the memory limit.
    ORLIX_API bool reserve(std::size_t bytes) const;
    void advance() const { state->progress.fetch_add(share, std::memory_order_relaxed); }
    RunContext part(std::size_t parts) const { return {state, share / static_cast<double>(parts), priority}; }
};

/// Something that runs, in the calling thread or on the framework's threads. One run at a time.
class ORLIX_API BaseAction : public data::BaseDynamicObject, public boost::enable_shared_from_this<BaseAction>
{
public:
    ~BaseAction() override;

    /// Synchronous: runs and returns the result. Asynchronous: returns at once; the action keeps itself alive, and
    /// wait() gives the result. A second run before the first has ended fails.
    core::ProcessingResult run(eSynchroType type);

    /// Blocks until the asynchronous run has ended and returns its result; without one, success.
    core::ProcessingResult wait();
    bool isRunning() const { return running_; }

    /// Ends the run, which then fails, before its next strip.
    void requestCancellation();
    /// Of the last run, from 0 to 1.
    double getProgress() const;
    /// Of the runs to come.
    void setPriority(ePriority priority) { priority_ = priority; }

    /// Whether other actions run inside this one.
    virtual bool isComplexAction() const = 0;

    /// One run as a part of another; whatever goes wrong is in the result.
    virtual core::ProcessingResult execute(const RunContext& context) = 0;

protected:
    BaseAction() = default;

    /// Told on the thread that asks for cancellation.
    virtual void requestCancellationdDerived() {}

private:
    class Completion;

    core::ProcessingResult runHere();

    RunState state_;
    std::atomic<bool> running_{false};
    ePriority priority_ = ePriority::eP_Normal;
    mutable std::mutex mutex_;
    Ptr<Completion> completion_;
};

/// What a processor offers its run: the actions of the next level.
class ORLIX_API ActionProvider
{
public:
    virtual ~ActionProvider();
    virtual core::ProcessingResult process(const RunContext& context) = 0;
};

} // namespace orlix::imaproc
