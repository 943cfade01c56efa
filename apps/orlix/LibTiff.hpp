#pragma once

#include <tiffio.h>

#include <memory>
#include <string>

namespace orlix::app
{

struct TiffCloser
{
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, TiffCloser>;

/// Opens a file; null if that fails. `error` outlives the handle and gets the first error text that libtiff has; it
/// prints nothing itself.
TiffHandle openTiff(const std::string& path, const char* mode, std::string& error);

} // namespace orlix::app
