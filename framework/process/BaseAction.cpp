#include <framework/process/BaseAction.hpp>

#include <framework/core/Settings.hpp>
#include <framework/process/ProcessorMessages.hpp>

#include <algorithm>
#include <condition_variable>

namespace orlix::imaproc
{

using core::ProcessingResult;

/// Where the end of an asynchronous run is told.
class BaseAction::Completion
{
public:
    void finish(ProcessingResult result)
    {
        const std::lock_guard lock{mutex_};
        result_ = std::move(result);
        finished_ = true;
        ended_.notify_all();
    }
    ProcessingResult wait()
    {
        std::unique_lock lock{mutex_};
        ended_.wait(lock, [this] { return finished_; });
        return result_;
    }

private:
    std::mutex mutex_;
    std::condition_variable ended_;
    ProcessingResult result_;
    bool finished_ = false;
};

bool RunContext::reserve(std::size_t bytes) const
{
    return state->resultBytes.fetch_add(bytes) + bytes <= core::settings::getMemoryLimit();
}

BaseAction::~BaseAction() = default;

ActionProvider::~ActionProvider() = default;

ProcessingResult BaseAction::runHere()
{
    ProcessingResult result = execute({&state_, 1, priority_});
    if (result) {
        state_.progress = 1;
    }
    running_ = false;
    return result;
}

ProcessingResult BaseAction::run(eSynchroType type)
{
    if (running_.exchange(true)) {
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eAlreadyRunning, getClassName()));
    }
    state_.cancelled = false;
    state_.progress = 0;
    state_.resultBytes = 0;
    if (type == eSynchroType::eST_Synchronous) {
        return runHere();
    }
    try {
        const auto completion = makePtr<Completion>();
        executor::submit(priority_, [self = shared_from_this(), completion]() mutable {
            ProcessingResult result = self->runHere();
            // The caller may hold the last reference from here on, and drop it as soon as it has the result.
            self.reset();
            completion->finish(std::move(result));
        });
        const std::lock_guard lock{mutex_};
        completion_ = completion;
    } catch (const boost::bad_weak_ptr&) {
        running_ = false;
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eNotShared, getClassName()));
    } catch (...) {
        running_ = false;
        throw;
    }
    return {};
}

ProcessingResult BaseAction::wait()
{
    Ptr<Completion> completion;
    {
        const std::lock_guard lock{mutex_};
        completion = completion_;
    }
    return completion ? completion->wait() : ProcessingResult{};
}

void BaseAction::requestCancellation()
{
    state_.cancelled = true;
    requestCancellationdDerived();
}

double BaseAction::getProgress() const
{
    return std::min(1.0, state_.progress.load());
}

} // namespace orlix::imaproc
