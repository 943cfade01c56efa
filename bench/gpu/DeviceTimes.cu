#include "DeviceTimes.hpp"

#include "../../src/ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2dGpuLvl3.cu"

#include <cub/cub.cuh>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace orlix::bench
{

using namespace imaproc;
using namespace imaproc::glbmsr;

namespace
{

void check(cudaError_t error)
{
    if (error != cudaSuccess) {
        std::fprintf(stderr, "gpu benchmark: %s\n", cudaGetErrorString(error));
        std::exit(1);
    }
}

/// The best time, in seconds, of what is launched on the default stream.
template <class Launch>
double bestTime(Launch launch)
{
    cudaEvent_t begin;
    cudaEvent_t end;
    check(cudaEventCreate(&begin));
    check(cudaEventCreate(&end));
    float best = std::numeric_limits<float>::infinity();
    for (int round = 0; round < 20; ++round) {
        check(cudaEventRecord(begin));
        launch();
        check(cudaEventRecord(end));
        check(cudaEventSynchronize(end));
        check(cudaGetLastError());
        float milliseconds = 0;
        check(cudaEventElapsedTime(&milliseconds, begin, end));
        best = std::min(best, milliseconds);
    }
    check(cudaEventDestroy(begin));
    check(cudaEventDestroy(end));
    return best / 1000;
}

/// Reads everything, as wide and as often at once as the statistics do, and keeps a word that nobody needs.
__global__ void __launch_bounds__(1024) readAll(const uint4* data, std::uint64_t size, unsigned* result)
{
    const std::uint64_t threads = std::uint64_t(gridDim.x) * blockDim.x;
    std::uint64_t i = std::uint64_t(blockIdx.x) * blockDim.x + threadIdx.x;
    unsigned sum = 0;
    for (; i + 3 * threads < size; i += 4 * threads) {
        uint4 v[4];
#pragma unroll
        for (int k = 0; k < 4; ++k) {
            v[k] = __ldcs(data + i + k * threads);
        }
#pragma unroll
        for (int k = 0; k < 4; ++k) {
            sum ^= v[k].x ^ v[k].y ^ v[k].z ^ v[k].w;
        }
    }
    for (; i < size; i += threads) {
        const uint4 v = __ldcs(data + i);
        sum ^= v.x ^ v.y ^ v.z ^ v.w;
    }
    if (sum == 12345) {
        *result = sum;
    }
}

template <class T>
using Total = std::conditional_t<std::is_floating_point_v<T>, double, long long>;
/// Integers where they suffice for the squares.
template <class T>
using TotalSq = std::conditional_t<sizeof(T) < 4, unsigned long long, double>;

/// What the peer reduces.
template <class T>
struct Figures
{
    Total<T> sum;
    TotalSq<T> sumSq;
    T min;
    T max;
};

template <class T>
struct FiguresOf
{
    __host__ __device__ Figures<T> operator()(T x) const
    {
        const auto wide = Total<T>(x);
        return {wide, TotalSq<T>(wide) * TotalSq<T>(wide), x, x};
    }
};

struct AddFigures
{
    template <class F>
    __host__ __device__ F operator()(const F& a, const F& b) const
    {
        return {a.sum + b.sum, a.sumSq + b.sumSq, a.min < b.min ? a.min : b.min, a.max > b.max ? a.max : b.max};
    }
};

} // namespace

template <class T>
DeviceTimes timeDevice(const LauncherInfo& info, const GpuBuffer& image)
{
    const auto* const pixels = static_cast<const T*>(image.pixels);
    const std::uint64_t size = info.x * info.y;
    const auto blocks = unsigned(info.nbMultiProcessors);
    const auto threads = unsigned(info.maxThreadsPerBlock);
    CudaStatsRecord* records = nullptr;
    unsigned* word = nullptr;
    Figures<T>* figures = nullptr;
    void* memory = nullptr;
    std::size_t room = 0;
    const auto reduce = [&] {
        constexpr Figures<T> none{0, 0, std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest()};
        check(cub::DeviceReduce::TransformReduce(memory, room, pixels, figures, size, AddFigures{}, FiguresOf<T>{},
                                                 none));
    };
    reduce(); // without memory it only tells how much it needs
    check(cudaMalloc(&memory, room));
    check(cudaMalloc(&records, blocks * sizeof(CudaStatsRecord)));
    check(cudaMalloc(&word, sizeof *word));
    check(cudaMalloc(&figures, sizeof *figures));
    DeviceTimes times;
    times.read = std::numeric_limits<double>::infinity();
    for (const unsigned perMultiProcessor : {1, 2, 4}) {
        const double time = bestTime([&] {
            readAll<<<perMultiProcessor * blocks, 1024>>>(reinterpret_cast<const uint4*>(pixels), size * sizeof(T) / 16,
                                                          word);
        });
        times.read = std::min(times.read, time);
    }
    times.kernel = bestTime(
        [&] { StatsMsr2d_knl<T><<<blocks, threads, threads * sizeof(CudaStatsRecord)>>>(info, image, records); });
    times.peer = bestTime(reduce);
    for (void* const each :
         {static_cast<void*>(records), static_cast<void*>(word), static_cast<void*>(figures), memory}) {
        check(cudaFree(each));
    }
    return times;
}

template DeviceTimes timeDevice<unsigned char>(const LauncherInfo&, const GpuBuffer&);
template DeviceTimes timeDevice<signed char>(const LauncherInfo&, const GpuBuffer&);
template DeviceTimes timeDevice<unsigned short>(const LauncherInfo&, const GpuBuffer&);
template DeviceTimes timeDevice<short>(const LauncherInfo&, const GpuBuffer&);
template DeviceTimes timeDevice<unsigned int>(const LauncherInfo&, const GpuBuffer&);
template DeviceTimes timeDevice<int>(const LauncherInfo&, const GpuBuffer&);
template DeviceTimes timeDevice<float>(const LauncherInfo&, const GpuBuffer&);

} // namespace orlix::bench
