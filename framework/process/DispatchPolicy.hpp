#pragma once

#include <cstddef>

namespace orlix::imaproc
{

/// How a processor cuts its work.
struct ProcessorDispatchPolicy
{
    /// Pixels of one strip, in bytes; also the work below which nothing leaves the calling thread. It depends on
    /// nothing else, so results do not depend on the number of threads.
    std::size_t stripBytes = 0;

    void initDefault() { stripBytes = std::size_t{512} * 1024; }
};

} // namespace orlix::imaproc
