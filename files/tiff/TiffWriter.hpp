#pragma once

#include <files/ImageReader.hpp>

#include <framework/image/BaseImage.hpp>

#include <string>

namespace orlix::files
{

/// Writes a gapless image of a numeric type as a TIFF file, a page per plan, with its axes as ImageJ states them. Of
/// `facts` the file keeps the photometric interpretation, the size of pixels, and the scale of numbers. The file takes
/// the place of an older one only when it is whole. Throws FileError.
void writeTiff(const std::string& path, const image::BaseImage& image, const ImageFacts& facts = {});

} // namespace orlix::files
