#pragma once

#include <cstdint>
#include <string>

/// What device code and host code share.
#ifdef __CUDACC__
#define ORLIX_HOST_DEVICE __host__ __device__
#else
#define ORLIX_HOST_DEVICE
#endif

namespace orlix::imaproc
{

/// The launch of a device kernel on a plan, a volume or an image.
struct LauncherInfo
{
    std::int32_t nbMultiProcessors = 0;
    std::int32_t maxThreadsPerMultiProcessor = 0;
    std::int32_t maxThreadsPerBlock = 0;
    std::int32_t blockSize2d = 0;
    std::int64_t reserved = 0;
    std::uint64_t x = 0;
    std::uint64_t y = 0;
    std::uint64_t z = 0;
    std::uint64_t c = 0;
    std::uint64_t t = 0;
};

struct CudaResult
{
    bool success = true;
    std::string message{}; ///< of a failure, the text of the CUDA runtime
};

/// The pixels of an image on a GPU: rows that touch in x, at distances in bytes.
struct GpuBuffer
{
    const void* pixels = nullptr;
    std::int64_t strideY = 0;
    std::int64_t strideZ = 0;
};

} // namespace orlix::imaproc
