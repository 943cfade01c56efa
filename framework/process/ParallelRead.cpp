#include <framework/process/ParallelRead.hpp>

#include <algorithm>
#include <exception>
#include <mutex>

namespace orlix::imaproc
{

void readInParallel(const image::BaseImage& from, const image::Box& box, const image::PixelTarget& to,
                    const image::Box& sweep, const RunContext& context)
{
    constexpr std::size_t partBytes = std::size_t{1} << 20;
    const image::ImageGeometry& size = box.size;
    if (size.empty()) {
        return;
    }
    const std::size_t rows =
        std::clamp<std::size_t>(partBytes / (size.x * from.getPixelSize()), 1, std::max<std::size_t>(1, size.y));
    const std::size_t parts = (size.y + rows - 1) / rows; // of a plan
    const image::PlanRange plans{size, image::ePlanKind::ePK_Plan2d};
    std::mutex mutex;
    std::exception_ptr failure;
    std::atomic<bool> ends{false};
    const auto read = [&](std::size_t begin, std::size_t end) {
        try {
            for (std::size_t i = begin; i < end && !ends && !context.cancelled(); ++i) {
                const image::PlanIndex plan = plans[i / parts];
                const std::size_t y = i % parts * rows;
                const image::Position& at = box.begin;
                from.read({{at.x, at.y + y, at.z + plan.z, at.c + plan.c, at.t + plan.t},
                           {size.x, std::min(rows, size.y - y)}},
                          {to.row(y, plan.z, plan.c, plan.t), to.strides}, sweep);
            }
        } catch (...) {
            const std::lock_guard lock{mutex};
            failure = failure ? failure : std::current_exception();
            ends = true;
        }
    };
    executor::parallelInOrder(plans.size() * parts, 1, context.priority, RangeBody{read});
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace orlix::imaproc
