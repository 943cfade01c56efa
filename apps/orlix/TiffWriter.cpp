#include <orlix/TiffWriter.hpp>

#include <orlix/Errors.hpp>
#include <orlix/LibTiff.hpp>

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace orlix::app
{

namespace
{

/// A file that is gone unless it was kept.
class TemporaryFile
{
public:
    explicit TemporaryFile(const std::string& target)
        : target_{target}, path_{target + ".part" + std::to_string(::getpid())}
    {}
    ~TemporaryFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& getPath() const { return path_; }
    void keep() const
    {
        std::error_code error;
        std::filesystem::rename(path_, target_, error);
        if (error) {
            throw FileError{target_ + ": " + error.message()};
        }
    }

private:
    std::string target_;
    std::string path_;
};

bool isFloat(image::eImageBufferType type)
{
    return type == image::eImageBufferType::eIBT_Float32;
}

bool isSigned(image::eImageBufferType type)
{
    return image::getValueRange(type).lowest < 0;
}

std::string describeAxes(const image::ImageGeometry& size)
{
    return "ImageJ=1.53\nimages=" + std::to_string(size.z * size.c * size.t) + "\nchannels=" + std::to_string(size.c) +
           "\nslices=" + std::to_string(size.z) + "\nframes=" + std::to_string(size.t) +
           "\nhyperstack=true\nmode=grayscale\n";
}

void setTags(TIFF* tiff, const image::BaseImage& image, bool isFirst)
{
    const image::ImageGeometry& size = image.getGeometry();
    const std::size_t rowBytes = size.x * image.getPixelSize();
    const std::size_t stripRows = std::max<std::size_t>(1, (std::size_t{256} << 10) / rowBytes);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(size.x));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(size.y));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, static_cast<std::uint16_t>(8 * image.getPixelSize()));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, std::uint16_t{1});
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT,
                 static_cast<std::uint16_t>(isFloat(image.getType())    ? SAMPLEFORMAT_IEEEFP
                                            : isSigned(image.getType()) ? SAMPLEFORMAT_INT
                                                                        : SAMPLEFORMAT_UINT));
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, static_cast<std::uint16_t>(PHOTOMETRIC_MINISBLACK));
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, static_cast<std::uint16_t>(PLANARCONFIG_CONTIG));
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, static_cast<std::uint16_t>(COMPRESSION_NONE));
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(std::min(stripRows, size.y)));
    if (isFirst && size.z * size.c * size.t > 1) {
        TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, describeAxes(size).c_str());
    }
}

bool writePage(TIFF* tiff, const image::BaseImage& image, const image::PlanIndex& plan)
{
    const image::ImageGeometry& size = image.getGeometry();
    std::uint32_t rows = 0;
    TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &rows);
    for (std::size_t y = 0; y < size.y; y += rows) {
        const std::size_t bytes = std::min<std::size_t>(rows, size.y - y) * size.x * image.getPixelSize();
        auto* const pixels = const_cast<std::byte*>(image.getRow(y, plan.z, plan.c, plan.t)); // only read
        const auto strip = static_cast<std::uint32_t>(y / rows);
        if (TIFFWriteEncodedStrip(tiff, strip, pixels, static_cast<tmsize_t>(bytes)) < 0) {
            return false;
        }
    }
    return TIFFWriteDirectory(tiff) != 0;
}

} // namespace

void checkOutputPath(const std::string& path, const std::string& input)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path folder = fs::path{path}.parent_path();
    if (!folder.empty() && !fs::is_directory(folder, error)) {
        throw FileError{path + ": there is no folder " + folder.string()};
    }
    const auto status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw FileError{path + ": it is no regular file"};
    }
    if (fs::equivalent(path, input, error)) {
        throw FileError{path + ": it is the image that is read: name another file"};
    }
}

void writeTiff(const std::string& path, const image::BaseImage& image)
{
    const image::ImageGeometry& size = image.getGeometry();
    const TemporaryFile file{path};
    std::string reason;
    bool written = false;
    {
        constexpr std::size_t largestClassic = std::size_t{4000} << 20;
        const bool isBig = size.nbPixels() * image.getPixelSize() > largestClassic;
        const TiffHandle tiff = openTiff(file.getPath(), isBig ? "w8" : "w", reason);
        written = tiff != nullptr;
        for (std::size_t t = 0; t < size.t; ++t) {
            for (std::size_t z = 0; z < size.z; ++z) {
                for (std::size_t c = 0; c < size.c && written; ++c) {
                    setTags(tiff.get(), image, c == 0 && z == 0 && t == 0);
                    written = writePage(tiff.get(), image,
                                        {static_cast<unsigned>(z), static_cast<unsigned>(c), static_cast<unsigned>(t)});
                }
            }
        }
    }
    if (!written || !reason.empty()) {
        throw FileError{path + ": it cannot be written" + (reason.empty() ? "" : " (" + reason + ")")};
    }
    file.keep();
}

} // namespace orlix::app
