#pragma once

#include <framework/process/BaseProcessor.hpp>

namespace orlix::imaproc
{

/// How a level 2 class runs on a GPU. It is empty until the class's GPU level, which is built where there is a CUDA
/// compiler, fills it in.
struct GpuVariant
{
    bool (*isActivated)() = nullptr;
    /// The provider of the GPU level for a level 2 processor whose images all lie on the GPU.
    Ptr<ActionProvider> (*launch)(ePriority priority, BaseProcessor& level2) = nullptr;

    bool isUsable() const { return isActivated != nullptr && isActivated(); }
};

/// Whether a class has a GPU variant that may be used now.
template <class Level2>
bool mayUseGpu()
{
    if constexpr (requires { Level2::gpuVariant; }) {
        return Level2::gpuVariant.isUsable();
    } else {
        return false;
    }
}

} // namespace orlix::imaproc
