#pragma once

#include <orlix/Output.hpp>

#include <framework/image/BaseImage.hpp>
#include <framework/process/BaseProcessor.hpp>

#include <vector>

namespace orlix::app
{

/// Activates GPU support and copies the image there. Throws FileError with the reason where there is none.
Ptr<const image::BaseImage> placeOnGpu(const Ptr<const image::BaseImage>& image);

/// The GPU of this machine. Throws as placeOnGpu().
Json describeGpu();

/// The pixel types of each CUDA kernel of a class; none for classes that run on the CPU.
std::vector<image::DataTypeIdentifierColl> getGpuKernelTypes(const imaproc::BaseProcessor& processor);

} // namespace orlix::app
