#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Stats/CudaStats.hpp>

#include <framework/core/NumericLimits.hpp>

#include <algorithm>
#include <vector>

/// The device kernels of the statistics and their launchers; the .cu file of a measure gives them its name.
namespace orlix::imaproc::glbmsr
{

namespace device
{

/// What the accumulators begin with.
__host__ __device__ inline CudaStatsRecord emptyRecord()
{
    return {0, 0, 0, core::NumericLimits<double>::s_max, core::NumericLimits<double>::s_min};
}

/// Adds the pixels of a run to the sums of thread `thread` of `threads`: by 16 bytes where they are aligned.
template <class T>
__device__ void addRun(const T* pixels, std::uint64_t size, std::uint64_t thread, std::uint64_t threads,
                       CudaPixelSums<T>& sums)
{
    constexpr std::uint64_t perVector = 16 / sizeof(T);
    const std::uint64_t misaligned = reinterpret_cast<std::uintptr_t>(pixels) % 16 / sizeof(T);
    const std::uint64_t toAligned = misaligned == 0 ? 0 : perVector - misaligned;
    const std::uint64_t head = toAligned < size ? toAligned : size;
    const std::uint64_t vectors = (size - head) / perVector;
    const uint4* const aligned = reinterpret_cast<const uint4*>(pixels + head);
    const auto add = [&](const uint4& v) {
        sums.addWord(v.x);
        sums.addWord(v.y);
        sums.addWord(v.z);
        sums.addWord(v.w);
    };
    constexpr unsigned together = 4; // loads that wait for memory at once
    constexpr unsigned rounds = CudaPixelSums<T>::block / (4 * together);
    std::uint64_t i = thread;
    while (i < vectors) {
        unsigned round = 0;
        for (; round < rounds && i + (together - 1) * threads < vectors; ++round, i += together * threads) {
            uint4 loaded[together];
#pragma unroll
            for (unsigned k = 0; k < together; ++k) {
                loaded[k] = __ldcs(aligned + i + k * threads);
            }
#pragma unroll
            for (unsigned k = 0; k < together; ++k) {
                add(loaded[k]);
            }
        }
        if (round < rounds) { // the last ones
            for (; i < vectors; i += threads) {
                add(__ldcs(aligned + i));
            }
        }
        sums.flush();
    }
    if (thread < head) {
        sums.add(pixels[thread]);
    }
    const std::uint64_t rest = head + vectors * perVector;
    if (rest + thread < size) {
        sums.add(pixels[rest + thread]);
    }
}

/// One block's share of a plan or volume into its record. The threads of the grid form a team per row, and the teams
/// take the rows in turns; rows that touch are one row. A team has whole warps.
template <class T>
__device__ void reduceBlock(const LauncherInfo& info, const GpuBuffer& image, CudaStatsRecord* records)
{
    extern __shared__ CudaStatsRecord shared[];
    CudaPixelSums<T> sums;
    const std::int64_t rowBytes = std::int64_t(info.x * sizeof(T));
    const bool rowsTouch = info.y == 1 || image.strideY == rowBytes;
    const bool planesTouch = info.z == 1 || image.strideZ == std::int64_t(info.y) * rowBytes;
    const bool isOneRow = rowsTouch && planesTouch;
    const std::uint64_t width = isOneRow ? info.x * info.y * info.z : info.x;
    const std::uint64_t rows = isOneRow ? 1 : info.y * info.z;
    const std::uint64_t threads = std::uint64_t(gridDim.x) * blockDim.x;
    const std::uint64_t teams = rows < threads / 32 ? rows : threads / 32;
    const std::uint64_t teamSize = threads / 32 / teams * 32;
    const std::uint64_t thread = std::uint64_t(blockIdx.x) * blockDim.x + threadIdx.x;
    // The threads that no team takes have no pixels.
    for (std::uint64_t row = thread / teamSize; row < rows && thread < teams * teamSize; row += teams) {
        const char* const pixels = static_cast<const char*>(image.pixels) + std::int64_t(row % info.y) * image.strideY +
                                   std::int64_t(row / info.y) * image.strideZ;
        addRun(reinterpret_cast<const T*>(pixels), width, thread % teamSize, teamSize, sums);
    }
    shared[threadIdx.x] = sums.finish(emptyRecord());
    __syncthreads();
    // By halves, always in the same order. The number of threads need not be a power of two.
    for (unsigned n = blockDim.x; n > 1;) {
        const unsigned half = (n + 1) / 2;
        if (threadIdx.x < n - half) {
            addRecord(shared[threadIdx.x], shared[threadIdx.x + half]);
        }
        __syncthreads();
        n = half;
    }
    if (threadIdx.x == 0) {
        records[blockIdx.x] = shared[0];
    }
}

/// Launches `kernel` and reduces the records of its blocks, in their order.
template <class Kernel>
CudaResult launch(Kernel kernel, LauncherInfo* info, GpuBuffer image, CudaStatsInfo* stats)
{
    const auto blocks = static_cast<unsigned>(info->nbMultiProcessors);
    const auto threads = static_cast<unsigned>(info->maxThreadsPerBlock);
    std::vector<CudaStatsRecord> found(blocks);
    CudaStatsRecord* records = nullptr;
    (void)cudaGetLastError(); // an older one is not of this launch
    cudaError_t error = cudaMalloc(&records, blocks * sizeof(CudaStatsRecord));
    if (error == cudaSuccess) {
        void* arguments[] = {info, &image, &records};
        (void)cudaLaunchKernel(kernel, dim3{blocks}, dim3{threads}, arguments, threads * sizeof(CudaStatsRecord),
                               nullptr);
        (void)cudaDeviceSynchronize();
        error = cudaGetLastError();
    }
    if (error == cudaSuccess) {
        error = cudaMemcpy(found.data(), records, blocks * sizeof(CudaStatsRecord), cudaMemcpyDeviceToHost);
    }
    (void)cudaFree(records);
    if (error != cudaSuccess) {
        (void)cudaGetLastError(); // reported here, so it is no later call's
        return {false, cudaGetErrorString(error)};
    }
    for (const CudaStatsRecord& record : found) {
        stats->sum += record.sum;
        stats->sumSq += record.sumSq;
        stats->min = std::min(stats->min, record.min);
        stats->max = std::max(stats->max, record.max);
    }
    return {};
}

} // namespace device

/// The kernel of a measure and its launcher, for all pixel types.
#define ORLIX_STATS_KERNEL(measure)                                                                                    \
    template <class T>                                                                                                 \
    __global__ void __launch_bounds__(1024)                                                                            \
        measure##_knl(LauncherInfo info, GpuBuffer image, CudaStatsRecord* records)                                    \
    {                                                                                                                  \
        device::reduceBlock<T>(info, image, records);                                                                  \
    }                                                                                                                  \
    template <class T>                                                                                                 \
    CudaResult measure##_knlLauncher(LauncherInfo* info, const GpuBuffer& image, CudaStatsInfo* stats)                 \
    {                                                                                                                  \
        return device::launch(&measure##_knl<T>, info, image, stats);                                                  \
    }                                                                                                                  \
    template CudaResult measure##_knlLauncher<unsigned char>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*);         \
    template CudaResult measure##_knlLauncher<signed char>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*);           \
    template CudaResult measure##_knlLauncher<unsigned short>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*);        \
    template CudaResult measure##_knlLauncher<short>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*);                 \
    template CudaResult measure##_knlLauncher<unsigned int>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*);          \
    template CudaResult measure##_knlLauncher<int>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*);                   \
    template CudaResult measure##_knlLauncher<float>(LauncherInfo*, const GpuBuffer&, CudaStatsInfo*)

} // namespace orlix::imaproc::glbmsr
