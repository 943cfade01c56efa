#pragma once

#include <framework/image/BaseImage.hpp>

#include <string>

namespace orlix::app
{

/// Throws FileError where no image can be written: no folder, or something there that is no regular file, or one of the
/// files that were read.
void checkOutputPath(const std::string& path, const std::string& input);

/// Writes a gapless image of a numeric type as a TIFF file, a page per plan, with its axes as ImageJ states them. The
/// file takes the place of an older one only when it is whole. Throws FileError.
void writeTiff(const std::string& path, const image::BaseImage& image);

} // namespace orlix::app
