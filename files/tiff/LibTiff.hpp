#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <string>

namespace orlix::files
{

struct TiffCloser
{
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// What libtiff has to say of a file, which it does not print itself: the first text of each kind.
struct TiffMessages
{
    std::string error;
    std::string warning;
};

/// Opens a file; null if that fails. `messages` outlives the handle.
TiffHandle openTiff(const std::string& path, const char* mode, TiffMessages& messages);

/// The name of a compression that this libtiff cannot read; null if it can.
const char* nameUnreadableCompression(std::uint16_t compression);

/// "none", "LZW", ...
std::string nameCompression(std::uint16_t compression);

} // namespace orlix::files
