#include <orlix/TiffWriter.hpp>

#include <orlix/Errors.hpp>
#include <orlix/LibTiff.hpp>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace orlix::app
{

namespace
{

namespace fs = std::filesystem;

/// Where a signal finds the file that it must remove; empty if there is none.
char unfinished[PATH_MAX] = "";

/// Removes the unfinished file, and lets the signal do what it does.
void removeUnfinished(int signal)
{
    if (unfinished[0] != '\0') {
        ::unlink(unfinished);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// A new file beside the target, which takes the target's place and mode when it is kept, and is gone otherwise.
class TemporaryFile
{
public:
    explicit TemporaryFile(const fs::path& target)
        : target_{resolve(target)}, path_{(target_.parent_path() / ".orlix-XXXXXX").string()}
    {
        const int file = ::mkstemp(path_.data());
        if (file < 0) {
            throw FileError{target.string() + ": it cannot be written (" + std::strerror(errno) + ")"};
        }
        ::close(file);
        std::strncpy(unfinished, path_.c_str(), sizeof unfinished - 1);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            if (std::signal(signal, removeUnfinished) == SIG_IGN) {
                std::signal(signal, SIG_IGN); // as nohup wants it
            }
        }
        std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is an error like others
    }
    ~TemporaryFile()
    {
        std::error_code ignored;
        fs::remove(path_, ignored);
        unfinished[0] = '\0';
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& getPath() const { return path_; }
    void keep() const
    {
        std::error_code error;
        const auto old = fs::status(target_, error);
        const ::mode_t mask = ::umask(0);
        ::umask(mask);
        fs::permissions(path_, fs::exists(old) ? old.permissions() : fs::perms{0666u & ~mask}, error);
        fs::rename(path_, target_, error);
        if (error) {
            throw FileError{target_.string() + ": " + error.message()};
        }
    }

private:
    /// The file behind a link.
    static fs::path resolve(const fs::path& path)
    {
        std::error_code error;
        const fs::path resolved = fs::weakly_canonical(path, error);
        return error ? path : resolved;
    }

    fs::path target_;
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
    std::error_code error;
    const fs::path folder = fs::absolute(path).parent_path();
    if (!fs::is_directory(folder, error)) {
        throw FileError{
            path + ": " +
            (error == std::errc::permission_denied ? error.message() : "there is no folder " + folder.string())};
    }
    const auto status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw FileError{path + ": it is no regular file"};
    }
    const std::string target = fs::exists(status) ? path : folder.string();
    if (::access(target.c_str(), W_OK) != 0) {
        throw FileError{path + ": it cannot be written (" + std::strerror(errno) + ")"};
    }
    if (fs::equivalent(path, input, error)) {
        throw FileError{path + ": it is the image that is read: name another file"};
    }
}

void writeTiff(const std::string& path, const image::BaseImage& image)
{
    const image::ImageGeometry& size = image.getGeometry();
    const TemporaryFile file{path};
    TiffMessages messages;
    bool written = false;
    errno = 0;
    {
        constexpr std::size_t largestClassic = std::size_t{4000} << 20;
        constexpr std::size_t bytesOfPage = 512; // of what is said of it
        const bool isBig =
            size.nbPixels() * image.getPixelSize() + size.z * size.c * size.t * bytesOfPage > largestClassic;
        const TiffHandle tiff = openTiff(file.getPath(), isBig ? "w8" : "w", messages);
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
    const std::string& reason = messages.error;
    if (!written || !reason.empty()) {
        const std::string error = errno != 0 ? std::strerror(errno) : "";
        throw FileError{path + ": it cannot be written (" + reason + (reason.empty() || error.empty() ? "" : ", ") +
                        error + ")"};
    }
    file.keep();
}

} // namespace orlix::app
