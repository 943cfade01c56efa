#pragma once

#include <framework/core/Exception.hpp>

namespace orlix::gpu
{

/// What the CUDA runtime says of a failure: no device, no memory, a failed launch.
class ORLIX_API GpuException final : public core::BaseException
{
public:
    using BaseException::BaseException;
};

} // namespace orlix::gpu
