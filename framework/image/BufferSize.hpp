#pragma once

#include <framework/image/Geometry.hpp>
#include <framework/image/PixelType.hpp>

namespace orlix::image
{

/// The bytes of a gapless buffer. Throws ImageException if it could not be addressed.
ORLIX_API std::size_t checkedBufferSize(eImageBufferType type, const ImageGeometry& geometry);

} // namespace orlix::image
