#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>

#include <cstddef>
#include <string>

/// The GPUs of the machine, through the CUDA runtime. This module is there where the library was built with CUDA; on a
/// machine without a GPU or driver it says so, in the words of the runtime.
namespace orlix::gpu
{

/// A GPU.
struct GpuDescription
{
    int index = 0;
    std::string name;
    std::size_t memory = 0; ///< bytes
    std::string driver;     ///< the CUDA version that the driver supports, such as "12.4"
    int nbMultiProcessors = 0;
    int maxThreadsPerMultiProcessor = 0;
    int maxThreadsPerBlock = 0;

    int getNbMultiProcessors() const { return nbMultiProcessors; }
    int getMaxThreadsPerMultiProcessor() const { return maxThreadsPerMultiProcessor; }
    int getMaxThreadsPerBlock() const { return maxThreadsPerBlock; }
    /// The side of the largest square block whose side is a power of two.
    ORLIX_API int getBlockSize2d() const;
};

/// The GPU of an index; a failure has the runtime's reason.
ORLIX_API core::ProcessingResult describeGpu(int index, GpuDescription& description);

/// Lets measures run on GPU `index`, for images that lie there. It is off until a host activates it; a failure, which
/// leaves it off, has the runtime's reason.
ORLIX_API core::ProcessingResult activateGpuSupport(int index = 0);
ORLIX_API void deactivateGpuSupport();
ORLIX_API bool isGpuSupportActivated();

/// The GPU of the last activation, or the first one where there was none; a failure has the runtime's reason.
ORLIX_API core::ProcessingResult describeSelectedGpu(GpuDescription& description);

/// Makes a GPU the current one of the calling thread as long as it lives; then the one that the thread used before, if
/// it used any, is current again.
class ORLIX_API CurrentGpu
{
public:
    /// A failure, with the runtime's reason, goes into `result`.
    CurrentGpu(int index, core::ProcessingResult& result);
    ~CurrentGpu();
    CurrentGpu(const CurrentGpu&) = delete;
    CurrentGpu& operator=(const CurrentGpu&) = delete;

private:
    int previous_ = -1; ///< to go back to
};

} // namespace orlix::gpu
