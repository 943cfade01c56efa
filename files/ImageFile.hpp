#pragma once

#include <files/Format.hpp>

#include <framework/image/BaseImage.hpp>

#include <string>
#include <vector>

namespace orlix::files
{

/// Opens an image: a file of any format that is known by its first bytes, a folder that is one (OME-Zarr), a path in a
/// file that holds several ("file.h5:/path"), or "-", which is standard input. Its pixels are of a type that images
/// have. Throws FileError, or OptionError where the options do not go with the file.
ReaderPtr openImage(const std::string& path, const OpenOptions& options);

/// Several files, of one type and size but along the axis 'z', 'c' or 't', as one image along it.
ReaderPtr openStack(const std::vector<std::string>& paths, char axis, const OpenOptions& options);

/// Whether a path is an image that is a folder.
bool isImageFolder(const std::string& path);
/// Whether a file is an image, as its name or its first bytes tell.
bool isImageFile(const std::string& path);

/// A part of an image: the end of a range is left out; an axis that is not told is whole.
struct Range
{
    std::size_t begin = 0;
    std::size_t end = ~std::size_t{0};
};
struct Part
{
    Range x{};
    Range y{};
    Range z{};
    Range c{};
    Range t{};
};

/// Shows a part of an image. Throws FileError where the image does not have it, or the part has more pixels.
ReaderPtr cutPart(ReaderPtr image, const Part& part, std::uint64_t maxPixels = ~std::uint64_t{0});

/// Shows an image whose z, c or t may be 1 as one of this size, which repeats itself there.
ReaderPtr repeatImage(ReaderPtr image, const image::ImageGeometry& size);

/// Reads all pixels. Throws FileError.
Ptr<image::BaseImage> readImage(ImageReader& reader);

} // namespace orlix::files
