#pragma once

#include <framework/gpu/CudaError.hpp>
#include <framework/image/BaseImage.hpp>

/// Images in the memory of a GPU. All functions throw GpuException with the text of the CUDA runtime.
namespace orlix::gpu
{

/// Whether the pixels of an image lie on a GPU.
inline bool isGpuImage(const image::BaseImage& image)
{
    return image.isGpuImage();
}

/// Fails where an image does not lie on GPU `index`; `name` is that of its attribute.
ORLIX_API core::ProcessingResult checkLiesOn(int index, const image::BaseImage& image, const char* name);

/// An image with a buffer of its own on the selected GPU, whose pixels are unset.
ORLIX_API Ptr<image::BaseImage> createGpuImage(image::eImageBufferType type, const image::ImageGeometry& geometry);

/// An image on the caller's device pointer, which may be managed memory, aligned to its pixels; `owner` keeps the
/// memory alive and may be null where the caller sees to it. Of the pixels only the first one's address is checked, and
/// what writes them must have finished before they are measured.
ORLIX_API Ptr<image::BaseImage> wrapGpuImage(void* devicePixels, image::eImageBufferType type,
                                             const image::ImageGeometry& geometry, const image::ImageStrides& strides,
                                             Ptr<const void> owner);
ORLIX_API Ptr<const image::BaseImage> wrapGpuImage(const void* devicePixels, image::eImageBufferType type,
                                                   const image::ImageGeometry& geometry,
                                                   const image::ImageStrides& strides, Ptr<const void> owner);

/// A copy on the selected GPU, without gaps, of an image of the host.
ORLIX_API Ptr<image::BaseImage> copyToGpu(const image::BaseImage& image);

/// A copy in the memory of the host, without gaps, of an image on a GPU.
ORLIX_API Ptr<image::BaseImage> copyToHost(const image::BaseImage& image);

} // namespace orlix::gpu
