#pragma once

#include <framework/image/BaseImage.hpp>

namespace orlix::imaproc::glbmsr
{

/// Meant as every pixel of the image. On purpose in 32 bits, where it may wrap.
inline unsigned countPixels(const Ptr<const image::BaseImage>& image)
{
    return image ? static_cast<unsigned>(image->getGeometry().nbPixels()) : 0;
}

} // namespace orlix::imaproc::glbmsr
