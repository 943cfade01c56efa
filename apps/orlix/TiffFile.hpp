#pragma once

#include <framework/image/BaseImage.hpp>

#include <memory>
#include <string>

namespace orlix::app
{

/// A TIFF file seen as one image: pages on z, c and t, samples of a pixel as channels. Pages of reduced resolution are
/// passed over.
class TiffFile
{
public:
    /// Reads what the file says of itself; `pages` is the order of its pages, or empty. Throws FileError or UsageError.
    TiffFile(const std::string& path, const std::string& pages);
    ~TiffFile();

    image::eImageBufferType getType() const;
    const image::ImageGeometry& getGeometry() const;
    /// Reads the pixels. Throws FileError.
    Ptr<image::BaseImage> read() const;
    /// What was found wrong with the pixels that were read, and passed over; empty if nothing.
    const std::string& getDamage() const;

private:
    class Reader;
    std::unique_ptr<Reader> reader_;
};

} // namespace orlix::app
