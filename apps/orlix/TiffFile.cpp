#include <orlix/TiffFile.hpp>

#include <orlix/Axes.hpp>
#include <orlix/Errors.hpp>
#include <orlix/LibTiff.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace orlix::app
{

using image::eImageBufferType;

namespace
{

/// The files that other readers know, told by their first bytes.
const char* nameOtherFormat(const std::string& path)
{
    std::array<char, 352> head{};
    std::ifstream file{path, std::ios::binary};
    file.read(head.data(), head.size());
    const std::string_view start{head.data(), static_cast<std::size_t>(file.gcount())};
    const auto begins = [&](std::string_view magic) { return start.substr(0, magic.size()) == magic; };
    if (begins("\x89PNG")) {
        return "PNG";
    }
    if (begins("\xff\xd8\xff")) {
        return "JPEG";
    }
    if (begins("NRRD")) {
        return "NRRD";
    }
    if (begins("ObjectType") || begins("NDims")) {
        return "MetaImage";
    }
    if (begins("\x1f\x8b") || (start.size() > 347 && (start.substr(344, 2) == "n+" || start.substr(344, 2) == "ni"))) {
        return "NIfTI or other gzip";
    }
    return nullptr;
}

struct Page
{
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint16_t bits = 1;
    std::uint16_t samples = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;

    friend bool operator==(const Page&, const Page&) = default;
};

std::string nameSamples(const Page& page)
{
    static constexpr const char* kinds[] = {"",        "unsigned integer", "signed integer", "float",
                                            "untyped", "complex integer",  "complex float"};
    const std::string kind = page.format < std::size(kinds) ? kinds[page.format] : "unknown";
    return std::to_string(page.bits) + "-bit " + kind;
}

} // namespace

class TiffFile::Reader
{
public:
    Reader(const std::string& path, const std::string& order) : path_{path}
    {
        open();
        PageFacts facts;
        facts.fileName = std::filesystem::path{path}.filename().string();
        listPages(facts.description);
        type_ = findType();
        facts.samples = page_.samples;
        facts.pages = findHiddenPages(facts.description);
        axes_ = findAxes(facts, order);
        geometry_ = {page_.x, page_.y, axes_.z, axes_.c * page_.samples, axes_.t};
    }

    eImageBufferType getType() const { return type_; }
    const image::ImageGeometry& getGeometry() const { return geometry_; }

    Ptr<image::BaseImage> read()
    {
        auto image = image::BaseImage::create(type_, geometry_);
        messages_.warning.clear(); // those about directories say nothing about the pixels
        std::size_t plan = 0;
        for (std::size_t t = 0; t < axes_.t; ++t) {
            for (std::size_t c = 0; c < axes_.c; ++c) {
                for (std::size_t z = 0; z < axes_.z; ++z) {
                    const std::size_t page = axes_.pages[plan++];
                    const Target target{*image, z, c * page_.samples, t};
                    if (hidden_) {
                        readRaw(page, target);
                    } else {
                        readPage(page, target);
                    }
                }
            }
        }
        return image;
    }

    /// What libtiff found wrong with the pixels that were read, and passed over; empty if nothing.
    const std::string& getDamage() const { return messages_.warning; }

private:
    /// Where a page goes: plan (z, t), from channel c on.
    struct Target
    {
        image::BaseImage& image;
        std::size_t z;
        std::size_t c;
        std::size_t t;

        std::byte* row(std::size_t y, std::size_t sample) const { return image.getRow(y, z, c + sample, t); }
    };

    [[noreturn]] void fail(const std::string& what) const { throw FileError{path_ + ": " + what}; }

    /// Fails with libtiff's own words, if it has any.
    [[noreturn]] void failReading(const std::string& what) const
    {
        fail(messages_.error.empty() ? what : what + " (" + messages_.error + ")");
    }

    void open()
    {
        std::error_code code;
        const auto status = std::filesystem::status(path_, code);
        if (!std::filesystem::exists(status)) {
            fail(code ? code.message() : std::strerror(ENOENT));
        }
        if (std::filesystem::is_directory(status)) {
            fail(std::strerror(EISDIR));
        }
        if (!std::filesystem::is_regular_file(status)) {
            fail("it is no regular file");
        }
        if (!std::ifstream{path_, std::ios::binary}) {
            fail(std::strerror(errno));
        }
        tiff_ = openTiff(path_, "r", messages_);
        if (!tiff_) {
            if (const char* const other = nameOtherFormat(path_)) {
                fail(std::string{other} + " files are not read yet: convert it to TIFF");
            }
            failReading("it is no TIFF file, or a damaged one");
        }
    }

    Page describePage() const
    {
        Page page;
        TIFFGetField(tiff_.get(), TIFFTAG_IMAGEWIDTH, &page.x);
        TIFFGetField(tiff_.get(), TIFFTAG_IMAGELENGTH, &page.y);
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_BITSPERSAMPLE, &page.bits);
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_SAMPLESPERPIXEL, &page.samples);
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_SAMPLEFORMAT, &page.format);
        if (page.format == SAMPLEFORMAT_VOID) {
            page.format = SAMPLEFORMAT_UINT;
        }
        return page;
    }

    /// Lists the directories that hold pages of full resolution; all must be alike. A file that has nothing but
    /// reduced pages or masks is taken as it is.
    void listPages(std::string& description, std::uint32_t passedOver = FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)
    {
        for (;;) {
            std::uint32_t kind = 0;
            TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_SUBFILETYPE, &kind);
            if ((kind & passedOver) == 0) {
                const Page page = describePage();
                if (directories_.empty()) {
                    page_ = page;
                    const char* text = nullptr;
                    if (TIFFGetField(tiff_.get(), TIFFTAG_IMAGEDESCRIPTION, &text) != 0 && text != nullptr) {
                        description = text;
                    }
                } else if (!(page == page_)) {
                    fail("page " + std::to_string(directories_.size()) + " has " + std::to_string(page.x) + " x " +
                         std::to_string(page.y) + " pixels of " + std::to_string(page.samples) + " " +
                         nameSamples(page) + " samples, but the first page " + std::to_string(page_.x) + " x " +
                         std::to_string(page_.y) + " of " + std::to_string(page_.samples) + " " + nameSamples(page_) +
                         ": pages of one size and type are needed");
                }
                directories_.push_back(TIFFCurrentDirOffset(tiff_.get()));
            }
            if (TIFFLastDirectory(tiff_.get()) != 0) {
                break;
            }
            if (TIFFReadDirectory(tiff_.get()) == 0) {
                failReading("page " + std::to_string(directories_.size()) +
                            " cannot be read: the file is cut short or "
                            "damaged");
            }
        }
        if (directories_.empty()) {
            TIFFSetDirectory(tiff_.get(), 0);
            listPages(description, 0);
        }
        if (page_.x == 0 || page_.y == 0 || page_.samples == 0) {
            fail("it states a size of 0");
        }
    }

    eImageBufferType findType() const
    {
        using enum eImageBufferType;
        const auto integer = [&](eImageBufferType unsignedType, eImageBufferType signedType) {
            return page_.format == SAMPLEFORMAT_UINT ? unsignedType : signedType;
        };
        if (page_.format == SAMPLEFORMAT_UINT || page_.format == SAMPLEFORMAT_INT) {
            switch (page_.bits) {
            case 1:
                return eIBT_Binary;
            case 8:
                return integer(eIBT_UInt8, eIBT_Int8);
            case 16:
                return integer(eIBT_UInt16, eIBT_Int16);
            case 32:
                return integer(eIBT_UInt32, eIBT_Int32);
            default:
                fail(nameSamples(page_) + " pixels are not supported: convert the image to " +
                     (page_.bits < 8    ? "uint8"
                      : page_.bits < 16 ? "uint16"
                      : page_.bits < 32 ? "uint32"
                                        : "float32"));
            }
        }
        if (page_.format == SAMPLEFORMAT_IEEEFP && page_.bits == 32) {
            return eIBT_Float32;
        }
        fail(nameSamples(page_) + " pixels are not supported: convert the image to float32");
    }

    /// The number of pages. ImageJ writes a stack of more than 4 GiB as one page with all pixels behind it.
    std::size_t findHiddenPages(const std::string& description)
    {
        const std::size_t images = countImageJImages(description);
        std::uint16_t compression = COMPRESSION_NONE;
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_COMPRESSION, &compression);
        hidden_ = directories_.size() == 1 && images > 1 && compression == COMPRESSION_NONE && page_.samples == 1 &&
                  page_.bits >= 8 && TIFFIsTiled(tiff_.get()) == 0;
        if (!hidden_) {
            return directories_.size();
        }
        const std::size_t size = std::size_t{page_.x} * page_.y * page_.bits / 8;
        const std::size_t offset = TIFFGetStrileOffset(tiff_.get(), 0);
        const std::size_t available = std::filesystem::file_size(path_);
        if (offset > available || (available - offset) / size < images) {
            fail("it states " + std::to_string(images) + " ImageJ images, but holds pixels for " +
                 std::to_string(offset > available ? 0 : (available - offset) / size) + ": the file is cut short");
        }
        return images;
    }

    void readRaw(std::size_t page, const Target& target)
    {
        const std::size_t size = geometry_.x * geometry_.y * image::getPixelSize(type_);
        const auto offset = static_cast<std::streamoff>(TIFFGetStrileOffset(tiff_.get(), 0) + page * size);
        std::byte* const pixels = target.row(0, 0);
        std::ifstream file{path_, std::ios::binary};
        if (!file.seekg(offset) || !file.read(reinterpret_cast<char*>(pixels), static_cast<std::streamsize>(size))) {
            fail("the pixels of image " + std::to_string(page) + " are missing: the file is cut short");
        }
        if (TIFFIsByteSwapped(tiff_.get()) != 0) {
            if (page_.bits == 16) {
                TIFFSwabArrayOfShort(reinterpret_cast<std::uint16_t*>(pixels), static_cast<tmsize_t>(size / 2));
            } else if (page_.bits == 32) {
                TIFFSwabArrayOfLong(reinterpret_cast<std::uint32_t*>(pixels), static_cast<tmsize_t>(size / 4));
            }
        }
    }

    void readPage(std::size_t page, const Target& target)
    {
        const std::string damage = messages_.warning;
        if (TIFFSetSubDirectory(tiff_.get(), directories_[page]) == 0) {
            failReading("page " + std::to_string(page) + " cannot be read");
        }
        messages_.warning = damage;
        std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
        std::uint16_t compression = COMPRESSION_NONE;
        std::uint16_t planar = PLANARCONFIG_CONTIG;
        TIFFGetField(tiff_.get(), TIFFTAG_PHOTOMETRIC, &photometric);
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_COMPRESSION, &compression);
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_PLANARCONFIG, &planar);
        if (const char* const method = nameUnreadableCompression(compression)) {
            fail("page " + std::to_string(page) + " is compressed with " + method + " (TIFF compression " +
                 std::to_string(compression) + "), which is not supported: convert the image, say to Deflate");
        }
        if (photometric == PHOTOMETRIC_YCBCR) {
            if (compression != COMPRESSION_JPEG) {
                fail("YCbCr pixels are not supported: convert the image to RGB");
            }
            TIFFSetField(tiff_.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        }
        const bool separate = planar == PLANARCONFIG_SEPARATE && page_.samples > 1;
        const std::size_t samplesTogether = separate ? 1 : page_.samples;
        for (std::size_t first = 0; first < page_.samples; first += samplesTogether) {
            if (TIFFIsTiled(tiff_.get()) != 0) {
                readTiles(page, target, first, samplesTogether);
            } else {
                readStrips(page, target, first, samplesTogether);
            }
        }
    }

    void readStrips(std::size_t page, const Target& target, std::size_t sample, std::size_t samples)
    {
        std::uint32_t rows = 0;
        TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_ROWSPERSTRIP, &rows);
        const std::size_t stripRows = std::min<std::size_t>(rows, geometry_.y);
        const auto rowBytes = static_cast<std::size_t>(TIFFScanlineSize64(tiff_.get()));
        if (stripRows == 0 || rowBytes < packedBytes(geometry_.x, samples)) {
            failReading("page " + std::to_string(page) + " has strips that do not fit its size");
        }
        for (std::size_t y = 0; y < geometry_.y; y += stripRows) {
            const std::size_t count = std::min(stripRows, geometry_.y - y);
            const std::uint32_t strip =
                TIFFComputeStrip(tiff_.get(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(sample));
            const bool inPlace = samples == 1 && page_.bits >= 8;
            std::byte* const buffer = inPlace ? target.row(y, sample) : scratch(count * rowBytes);
            const auto bytes = static_cast<tmsize_t>(count * rowBytes);
            if (TIFFReadEncodedStrip(tiff_.get(), strip, buffer, bytes) != bytes) {
                failPixels(page);
            }
            for (std::size_t i = 0; !inPlace && i < count; ++i) {
                unpack(buffer + i * rowBytes, target, y + i, 0, geometry_.x, sample, samples);
            }
        }
    }

    void readTiles(std::size_t page, const Target& target, std::size_t sample, std::size_t samples)
    {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        TIFFGetField(tiff_.get(), TIFFTAG_TILEWIDTH, &width);
        TIFFGetField(tiff_.get(), TIFFTAG_TILELENGTH, &height);
        const tmsize_t bytes = TIFFTileSize(tiff_.get());
        const auto rowBytes = static_cast<std::size_t>(TIFFTileRowSize(tiff_.get()));
        if (width == 0 || height == 0 || bytes <= 0 || rowBytes < packedBytes(width, samples)) {
            failReading("page " + std::to_string(page) + " has tiles that do not fit its size");
        }
        constexpr tmsize_t largestTile = tmsize_t{1} << 30;
        if (bytes > largestTile) {
            fail("page " + std::to_string(page) + " has tiles of " + std::to_string(bytes) +
                 " bytes: convert it to tiles of at most 1 GiB");
        }
        for (std::size_t y = 0; y < geometry_.y; y += height) {
            for (std::size_t x = 0; x < geometry_.x; x += width) {
                std::byte* const buffer = scratch(static_cast<std::size_t>(bytes));
                if (TIFFReadTile(tiff_.get(), buffer, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), 0,
                                 static_cast<std::uint16_t>(sample)) != bytes) {
                    failPixels(page);
                }
                const std::size_t columns = std::min<std::size_t>(width, geometry_.x - x);
                const std::size_t rows = std::min<std::size_t>(height, geometry_.y - y);
                for (std::size_t i = 0; i < rows; ++i) {
                    unpack(buffer + i * rowBytes, target, y + i, x, columns, sample, samples);
                }
            }
        }
    }

    [[noreturn]] void failPixels(std::size_t page) const
    {
        failReading("the pixels of page " + std::to_string(page) + " cannot be read: the file is cut short or damaged");
    }

    std::size_t packedBytes(std::size_t pixels, std::size_t samples) const
    {
        return (pixels * samples * page_.bits + 7) / 8;
    }

    /// Spreads packed samples of one row over the image's channels.
    void unpack(const std::byte* packed, const Target& target, std::size_t y, std::size_t x, std::size_t columns,
                std::size_t sample, std::size_t samples) const
    {
        const std::size_t size = image::getPixelSize(type_);
        for (std::size_t s = 0; s < samples; ++s) {
            std::byte* const row = target.row(y, sample + s) + x * size;
            if (page_.bits == 1) {
                for (std::size_t i = 0; i < columns; ++i) {
                    const std::size_t bit = i * samples + s;
                    row[i] = packed[bit / 8] >> (7 - bit % 8) & std::byte{1};
                }
            } else if (samples == 1) {
                std::memcpy(row, packed, columns * size);
            } else {
                for (std::size_t i = 0; i < columns; ++i) {
                    std::memcpy(row + i * size, packed + (i * samples + s) * size, size);
                }
            }
        }
    }

    std::byte* scratch(std::size_t bytes)
    {
        if (scratchSize_ < bytes) {
            scratch_ = std::make_unique_for_overwrite<std::byte[]>(bytes); // touched only where pixels come
            scratchSize_ = bytes;
        }
        return scratch_.get();
    }

    std::string path_;
    TiffMessages messages_; // before tiff_, which writes to it until it is closed
    TiffHandle tiff_;
    Page page_;
    std::vector<std::uint64_t> directories_; ///< where they lie in the file
    bool hidden_ = false;
    eImageBufferType type_ = eImageBufferType::eIBT_UInt8;
    Axes axes_;
    image::ImageGeometry geometry_;
    std::unique_ptr<std::byte[]> scratch_;
    std::size_t scratchSize_ = 0;
};

TiffFile::TiffFile(const std::string& path, const std::string& pages) : reader_{std::make_unique<Reader>(path, pages)}
{}

TiffFile::~TiffFile() = default;

eImageBufferType TiffFile::getType() const
{
    return reader_->getType();
}

const image::ImageGeometry& TiffFile::getGeometry() const
{
    return reader_->getGeometry();
}

Ptr<image::BaseImage> TiffFile::read() const
{
    return reader_->read();
}

const std::string& TiffFile::getDamage() const
{
    return reader_->getDamage();
}

} // namespace orlix::app
