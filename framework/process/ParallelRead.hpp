#pragma once

#include <framework/image/BaseImage.hpp>
#include <framework/process/BaseAction.hpp>

namespace orlix::imaproc
{

/// Copies a box of an image, on all threads; `sweep` is that of BaseImage::read(). Ends early where the run is
/// cancelled. Throws what the image's source throws.
ORLIX_API void readInParallel(const image::BaseImage& from, const image::Box& box, const image::PixelTarget& to,
                              const image::Box& sweep, const RunContext& context);

} // namespace orlix::imaproc
