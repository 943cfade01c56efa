#include <framework/gpu/GpuImage.hpp>

#include <framework/core/Logging.hpp>
#include <framework/gpu/Gpu.hpp>
#include <framework/gpu/GpuMessages.hpp>
#include <framework/image/BufferSize.hpp>

#include <cuda_runtime_api.h>
#include <log4cplus/logger.h>

namespace orlix::gpu
{

using image::BaseImage;

namespace
{

log4cplus::Logger getLogger()
{
    return core::getLibraryLogger("Gpu");
}

void check(const core::ProcessingResult& result, const core::SourceLocation& where)
{
    if (!result) {
        core::logMessage(getLogger(), core::errorLevel, result.getMessage(), where.file, where.line);
        throw GpuException{result.getMessage(), where};
    }
}

void check(cudaError_t error, const char* what, const core::SourceLocation& where)
{
    if (error != cudaSuccess) {
        (void)cudaGetLastError(); // reported here, so it is no later call's
        core::raise<GpuException>(getLogger(), where, eGpuMessage::eGM_Failure, what, cudaGetErrorString(error));
    }
}

/// Where a pointer leads to.
cudaPointerAttributes describePointer(const void* pointer)
{
    cudaPointerAttributes attributes{};
    check(cudaPointerGetAttributes(&attributes, pointer), "Looking at a pointer", ORLIX_HERE);
    return attributes;
}

/// Copies an image to one without gaps: as a whole, by planes whose rows ascend, or row by row.
void copyPixels(const BaseImage& image, BaseImage& to)
{
    const Ptr<const BaseImage> loaded = image.loadAll();
    const BaseImage& from = *loaded;
    const image::ImageGeometry& size = from.getGeometry();
    if (size.empty()) {
        return;
    }
    constexpr const char* what = "Copying an image";
    const std::size_t rowBytes = size.x * from.getPixelSize();
    if (from.getStrides() == to.getStrides()) {
        const std::size_t bytes = size.nbPixels() * from.getPixelSize();
        check(cudaMemcpy(to.getRow(0), from.getRow(0), bytes, cudaMemcpyDefault), what, ORLIX_HERE);
        return;
    }
    const std::ptrdiff_t pitch = from.getStrides().y;
    const std::size_t together = pitch >= static_cast<std::ptrdiff_t>(rowBytes) ? size.y : 1;
    const image::PlanRange plans{size, image::ePlanKind::ePK_Plan2d};
    for (std::size_t i = 0; i < plans.size(); ++i) {
        const auto [z, c, t] = std::tuple{plans[i].z, plans[i].c, plans[i].t};
        for (std::size_t y = 0; y < size.y; y += together) {
            const std::size_t fromPitch = together == 1 ? rowBytes : static_cast<std::size_t>(pitch);
            check(cudaMemcpy2D(to.getRow(y, z, c, t), rowBytes, from.getRow(y, z, c, t), fromPitch, rowBytes, together,
                               cudaMemcpyDefault),
                  what, ORLIX_HERE);
        }
    }
}

} // namespace

core::ProcessingResult checkLiesOn(int index, const BaseImage& image, const char* name)
{
    if (image.getGeometry().empty()) {
        return {};
    }
    const auto pointer = describePointer(image.getRow(0));
    if (pointer.type == cudaMemoryTypeDevice && pointer.device != index) {
        return core::ProcessingResult::failure(
            core::formatMessage(eGpuMessage::eGM_OtherGpu, name, pointer.device, index));
    }
    if (pointer.type != cudaMemoryTypeDevice && pointer.type != cudaMemoryTypeManaged) {
        return core::ProcessingResult::failure(core::formatMessage(eGpuMessage::eGM_NotOnGpu, name));
    }
    return {};
}

Ptr<BaseImage> createGpuImage(image::eImageBufferType type, const image::ImageGeometry& geometry)
{
    const std::size_t bytes = image::checkedBufferSize(type, geometry);
    const auto strides = image::ImageStrides::contiguous(geometry, image::getPixelSize(type));
    if (bytes == 0) {
        return BaseImage::wrapGpu(nullptr, type, geometry, strides, nullptr);
    }
    GpuDescription gpu;
    check(describeSelectedGpu(gpu), ORLIX_HERE);
    core::ProcessingResult result;
    const CurrentGpu current{gpu.index, result};
    check(result, ORLIX_HERE);
    void* pixels = nullptr;
    check(cudaMalloc(&pixels, bytes), "Allocating an image", ORLIX_HERE);
    const Ptr<const void> owner{pixels, [](void* memory) { (void)cudaFree(memory); }};
    return BaseImage::wrapGpu(pixels, type, geometry, strides, owner);
}

Ptr<BaseImage> wrapGpuImage(void* devicePixels, image::eImageBufferType type, const image::ImageGeometry& geometry,
                            const image::ImageStrides& strides, Ptr<const void> owner)
{
    if (devicePixels != nullptr) {
        const auto pointer = describePointer(devicePixels);
        if (pointer.type != cudaMemoryTypeDevice && pointer.type != cudaMemoryTypeManaged) {
            core::raise<GpuException>(getLogger(), ORLIX_HERE, eGpuMessage::eGM_HostPointer);
        }
    }
    return BaseImage::wrapGpu(devicePixels, type, geometry, strides, std::move(owner));
}

// The image is handed out as const, so nothing writes to the caller's pixels.
Ptr<const BaseImage> wrapGpuImage(const void* devicePixels, image::eImageBufferType type,
                                  const image::ImageGeometry& geometry, const image::ImageStrides& strides,
                                  Ptr<const void> owner)
{
    return wrapGpuImage(const_cast<void*>(devicePixels), type, geometry, strides, std::move(owner));
}

Ptr<BaseImage> copyToGpu(const BaseImage& image)
{
    auto copy = createGpuImage(image.getType(), image.getGeometry());
    copyPixels(image, *copy);
    return copy;
}

Ptr<BaseImage> copyToHost(const BaseImage& image)
{
    auto copy = BaseImage::create(image.getType(), image.getGeometry());
    copyPixels(image, *copy);
    return copy;
}

} // namespace orlix::gpu
