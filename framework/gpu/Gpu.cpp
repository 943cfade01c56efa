#include <framework/gpu/Gpu.hpp>

#include <framework/gpu/GpuMessages.hpp>

#include <cuda_runtime_api.h>
#include <dlfcn.h>

#include <mutex>
#include <optional>

namespace orlix::gpu
{

using core::ProcessingResult;

namespace
{

struct Selection
{
    std::mutex mutex;
    bool isActivated = false;
    std::optional<GpuDescription> gpu;
};

Selection& selection()
{
    static Selection it;
    return it;
}

ProcessingResult unavailable(cudaError_t error)
{
    (void)cudaGetLastError(); // reported here, so it is no later call's
    return ProcessingResult::failure(core::formatMessage(eGpuMessage::eGM_Unavailable, cudaGetErrorString(error)));
}

} // namespace

int GpuDescription::getBlockSize2d() const
{
    int side = 1;
    while (4 * side * side <= maxThreadsPerBlock) {
        side *= 2;
    }
    return side;
}

ProcessingResult describeGpu(int index, GpuDescription& description)
{
    int gpus = 0;
    if (const cudaError_t error = cudaGetDeviceCount(&gpus); error != cudaSuccess) {
        return unavailable(error);
    }
    if (index < 0 || index >= gpus) {
        return ProcessingResult::failure(core::formatMessage(eGpuMessage::eGM_NoSuchGpu, index, gpus));
    }
    cudaDeviceProp properties;
    int driver = 0;
    cudaError_t error = cudaGetDeviceProperties(&properties, index);
    if (error == cudaSuccess) {
        error = cudaDriverGetVersion(&driver);
    }
    if (error != cudaSuccess) {
        return unavailable(error);
    }
    description = {index,
                   properties.name,
                   properties.totalGlobalMem,
                   std::to_string(driver / 1000) + "." + std::to_string(driver % 1000 / 10),
                   properties.multiProcessorCount,
                   properties.maxThreadsPerMultiProcessor,
                   properties.maxThreadsPerBlock};
    return {};
}

ProcessingResult activateGpuSupport(int index)
{
    GpuDescription gpu;
    ProcessingResult result = describeGpu(index, gpu);
    const std::lock_guard lock{selection().mutex};
    selection().isActivated = static_cast<bool>(result);
    if (result) {
        selection().gpu = std::move(gpu);
    }
    return result;
}

void deactivateGpuSupport()
{
    const std::lock_guard lock{selection().mutex};
    selection().isActivated = false;
}

bool isGpuSupportActivated()
{
    const std::lock_guard lock{selection().mutex};
    return selection().isActivated;
}

ProcessingResult describeSelectedGpu(GpuDescription& description)
{
    {
        const std::lock_guard lock{selection().mutex};
        if (selection().gpu) {
            description = *selection().gpu;
            return {};
        }
    }
    return describeGpu(0, description);
}

namespace
{

/// Whether the calling thread has used a GPU yet. The runtime does not tell, but names GPU 0 where it has not, and
/// going back there would make a context on it.
bool hasContext()
{
    void* const driver = dlopen("libcuda.so.1", RTLD_LAZY | RTLD_NOLOAD);
    if (driver == nullptr) {
        return false;
    }
    const auto getCurrent = reinterpret_cast<int (*)(void**)>(dlsym(driver, "cuCtxGetCurrent"));
    void* context = nullptr;
    const bool found = getCurrent != nullptr && getCurrent(&context) == 0 && context != nullptr;
    dlclose(driver);
    return found;
}

} // namespace

CurrentGpu::CurrentGpu(int index, ProcessingResult& result)
{
    const bool wasUsed = hasContext();
    int previous = 0;
    cudaError_t error = cudaGetDevice(&previous);
    if (error == cudaSuccess) {
        error = cudaSetDevice(index);
    }
    if (error != cudaSuccess) {
        result = unavailable(error);
    } else if (wasUsed && previous != index) {
        previous_ = previous;
    }
}

CurrentGpu::~CurrentGpu()
{
    if (previous_ >= 0) {
        (void)cudaSetDevice(previous_);
    }
}

} // namespace orlix::gpu
