#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

/// What .cu files need of CUDA, on threads of the host. Included before one, it lets any machine run its device code,
/// and makes calls of the runtime fail.
#define __host__
#define __device__
#define __global__
#define __shared__
#define __launch_bounds__(threads)

enum cudaError_t
{
    cudaSuccess,
    cudaErrorMemoryAllocation,
    cudaErrorLaunchFailure,
    cudaErrorUnknown
};
enum cudaMemcpyKind
{
    cudaMemcpyDeviceToHost
};

struct dim3
{
    unsigned x;
};
struct alignas(16) uint4
{
    std::uint32_t x;
    std::uint32_t y;
    std::uint32_t z;
    std::uint32_t w;
};

inline thread_local dim3 threadIdx;
inline thread_local dim3 blockIdx;
inline thread_local dim3 blockDim;
inline thread_local dim3 gridDim;

namespace orlix::test::emulated
{

/// Threads wait here for each other. (std::barrier spins, which takes long where there are more threads than cores.)
class Barrier
{
public:
    explicit Barrier(unsigned threads) : threads_{threads} {}
    void wait()
    {
        std::unique_lock lock{mutex_};
        if (++waiting_ == threads_) {
            waiting_ = 0;
            ++round_;
            changed_.notify_all();
        } else {
            changed_.wait(lock, [this, round = round_] { return round != round_; });
        }
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    unsigned threads_;
    unsigned waiting_ = 0;
    unsigned round_ = 0;
};

/// The calls of the runtime that fail, and what it has given out.
struct Runtime
{
    enum class Call
    {
        None,
        Malloc,
        Launch,
        Synchronize,
        Memcpy
    };

    Call failing = Call::None;
    cudaError_t last = cudaSuccess;
    std::set<void*> allocations;
    Barrier* barrier = nullptr; ///< of the block that runs

    cudaError_t report(Call call, cudaError_t error)
    {
        if (call != failing) {
            return cudaSuccess;
        }
        last = error;
        return error;
    }
};
inline Runtime runtime;

} // namespace orlix::test::emulated

inline void __syncthreads()
{
    orlix::test::emulated::runtime.barrier->wait();
}

template <class T>
T __ldcs(const T* pointer)
{
    return *pointer;
}

inline const char* cudaGetErrorString(cudaError_t error)
{
    static constexpr const char* texts[] = {"no error", "out of memory", "unspecified launch failure", "unknown error"};
    return texts[error];
}

inline cudaError_t cudaGetLastError()
{
    return std::exchange(orlix::test::emulated::runtime.last, cudaSuccess);
}

template <class T>
cudaError_t cudaMalloc(T** pointer, std::size_t bytes)
{
    using orlix::test::emulated::runtime;
    const cudaError_t error = runtime.report(orlix::test::emulated::Runtime::Call::Malloc, cudaErrorMemoryAllocation);
    if (error == cudaSuccess) {
        *pointer = static_cast<T*>(std::malloc(bytes));
        runtime.allocations.insert(*pointer);
    }
    return error;
}

inline cudaError_t cudaFree(void* pointer)
{
    orlix::test::emulated::runtime.allocations.erase(pointer);
    std::free(pointer);
    return cudaSuccess;
}

inline cudaError_t cudaDeviceSynchronize()
{
    using orlix::test::emulated::Runtime;
    return orlix::test::emulated::runtime.report(Runtime::Call::Synchronize, cudaErrorUnknown);
}

inline cudaError_t cudaMemcpy(void* to, const void* from, std::size_t bytes, cudaMemcpyKind)
{
    using orlix::test::emulated::Runtime;
    const cudaError_t error = orlix::test::emulated::runtime.report(Runtime::Call::Memcpy, cudaErrorUnknown);
    if (error == cudaSuccess) {
        std::memcpy(to, from, bytes);
    }
    return error;
}

/// Block after block, each on as many threads as it has.
template <class... Args>
cudaError_t cudaLaunchKernel(void (*kernel)(Args...), dim3 grid, dim3 block, void** arguments, std::size_t, void*)
{
    using orlix::test::emulated::runtime;
    const cudaError_t error = runtime.report(orlix::test::emulated::Runtime::Call::Launch, cudaErrorLaunchFailure);
    if (error != cudaSuccess) {
        return error;
    }
    for (unsigned b = 0; b < grid.x; ++b) {
        orlix::test::emulated::Barrier barrier{block.x};
        runtime.barrier = &barrier;
        std::vector<std::jthread> threads;
        for (unsigned t = 0; t < block.x; ++t) {
            threads.emplace_back([=] {
                threadIdx = {t};
                blockIdx = {b};
                blockDim = block;
                gridDim = grid;
                [&]<std::size_t... I>(std::index_sequence<I...>)
                {
                    kernel(*static_cast<std::remove_reference_t<Args>*>(arguments[I])...);
                }
                (std::index_sequence_for<Args...>{});
            });
        }
    }
    return cudaSuccess;
}
