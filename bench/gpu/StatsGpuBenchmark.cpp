// Times the statistics on a GPU: the device kernel beside a plain read of the same buffer and beside CUB, and the whole
// call by the clock.

#include "DeviceTimes.hpp"

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>
#include <framework/gpu/Gpu.hpp>
#include <framework/gpu/GpuImage.hpp>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <random>

namespace
{

using namespace orlix;
using imaproc::glbmsr::statsMsr2d;

/// A row of the table for an image of this size; whether its figures are those of the CPU.
template <class T>
bool compare(std::size_t mebibytes, const gpu::GpuDescription& gpu)
{
    const std::size_t bytes = mebibytes << 20;
    constexpr std::size_t width = 16384;
    const image::ImageGeometry size{width, bytes / sizeof(T) / width};
    const auto host = image::BaseImage::create(image::imageBufferTypeOf<T>, size);
    std::mt19937_64 generator{1};
    T* const pixels = reinterpret_cast<T*>(host->getRow(0));
    for (std::size_t i = 0; i < size.nbPixels(); ++i) {
        pixels[i] = static_cast<T>(std::is_floating_point_v<T> ? generator() % 65536 : generator());
    }
    const auto image = gpu::copyToGpu(*host);

    const imaproc::LauncherInfo info{.nbMultiProcessors = gpu.getNbMultiProcessors(),
                                     .maxThreadsPerBlock = gpu.getMaxThreadsPerBlock(),
                                     .x = size.x,
                                     .y = size.y,
                                     .z = 1,
                                     .c = 1,
                                     .t = 1};
    const bench::DeviceTimes times =
        bench::timeDevice<T>(info, {image->getRow(0), image->getStrides().y, image->getStrides().z});
    double call = std::numeric_limits<double>::infinity();
    for (int round = 0; round < 20; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        (void)statsMsr2d(image);
        call = std::min(call, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    const auto expected = statsMsr2d(host);
    const auto found = statsMsr2d(image);
    const double sum = std::abs(expected->Sum);
    const double tolerance = std::is_integral_v<T> && sum < 0x1p53 ? 0 : 1e-14 * sum;
    const bool agrees = expected->Min == found->Min && expected->Max == found->Max &&
                        std::abs(expected->Sum - found->Sum) <= tolerance &&
                        std::abs(expected->StdDev - found->StdDev) <= 1e-9 * expected->StdDev;
    // At least 0.90 of the plain read and no slower than the peer, where the image does not fit into a cache.
    const double share = times.read / times.kernel;
    const double xPeer = times.peer / times.kernel;
    const bool isSlow = mebibytes >= 256 && (share < 0.90 || xPeer < 1);
    const auto speed = [bytes](double seconds) { return static_cast<double>(bytes) / seconds / 1e9; };
    std::printf("%-8s %5zu MiB  read %7.1f GB/s  kernel %7.1f GB/s  share %.2f  x_cub %.2f  call %8.1f us  %s%s\n",
                getName(host->getType()), mebibytes, speed(times.read), speed(times.kernel), share, xPeer, call * 1e6,
                agrees ? "agrees with the CPU" : "DIFFERS FROM THE CPU", isSlow ? ", below the goal" : "");
    return agrees;
}

} // namespace

int main()
{
    gpu::GpuDescription gpu;
    for (const auto& result : {gpu::describeGpu(0, gpu), gpu::activateGpuSupport()}) {
        if (!result) {
            std::fprintf(stderr, "gpu benchmark: %s\n", result.getMessage().c_str());
            return 1;
        }
    }
    char date[16];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "%Y-%m-%d", std::gmtime(&now));
    std::printf("%s, %zu MiB, driver for CUDA %s, %s\n", gpu.name.c_str(), gpu.memory >> 20, gpu.driver.c_str(), date);
    bool agrees = true;
    for (const std::size_t mebibytes : {16, 256, 1024}) {
        image::forEachPixelType([&]<class T>(std::type_identity<T>) { agrees = compare<T>(mebibytes, gpu) && agrees; });
    }
    return agrees ? 0 : 1;
}
