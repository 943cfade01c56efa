#include <files/tiff/TiffWriter.hpp>

#include <files/Errors.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <vector>

namespace orlix::files
{

namespace
{

bool isFloat(image::eImageBufferType type)
{
    return type == image::eImageBufferType::eIBT_Float32;
}

bool isSigned(image::eImageBufferType type)
{
    return image::getValueRange(type).lowest < 0;
}

/// Whether the channels are the samples of one page: colours of 8 or 16 bits.
bool isColour(image::eImageBufferType type, const image::ImageGeometry& size, const ImageFacts& facts)
{
    return facts.photometric == Photometric::Rgb && (size.c == 3 || size.c == 4) && !isFloat(type) && !isSigned(type) &&
           image::getPixelSize(type) <= 2;
}

std::string print(double number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

/// The axes, and what numbers stand for, as ImageJ states them.
std::string describe(const image::ImageGeometry& size, bool isInColour, const ImageFacts& facts)
{
    const std::size_t channels = isInColour ? 1 : size.c;
    std::string text = "ImageJ=1.53\nimages=" + std::to_string(size.z * channels * size.t) +
                       "\nchannels=" + std::to_string(channels) + "\nslices=" + std::to_string(size.z) +
                       "\nframes=" + std::to_string(size.t) + "\nhyperstack=true\nmode=grayscale\n";
    if (!facts.unit.empty()) {
        text += "unit=" + facts.unit + "\n";
    }
    if (facts.pixelSize[2] > 0) {
        text += "spacing=" + print(facts.pixelSize[2]) + "\n";
    }
    if (!facts.scale.isIdentity()) {
        text += "cf=0\nc0=" + print(facts.scale.intercept) + "\nc1=" + print(facts.scale.slope) + "\n";
    }
    return text;
}

void setTags(TIFF* tiff, image::eImageBufferType type, const image::ImageGeometry& size, const ImageFacts& facts,
             bool isFirst)
{
    const bool isInColour = isColour(type, size, facts);
    const std::size_t pixelSize = image::getPixelSize(type);
    const std::size_t samples = isInColour ? size.c : 1;
    const std::size_t rowBytes = size.x * samples * pixelSize;
    const std::size_t stripRows = std::max<std::size_t>(1, (std::size_t{256} << 10) / rowBytes);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(size.x));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(size.y));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<std::uint16_t>(8 * pixelSize));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, static_cast<std::uint16_t>(samples));
    if (samples == 4) {
        const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, std::uint16_t{1}, &alpha);
    }
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT,
                 static_cast<std::uint16_t>(isFloat(type)    ? SAMPLEFORMAT_IEEEFP
                                            : isSigned(type) ? SAMPLEFORMAT_INT
                                                             : SAMPLEFORMAT_UINT));
    const bool isInverted = facts.photometric == Photometric::WhiteIsZero;
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                 static_cast<std::uint16_t>(isInColour   ? PHOTOMETRIC_RGB
                                            : isInverted ? PHOTOMETRIC_MINISWHITE
                                                         : PHOTOMETRIC_MINISBLACK));
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, static_cast<std::uint16_t>(PLANARCONFIG_CONTIG));
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, static_cast<std::uint16_t>(COMPRESSION_NONE));
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(std::min(stripRows, size.y)));
    const bool hasSize = facts.pixelSize[0] > 0 && facts.pixelSize[1] > 0;
    if (hasSize) { // pixels in a unit, which the description names
        TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, static_cast<std::uint16_t>(RESUNIT_NONE));
        TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 1 / facts.pixelSize[0]);
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 1 / facts.pixelSize[1]);
    }
    if (isFirst && (size.z * size.c * size.t > samples || hasSize || !facts.scale.isIdentity())) {
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, describe(size, isInColour, facts).c_str());
    }
}

bool writePage(TIFF* tiff, const image::BaseImage& image)
{
    const image::ImageGeometry& size = image.getGeometry();
    std::uint32_t rows = 0;
    std::uint16_t samples = 1;
    TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &rows);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    const std::size_t pixelSize = image.getPixelSize();
    std::vector<std::byte> strip(rows * size.x * samples * pixelSize);
    for (std::size_t y = 0; y < size.y; y += rows) {
        const std::size_t count = std::min<std::size_t>(rows, size.y - y);
        const auto step = static_cast<std::int64_t>(samples * pixelSize);
        copyPixels(image.getRow(y), strip.data(), pixelSize,
                   {Stretch{size.x, static_cast<std::int64_t>(pixelSize), step},
                    Stretch{count, image.getStrides().y, static_cast<std::int64_t>(size.x) * step},
                    Stretch{samples, image.getStrides().c, static_cast<std::int64_t>(pixelSize)}});
        const auto bytes = static_cast<tmsize_t>(count * size.x * samples * pixelSize);
        if (TIFFWriteEncodedStrip(tiff, static_cast<std::uint32_t>(y / rows), strip.data(), bytes) < 0) {
            return false;
        }
    }
    return TIFFWriteDirectory(tiff) != 0;
}

} // namespace

TiffWriter::TiffWriter(const std::string& path, image::eImageBufferType type, const image::ImageGeometry& size,
                       const ImageFacts& facts)
    : path_{path}, type_{type}, size_{size}, facts_{facts}, file_{path}
{
    constexpr std::size_t largestClassic = std::size_t{4000} << 20;
    constexpr std::size_t bytesOfPage = 512; // of what is said of it
    const bool isBig =
        size.nbPixels() * image::getPixelSize(type) + size.z * size.c * size.t * bytesOfPage > largestClassic;
    errno = 0;
    tiff_ = openTiff(file_.getPath(), isBig ? "w8" : "w", messages_);
    check(tiff_ != nullptr);
}

std::size_t TiffWriter::getNbChannels() const
{
    return isColour(type_, size_, facts_) ? size_.c : 1;
}

void TiffWriter::write(const image::BaseImage& page)
{
    errno = 0;
    setTags(tiff_.get(), type_, size_, facts_, nbPages_++ == 0);
    check(writePage(tiff_.get(), page));
}

void TiffWriter::keep()
{
    errno = 0;
    tiff_.reset();
    check(true);
    file_.keep();
}

void TiffWriter::check(bool isFine) const
{
    const std::string& reason = messages_.error;
    if (!isFine || !reason.empty()) {
        const std::string error = errno != 0 ? std::strerror(errno) : "";
        throw FileError{path_ + ": it cannot be written (" + reason + (reason.empty() || error.empty() ? "" : ", ") +
                        error + ")"};
    }
}

} // namespace orlix::files
