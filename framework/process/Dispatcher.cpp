#include <framework/process/Dispatcher.hpp>

#include <algorithm>

namespace orlix::imaproc
{

using core::ProcessingResult;

void BaseDispatcher::Failure::report(std::size_t child, ProcessingResult result)
{
    const std::lock_guard lock{mutex_};
    if (!failed_ || child < child_) {
        child_ = child;
        result_ = std::move(result);
        failed_ = true;
    }
}

ProcessingResult BaseDispatcher::process(const RunContext& context)
{
    Failure failure;
    const RunContext childContext = context.part(std::max<std::size_t>(1, children_));
    const auto body = [&](std::size_t begin, std::size_t end) {
        try {
            runChildren(begin, end, childContext, failure);
        } catch (...) {
            failure.report(begin, ProcessingResult::failure(core::describeCurrentException()));
        }
    };
    (inOrder_ ? executor::parallelInOrder : executor::parallelFor)(children_, grain_, priority_, RangeBody{body});
    if (context.cancelled() && !failure) {
        return ProcessingResult::failure(core::formatMessage(eProcessorMessage::eCancelled));
    }
    return failure ? failure.take() : ProcessingResult{};
}

} // namespace orlix::imaproc
