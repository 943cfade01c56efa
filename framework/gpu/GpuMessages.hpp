#pragma once

#include <framework/core/Message.hpp>

namespace orlix::gpu
{

/// The messages of the GPU layer.
enum class eGpuMessage : unsigned
{
    eGM_Unavailable = 0, ///< text of the CUDA runtime
    eGM_Failure = 1,     ///< what failed, text of the CUDA runtime
    eGM_NoSuchGpu = 2,   ///< index, number of GPUs
    eGM_NotOnGpu = 3,    ///< attribute
    eGM_NoKernel = 4,    ///< processor, pixel type
    eGM_OtherGpu = 5,    ///< attribute, index of its GPU, index of the selected one
    eGM_HostPointer = 6,
};

} // namespace orlix::gpu

template <>
struct orlix::core::MessageMap<orlix::gpu::eGpuMessage>
{
    static constexpr const char* library = "Gpu";
    ORLIX_API static std::span<const Message> texts();
};
