#pragma once

#include <files/ImageReader.hpp>
#include <files/OutputFile.hpp>
#include <files/tiff/LibTiff.hpp>

#include <framework/image/BaseImage.hpp>

#include <string>

namespace orlix::files
{

/// A TIFF file of a numeric type that is written page by page, with its axes as ImageJ states them. Of `facts` the file
/// keeps the photometric interpretation, the size of pixels, and the scale of numbers. It takes the place of an older
/// one only when it is kept.
class TiffWriter
{
public:
    /// Throws FileError, as all of them do.
    TiffWriter(const std::string& path, image::eImageBufferType type, const image::ImageGeometry& size,
               const ImageFacts& facts = {});

    /// How many channels are the samples of one page: all of them, where they are colours.
    std::size_t getNbChannels() const;
    /// The next page, t slowest, then z, then c: a plan, in memory, with the channels that go with it.
    void write(const image::BaseImage& page);
    void keep();

private:
    void check(bool isFine) const;

    std::string path_;
    image::eImageBufferType type_;
    image::ImageGeometry size_;
    ImageFacts facts_;
    OutputFile file_;
    TiffMessages messages_; // before tiff_, which writes to it until it is closed
    TiffHandle tiff_;
    std::size_t nbPages_ = 0;
};

} // namespace orlix::files
